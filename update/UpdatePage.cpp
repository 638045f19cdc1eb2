#include "update/UpdatePage.h"

#include "app/look/BoxHelpers.h"
#include "app/look/FingerScroll.h"
#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "platform/cos_file.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLayout>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char *NO_UDISK =
    QT_TRANSLATE_NOOP("QObject", "Failed to recognize U disk, please check it or change new one!");

constexpr std::size_t SHOWN_SIZE = 1024;
constexpr double BOX_SHARE = 0.7; // of the screen

std::string numbered(int udisk, const std::string &name)
{
    char shown[SHOWN_SIZE];
    std::snprintf(shown, sizeof shown, "U%d/%s", udisk, name.c_str());
    return shown;
}

} // namespace

void UpdatePage::setWidgets(const Widgets &widgets)
{
    m_widgets = widgets;
    m_widgets.button->setFixedHeight(touchHeight() + touchHeight() / 4);
    m_widgets.bar->setFixedHeight(touchHeight());
    new FingerScroll(m_widgets.list);
    m_widgets.list->setMinimumHeight(touchHeight() + spacing(1)); // a row, beside a long name
}

void UpdatePage::listUdisk(const std::string &mountPath)
{
    std::vector<std::string> names;
    COS::CosDir::ListDir(mountPath, "*.*", names);
    if (!names.empty())
        ++m_nUdisk;
    QStringList rows;
    for (const std::string &name : names) {
        if (!isListed(name))
            continue;
        m_files.push_back({mountPath, name, numbered(m_nUdisk, name)});
        rows += shownBytes(m_files.back().shown);
    }
    m_widgets.list->addItems(rows); // all at once: one by one takes five times as long
    m_widgets.label->setText(generic(m_kind.prompt));
}

// Anywhere in the name, so that "a.tmt3.bak" is listed too; this is intended.
bool UpdatePage::isListed(const std::string &name) const
{
    return std::any_of(m_kind.patterns.begin(), m_kind.patterns.end(), [&](const char *pattern) {
        return pattern != nullptr && name.find(pattern) != std::string::npos;
    });
}

void UpdatePage::clearUdisk()
{
    m_widgets.list->clear();
    m_widgets.label->setText(generic(NO_UDISK));
    m_nUdisk = 0;
    m_files.clear();
}

void UpdatePage::retranslate()
{
    translateForm();
    setStyleWhenSeen(this, scrollStyle());
    setStyleWhenSeen(m_widgets.label, updateLabelStyle());
    const int stored = (m_pWorker->*m_kind.storedResult)();
    showResult(stored, false);
    const QListWidgetItem *row = m_widgets.list->currentItem();
    if (!m_bUdiskPresent)
        m_widgets.label->setText(generic(NO_UDISK));
    else if (stored == m_kind.noResult)
        m_widgets.label->setText(row != nullptr ? selectedText(row->text())
                                                : generic(m_kind.prompt));
}

void UpdatePage::selectRow(const QString &itemText)
{
    (m_pWorker->*m_kind.resetResult)(0);
    say(selectedText(itemText));
}

// A long name takes room from the list, where the row must not go out of sight for it.
void UpdatePage::say(const QString &said)
{
    m_widgets.label->setText(said);
    layout()->activate();
    m_widgets.list->scrollToItem(m_widgets.list->currentItem());
}

// The page does not look at whether the worker takes the job: busy with another one, it never
// answers this press, and the page waits; this is intended.
void UpdatePage::startDownload()
{
    const int row = m_widgets.list->currentRow();
    if (row < 0 || row >= static_cast<int>(m_files.size()))
        return;
    const UdiskFileEntry &file = m_files[static_cast<std::size_t>(row)];
    if (m_kind.order == UpdatePageKind::CONNECT_FIRST)
        connectWorker();
    m_pWorker->SetFunction(m_kind.function,
                           QString::fromStdString(file.directory + "/" + file.name));
    if (m_kind.order == UpdatePageKind::CONNECT_AFTER_START)
        connectWorker();
    m_widgets.bar->setValue(0);
    say(QStringLiteral("%1%2,%3").arg(text(m_kind.downloading), shownBytes(file.shown),
                                      text(m_kind.caution)));
    m_nTimer = startTimer(m_kind.timerMs, Qt::CoarseTimer);
    m_widgets.list->setEnabled(false);
    setEnabled(false);
}

void UpdatePage::showResult(int code, bool finished)
{
    const QString said = resultTextOf(code);
    m_widgets.label->setText(said);
    if (!finished)
        return;
    m_widgets.list->setEnabled(true);
    setEnabled(true);
    if (m_nTimer != 0)
        killTimer(m_nTimer);
    m_nTimer = 0;
    const QString heading = text(code == 0 ? m_kind.succeeded : m_kind.failed);
    tell(code == 0, said.isEmpty() ? heading : heading + QLatin1Char('\n') + said);
    m_widgets.bar->setValue(0);
    disconnectWorker();
}

// The longest text has five lines.
void UpdatePage::tell(bool success, const QString &said)
{
    const QSize corner = fractionOf(screenSize(), (1 - BOX_SHARE) / 2, (1 - BOX_SHARE) / 2);
    runBox(success ? BOX_INFORMATION : BOX_CRITICAL, this, said,
           fractionOf(screenSize(), BOX_SHARE, BOX_SHARE), {corner.width(), corner.height()});
}

void UpdatePage::connectWorker()
{
    connectResult();
    if (m_kind.barSignal != nullptr)
        connect(m_pWorker, m_kind.barSignal, m_widgets.bar, &QProgressBar::setValue);
}

void UpdatePage::disconnectWorker()
{
    disconnect(m_pWorker, m_kind.resultSignal, this, nullptr);
    if (m_kind.barSignal != nullptr)
        disconnect(m_pWorker, m_kind.barSignal, m_widgets.bar, nullptr);
}

void UpdatePage::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_nTimer)
        moveBar();
    else
        QWidget::timerEvent(event);
}

void UpdatePage::moveBar()
{
    const int value = m_widgets.bar->value();
    if (value > m_widgets.bar->minimum() && value < m_widgets.bar->maximum())
        m_widgets.bar->setValue(value + 1);
}

QString UpdatePage::text(const char *source) const
{
    return QCoreApplication::translate(m_kind.context, source);
}

QString UpdatePage::generic(const char *source) const
{
    return QCoreApplication::translate("QObject", source);
}

QString UpdatePage::selectedText(const QString &itemText) const
{
    return QStringLiteral("%1%2").arg(text(m_kind.selected), itemText);
}
