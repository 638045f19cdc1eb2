#include "system/CommSetting.h"

#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "system/CommuniCation.h"
#include "system/Stepping.h"
#include "ui_CommSetting.h"

#include <QApplication>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr int NO_LISTS = -1;
constexpr int LARGEST_STATION = 255;
constexpr int AGAIN_MS = 1000;

// Why a write failed, by its result.
struct Refusal
{
    int result;
    const char *text;
};

constexpr int NOT_READ = -2;
constexpr Refusal REFUSALS[] = {
    {NOT_READ,
     QT_TRANSLATE_NOOP("CommSetting", "Not saved: not all settings were read. Please try again.")},
    {-3, QT_TRANSLATE_NOOP("CommSetting", "Not saved: the port does not take this connection.")},
    {-4, QT_TRANSLATE_NOOP("CommSetting", "Not saved: the port does not take this baud rate.")},
    {-5, QT_TRANSLATE_NOOP("CommSetting", "Not saved: the port does not take this parity.")},
    {-6, QT_TRANSLATE_NOOP("CommSetting",
                           "Not saved in full: the runtime refused a value. Please try again.")},
    {-7, QT_TRANSLATE_NOOP("CommSetting",
                           "Not saved in full: the runtime refused a value. Please try again.")},
};

// Without the white space of a baud rate.
QString joined(const QStringList &fields)
{
    QStringList shown;
    for (const QString &field : fields)
        shown << field.trimmed();
    return shown.join(QLatin1Char(','));
}

} // namespace

CommSetting::CommSetting(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::ComSetting>())
{
    ui->setupUi(this);
    ui->lab_NotSaved->setLeastLines(1);
    ui->lab_NotSaved->hide();
    for (QPushButton *button :
         {ui->btn_ComL, ui->btn_ComR, ui->btn_CommunIndetail, ui->btn_TimeOutIndetail}) {
        button->setMinimumSize(2 * touchHeight(), touchHeight());
        connect(button, &QPushButton::clicked, this, &CommSetting::slot_ButtonPressed);
    }
    for (QLineEdit *line : {ui->line_HmiStation, ui->line_StandStation}) {
        line->setMinimumHeight(touchHeight());
        line->installEventFilter(this);
    }
}

CommSetting::~CommSetting() = default;

void CommSetting::init(const ComParamLists *lists)
{
    m_pLists = lists;
    findPorts();
    if (isEnabled())
        load(QStringLiteral("COM1-1"));
}

void CommSetting::findPorts()
{
    listSeralType.clear();
    for (const ComPort &port : m_pLists->portsInUse(&m_bPortsComplete))
        listSeralType << port.name;
    setEnabled(!listSeralType.isEmpty());
}

bool CommSetting::isMissing() const
{
    return m_pLists != nullptr && (!m_bPortsComplete || (isEnabled() && !m_bComplete));
}

void CommSetting::readMissing()
{
    if (isMissing() && !m_bPortsComplete)
        findPorts();
    if (!isMissing())
        return;
    if (ui->line_ComNum->text().isEmpty())
        load(QStringLiteral("COM1-1"));
    else
        reload();
}

void CommSetting::watchMissing()
{
    if (m_nTimer == 0 && isVisible() && isMissing())
        m_nTimer = startTimer(AGAIN_MS);
}

// Not under a keyboard or a dialog, which works on what it has found.
void CommSetting::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_nTimer)
        return QWidget::timerEvent(event);
    if (isVisible() && QApplication::activeModalWidget() == nullptr)
        readMissing();
    if (!isVisible() || !isMissing())
        killTimer(std::exchange(m_nTimer, 0));
}

void CommSetting::showEvent(QShowEvent *event)
{
    readMissing();
    watchMissing();
    QWidget::showEvent(event);
}

void CommSetting::retranslate()
{
    ui->retranslateUi(this);
    showRefusal();
    setStyleWhenSeen(this, comStyle());
}

