#include "system/CommuniCation.h"

#include "app/look/DismissGuard.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "platform/machine.h"
#include "system/Stepping.h"
#include "ui_CommuniCation.h"

#include <QEvent>

namespace {

// The codec's list has blanks in front of 500000, this one has not: a rate that is chosen here by
// that name is refused when it is written. This is intended.
constexpr const char *OFFERED_BAUDS =
    "1200,2400,4800,9600,19200,38400,57600,115200,187500,230400,460800,500000,576000,921600,"
    "1000000,1152000,1500000,2000000,2500000,3000000,3500000,4000000";
constexpr const char *OFFERED_CONNECTIONS = "RS232,RS422,RS485_1";
constexpr const char *MORE_CONNECTIONS = "RS232,RS422,RS485_1,RS485_2";
constexpr const char *SERIES_WITH_MORE = "ASKU"; // first letters of serial numbers

constexpr int PHYSICAL_NAME = 4; // characters that the sub-ports of a physical port share

enum class Rule { List, Around, Within };

// How a field's step buttons change it, in the order of the port's fields. `min` and `max` are the
// keyboard's range too.
struct FieldRule
{
    const char *name; // of line_NAME, btn_NAME_L and btn_NAME_R
    Rule rule;
    int step;
    int min;
    int max;
};

constexpr FieldRule RULES[] = {
    {"Communication", Rule::List, 1, 0, 0},
    {"BaudRate", Rule::List, 1, 0, 0},
    {"ByteSize", Rule::Around, 1, 7, 8},
    {"StopBits", Rule::Around, 1, 1, 2},
    {"Parity", Rule::List, 1, 0, 0},
    {"WaitTimeOut", Rule::Within, 10, 0, 1000},
    {"ReadTimeOut", Rule::Within, 10, 0, 1000},
    {"RetryTime", Rule::Within, 1, 0, 10},
    {"RetryTimeOut", Rule::Within, 1, 0, 20},
};
constexpr int RULE_COUNT = static_cast<int>(std::size(RULES));

QString connectionOf(const ComPort &port)
{
    return port.settings.section(QLatin1Char(','), COM_CONNECTION, COM_CONNECTION);
}

// A panel that does not tell its serial number has the shorter list.
QStringList panelConnections()
{
    std::string serialNumber;
    const bool more = KVCORE::TMachine().GetSN(serialNumber) != 0 && !serialNumber.empty() &&
                      QLatin1String(SERIES_WITH_MORE).contains(QLatin1Char(serialNumber.front()));
    return comItems(more ? MORE_CONNECTIONS : OFFERED_CONNECTIONS);
}

QStringList connectionsFor(const ComPort &port, const std::vector<ComPort> &ports)
{
    QStringList offered = panelConnections();
    for (const ComPort &other : ports) {
        const bool sibling = other.name != port.name &&
                             other.name.left(PHYSICAL_NAME) == port.name.left(PHYSICAL_NAME);
        if (sibling && connectionOf(other) != connectionOf(port))
            offered.removeAll(connectionOf(other));
    }
    return offered;
}

} // namespace

CommuniCation::CommuniCation(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::Communication>())
{
    ui->setupUi(this);
    growLayouts(this);
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    new DismissGuard(this, false);
    setStyleSheet(communicationStyle());
    findFields();
    for (QPushButton *button : findChildren<QPushButton *>()) {
        button->setMinimumSize(2 * touchHeight(), touchHeight());
        connect(button, &QPushButton::clicked, this, &CommuniCation::slot_ButtonPressed);
    }
    const QSize corner = fractionOf(screenSize(), 0.15, 0.03);
    placeOnScreen(this, fractionOf(screenSize(), 0.7, 0.94), {corner.width(), corner.height()});
}

CommuniCation::~CommuniCation() = default;

void CommuniCation::findFields()
{
    for (const FieldRule &rule : RULES) {
        const QString name = QLatin1String(rule.name);
        auto *line = findChild<QLineEdit *>(QStringLiteral("line_") + name);
        auto *left = findChild<QPushButton *>(QStringLiteral("btn_%1_L").arg(name));
        auto *right = findChild<QPushButton *>(QStringLiteral("btn_%1_R").arg(name));
        m_fields.push_back({line, left, right, {}});
        line->installEventFilter(this);
    }
}

void CommuniCation::prepare(const ComPort &port, const std::vector<ComPort> &ports)
{
    ui->lab_Title->setText(port.name);
    const QStringList texts = port.settings.split(QLatin1Char(','));
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        m_fields[i].line->setText(texts.value(static_cast<int>(i)));
    m_fields[COM_CONNECTION].items = connectionsFor(port, ports);
    m_fields[COM_BAUD].items = comItems(OFFERED_BAUDS);
    m_fields[COM_PARITY].items = comItems(COM_PARITIES);
}

void CommuniCation::selectPage(int page)
{
    ui->stackedWidget_2->setCurrentIndex(page == SERIAL ? SERIAL : TIMEOUTS);
}

ComField CommuniCation::firstField(int page)
{
    return page == SERIAL ? COM_CONNECTION : COM_WAIT_TIMEOUT;
}

QStringList CommuniCation::values(int page) const
{
    const int end = page == SERIAL ? COM_WAIT_TIMEOUT : RULE_COUNT;
    QStringList texts;
    for (int i = firstField(page); i < end; ++i)
        texts << m_fields[static_cast<std::size_t>(i)].line->text();
    return texts;
}

bool CommuniCation::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event)) {
        for (std::size_t i = 0; i < m_fields.size(); ++i) {
            const FieldRule &rule = RULES[i];
            if (watched == m_fields[i].line && rule.rule != Rule::List)
                editWithKeyboard(numberRequest(this, m_fields[i].line, rule.min, rule.max));
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CommuniCation::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_Save)
        accept();
    else if (sender() == ui->btn_Canl)
        reject();
    for (int i = 0; i < RULE_COUNT; ++i) {
        const Field &field = m_fields[static_cast<std::size_t>(i)];
        if (sender() == field.left || sender() == field.right)
            field.line->setText(stepped(i, sender() == field.left ? -1 : 1));
    }
}

// The text of a field after a step to the left (-1) or right (1).
QString CommuniCation::stepped(int index, int direction) const
{
    const FieldRule &rule = RULES[index];
    const Field &field = m_fields[static_cast<std::size_t>(index)];
    const QString text = field.line->text();
    const int step = direction * rule.step;
    switch (rule.rule) {
    case Rule::Around:
        return steppedAround(text, step, rule.min, rule.max);
    case Rule::Within:
        return steppedWithin(text, step, rule.min, rule.max);
    case Rule::List:
        break;
    }
    return steppedItem(field.items, text, step);
}
