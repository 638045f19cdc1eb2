#include "update/UpdatePage.h"

#include "app/look/BoxHelpers.h"
#include "app/look/FingerScroll.h"
#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "platform/cos_file.h"
#include "update/ResultText.h"
#include "update/UpdateJob.h"

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

std::string shownName(int udisk, const std::string &name)
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
    m_widgets.list->setMinimumHeight(touchHeight() + spacing(1)); // one row
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
        m_files.push_back({mountPath, name, shownName(m_nUdisk, name)});
        rows += shownBytes(m_files.back().shown);
    }
    m_widgets.list->addItems(rows); // all at once: one by one takes five times as long
    m_widgets.label->setText(commonText(m_job.texts.prompt));
}

// Anywhere in the name, so that "a.tmt3.bak" is listed too; this is intended.
bool UpdatePage::isListed(const std::string &name) const
{
    return std::any_of(m_job.patterns.begin(), m_job.patterns.end(), [&](const char *pattern) {
        return pattern != nullptr && name.find(pattern) != std::string::npos;
    });
}

void UpdatePage::clearUdisk()
{
    m_widgets.list->clear();
    m_widgets.label->setText(commonText(NO_UDISK));
    m_nUdisk = 0;
    m_files.clear();
}

void UpdatePage::retranslate()
{
    translateForm();
    setStyleWhenSeen(this, scrollStyle());
    setStyleWhenSeen(m_widgets.label, updateLabelStyle());
    const int stored = (m_pWorker->*m_job.storedResult)();
    showResult(stored, false);
    const QListWidgetItem *row = m_widgets.list->currentItem();
    if (!m_bUdiskPresent)
        m_widgets.label->setText(commonText(NO_UDISK));
    else if (stored == m_job.noResult)
        m_widgets.label->setText(row != nullptr ? selectedText(row->text())
                                                : commonText(m_job.texts.prompt));
}

void UpdatePage::selectRow(const QString &itemText)
{
    (m_pWorker->*m_job.resetResult)(0);
    setStatus(selectedText(itemText));
}

// A long name makes the label higher and the list shorter: keeps the chosen row in sight.
void UpdatePage::setStatus(const QString &status)
{
    m_widgets.label->setText(status);
    layout()->activate();
    m_widgets.list->scrollToItem(m_widgets.list->currentItem());
}

// Whether the worker takes the job is deliberately not looked at: if it is busy with another one,
// the page waits for a result that this press never produces; this is intended.
void UpdatePage::startDownload()
{
    const int row = m_widgets.list->currentRow();
    if (row < 0 || row >= static_cast<int>(m_files.size()))
        return;
    const UdiskFileEntry &file = m_files[static_cast<std::size_t>(row)];
    if (m_job.order == UpdateJob::CONNECT_FIRST)
        connectWorker();
    m_pWorker->SetFunction(m_job.function, file.directory + "/" + file.name);
    if (m_job.order == UpdateJob::CONNECT_AFTER_START)
        connectWorker();
    m_widgets.bar->setValue(0);
    setStatus(QStringLiteral("%1%2,%3").arg(text(m_job.texts.downloading), shownBytes(file.shown),
                                            text(m_job.texts.caution)));
    m_nTimer = startTimer(m_job.tickMs, Qt::CoarseTimer);
    m_widgets.list->setEnabled(false);
    setEnabled(false);
}

void UpdatePage::showResult(int code, bool finished)
{
    const QString result = resultText(m_job, code, *m_pWorker);
    m_widgets.label->setText(result);
    if (!finished || m_pWorker->isGivenUp())
        return;
    m_widgets.list->setEnabled(true);
    setEnabled(true);
    if (m_nTimer != 0)
        killTimer(m_nTimer);
    m_nTimer = 0;
    const QString heading = text(code == 0 ? m_job.texts.succeeded : m_job.texts.failed);
    showBox(code == 0, result.isEmpty() ? heading : heading + QLatin1Char('\n') + result);
    m_widgets.bar->setValue(0);
    disconnectWorker();
}

// Large enough for the longest text, five lines.
void UpdatePage::showBox(bool success, const QString &message)
{
    const QSize corner = fractionOf(screenSize(), (1 - BOX_SHARE) / 2, (1 - BOX_SHARE) / 2);
    runBox(success ? BOX_INFORMATION : BOX_CRITICAL, this, message,
           fractionOf(screenSize(), BOX_SHARE, BOX_SHARE), {corner.width(), corner.height()});
}

void UpdatePage::connectWorker()
{
    connectResult();
    if (m_job.barSignal != nullptr)
        connect(m_pWorker, m_job.barSignal, m_widgets.bar, &QProgressBar::setValue);
}

void UpdatePage::disconnectWorker()
{
    disconnect(m_pWorker, m_job.resultSignal, this, nullptr);
    if (m_job.barSignal != nullptr)
        disconnect(m_pWorker, m_job.barSignal, m_widgets.bar, nullptr);
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
    return QCoreApplication::translate(m_job.texts.context, source);
}

QString UpdatePage::commonText(const char *source) const
{
    return QCoreApplication::translate("QObject", source);
}

QString UpdatePage::selectedText(const QString &itemText) const
{
    return QStringLiteral("%1%2").arg(text(m_job.texts.selected), itemText);
}