bool CommSetting::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event)) {
        if (watched == ui->line_HmiStation)
            editStation(ui->line_HmiStation, COM_HMI_STATION);
        else if (watched == ui->line_StandStation)
            editStation(ui->line_StandStation, COM_DEVICE_STATION);
    }
    return QWidget::eventFilter(watched, event);
}

void CommSetting::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_ComL)
        load(steppedItem(listSeralType, ui->line_ComNum->text(), -1));
    else if (sender() == ui->btn_ComR)
        load(steppedItem(listSeralType, ui->line_ComNum->text(), 1));
    else if (sender() == ui->btn_CommunIndetail)
        editParameters(CommuniCation::SERIAL);
    else if (sender() == ui->btn_TimeOutIndetail)
        editParameters(CommuniCation::TIMEOUTS);
}

// As ComParamLists::readPort() of the port that is shown, and -1 as long as the page has no lists.
int CommSetting::readPort(QString &settings)
{
    m_bComplete = false;
    return m_pLists == nullptr
               ? NO_LISTS
               : m_pLists->readPort(ui->line_ComNum->text(), settings, &m_bComplete);
}

void CommSetting::load(const QString &name)
{
    ui->line_ComNum->setText(name);
    m_nWriteResult = 0;
    showRefusal();
    reload();
}

void CommSetting::reload()
{
    QString settings;
    m_fields.clear();
    if (readPort(settings) != NO_LISTS)
        m_fields = settings.split(QLatin1Char(','));
    showFields();
    watchMissing();
}

void CommSetting::showFields()
{
    ui->line_HmiStation->setText(m_fields.value(COM_HMI_STATION));
    ui->line_StandStation->setText(m_fields.value(COM_DEVICE_STATION));
    ui->line_SerialCommiation->setFullText(
        m_fields.isEmpty() ? QStringLiteral("NULL,1200,0,0,NONE")
                           : joined(m_fields.mid(COM_CONNECTION, COM_PARITY + 1)));
    ui->line_TimeCommiation->setFullText(
        joined(m_fields.mid(COM_WAIT_TIMEOUT, COM_HMI_STATION - COM_WAIT_TIMEOUT)));
}

void CommSetting::editStation(QLineEdit *line, ComField field)
{
    if (!editWithKeyboard(numberRequest(this, line, 0, LARGEST_STATION)))
        return;
    const QString station = line->text();
    reload();
    QStringList fields = m_fields;
    if (fields.size() != COM_FIELDS)
        return;
    fields[field] = station;
    write(fields);
}

void CommSetting::editParameters(int page)
{
    if (m_pLists == nullptr || m_fields.size() != COM_FIELDS)
        return;
    CommuniCation dialog(this);
    dialog.prepare({ui->line_ComNum->text(), m_fields.join(QLatin1Char(','))},
                   m_pLists->portsInUse());
    dialog.selectPage(page);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QStringList fields = m_fields;
    const int first = CommuniCation::firstField(page);
    const QStringList values = dialog.values(page);
    std::copy(values.begin(), values.end(), fields.begin() + first);
    write(fields);
}

// After a failure the page shows what the runtime holds, and why the change was not saved.
void CommSetting::write(const QStringList &fields)
{
    m_nWriteResult = writePort(fields);
    showRefusal();
    if (m_nWriteResult != 0)
        return reload();
    m_fields = fields;
    showFields();
}

// A port that was not read in full is not written: its missing fields would become 0.
int CommSetting::writePort(const QStringList &fields)
{
    return m_bComplete && m_pLists != nullptr
               ? m_pLists->writePort(ui->line_ComNum->text(), fields.join(QLatin1Char(',')))
               : NOT_READ;
}

void CommSetting::showRefusal()
{
    ui->lab_NotSaved->setHidden(m_nWriteResult == 0);
    for (const Refusal &refusal : REFUSALS) {
        if (refusal.result == m_nWriteResult)
            ui->lab_NotSaved->setText(tr(refusal.text));
    }
}
