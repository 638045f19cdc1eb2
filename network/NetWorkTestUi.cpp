#include "network/NetWorkTestUi.h"

#include "app/look/FingerScroll.h"
#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "network/NetWorkTestItem.h"
#include "network/NetWorkTestRun.h"
#include "platform/cos_thread.h"
#include "platform/cos_time.h"
#include "ui_NetWorkTestUi.h"

#include <QMovie>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

// The cloud monitor's first report comes some two seconds after the program's start.
constexpr int CLOUD_PATIENCE_MS = 4000;
constexpr int STEP_MS = 50;

} // namespace

NetWorkTestUi::NetWorkTestUi(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("NetWorkTestUi"));
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    connect(this, &NetWorkTestUi::sgl_BtnCheck, this, &NetWorkTestUi::slot_BtnCheck,
            Qt::QueuedConnection);
    connect(this, &NetWorkTestUi::sgl_TestStatus, this, &NetWorkTestUi::slot_TestStatus,
            Qt::QueuedConnection);
}

NetWorkTestUi::~NetWorkTestUi()
{
    stop();
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_jobDone.wait(lock, [this] { return m_nJobs == 0; });
    }
    const std::lock_guard<std::mutex> lastRun(m_runMutex);
}

void NetWorkTestUi::build()
{
    if (ui != nullptr)
        return;
    ui = std::make_unique<Ui::NetWorkTestUi>();
    ui->setupUi(this);
    growLayouts(this);
    const int touch = touchHeight();
    ui->btn_close->setFixedSize(touch, touch);
    ui->btn_close->setIconSize({touch * 2 / 3, touch * 2 / 3});
    ui->btn_StartDiag->setMinimumHeight(touch);
    ui->lab_status->setLeastLines(1);
    m_pRunning = new QMovie(loadingMoviePath(), QByteArray(), this);
    connect(ui->btn_close, &QPushButton::clicked, this, &NetWorkTestUi::slot_ButtonPressed);
    connect(ui->btn_StartDiag, &QPushButton::clicked, this, &NetWorkTestUi::slot_ButtonPressed);
    new FingerScroll(ui->area_rows);
    const QScrollBar *bar = ui->area_rows->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, this, &NetWorkTestUi::scroll);
    connect(bar, &QScrollBar::actionTriggered, this, [this, bar] {
        m_bScrolledAway = m_phase != Phase::Running || bar->sliderPosition() < bar->maximum();
    });
    m_texts.load(m_nLanguage);
    retranslate();
}

void NetWorkTestUi::showEvent(QShowEvent *event)
{
    build();
    if (!m_texts.isLoaded() && m_texts.load(m_nLanguage))
        setRowTexts();
    QDialog::showEvent(event);
    animate();
    m_bScrolledAway = false;
    scrollLater();
}

void NetWorkTestUi::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    m_pRunning->stop();
}

// --- Texts -------------------------------------------------------------------------------------

void NetWorkTestUi::setLanguage(int language)
{
    m_nLanguage = language;
    if (ui == nullptr)
        return;
    m_texts.load(language);
    setRowTexts();
}

void NetWorkTestUi::retranslate()
{
    if (ui == nullptr)
        return;
    ui->retranslateUi(this);
    setStyleWhenSeen(this, diagnosisStyle());
    m_pRunning->setScaledSize({fontPixelSize(), fontPixelSize()});
    ui->lab_status->setText(phaseText());
    for (NetWorkTestItem *row : m_rows) {
        if (row != nullptr)
            row->retranslate();
    }
}

void NetWorkTestUi::setRowTexts()
{
    for (int item = 0; item < NETWORK_TEST_KEY_COUNT; ++item)
        setRowText(item);
}

// Without texts of its own a row at least has its key.
void NetWorkTestUi::setRowText(int item)
{
    const auto index = static_cast<std::size_t>(item);
    if (m_rows[index] == nullptr)
        return;
    NetWorkTestText texts;
    if (m_texts.find(item, texts) < 0)
        texts.title = QLatin1String(NETWORK_TEST_KEYS[index]);
    m_rows[index]->setTexts(texts, m_sRegion);
}

QString NetWorkTestUi::phaseText() const
{
    switch (m_phase) {
    case Phase::Untested:
        return tr("Press Start Diag to check the way to the cloud.");
    case Phase::Refused:
        return tr("The panel is busy. Please try again.");
    case Phase::Running:
        return tr("Diagnosing");
    case Phase::Done:
        break;
    }
    switch (m_nResult) {
    case RESULT_PASSED:
        return tr("The network connection is successful.");
    case RESULT_NO_CONFIGURATION:
        return tr("The cloud settings are missing or damaged. The network was not checked.");
    default:
        return tr("No network reaches the cloud. See the failed items.");
    }
}

// --- A run, on the worker's thread -------------------------------------------------------------

int NetWorkTest_Thread(void *dialog)
{
    static_cast<NetWorkTestUi *>(dialog)->runTest();
    return 0;
}

// For the first report of the cloud: without it a run would call cloud settings missing that have
// not been read yet.
void NetWorkTestUi::awaitCloud() const
{
    for (int waited = 0; waited < CLOUD_PATIENCE_MS && !m_bCloudKnown && !m_bStopped;
         waited += STEP_MS)
        COS::CosTime::SleepCos(STEP_MS);
}

void NetWorkTestUi::runTest()
{
    const std::lock_guard<std::mutex> run(m_runMutex);
    if (m_bStopped)
        return;
    emit sgl_BtnCheck(0);
    m_nResult = 0;
    awaitCloud();
    NetWorkTestRun::Input input;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        input.devices = m_devices;
    }
    input.loadResult = m_nLoadResult;
    input.connectionStatus = [this] { return m_nConnectionStatus.load(); };
    input.stopped = [this] { return m_bStopped.load(); };
    input.report = [this](int item, int state, int value) {
        m_values[static_cast<std::size_t>(item)] = value;
        emit sgl_TestStatus(item, state);
    };
    m_nResult = NetWorkTestRun(std::move(input)).run();
    emit sgl_BtnCheck(1);
}

void NetWorkTestUi::setDevice(std::size_t link, const std::string &device)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_devices[link] = device;
}

void NetWorkTestUi::startRun()
{
    if (m_phase == Phase::Running)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_nJobs;
    }
    // The job is over when the pool lets go of it: has run it, refused it or, at its end, dropped
    // it.
    const std::shared_ptr<void> over(nullptr, [this](void *) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        --m_nJobs;
        m_jobDone.notify_all(); // under the lock: the dialog may go as soon as it is free
    });
    const bool taken = COS::CCosThreadPool::submit([this, over] { NetWorkTest_Thread(this); }) >= 0;
    setPhase(taken ? Phase::Running : Phase::Refused);
}

// --- Reports of the worker ----------------------------------------------------------------------

void NetWorkTestUi::slot_Util(int loadResult, int connectionStatus, QString text)
{
    m_nLoadResult = loadResult;
    m_nConnectionStatus = connectionStatus;
    m_bCloudKnown = true;
    if (m_sRegion == text)
        return;
    m_sRegion = text;
    setRowTexts();
}

void NetWorkTestUi::slot_TestStatus(int item, int state)
{
    if (item < 0 || item >= NETWORK_TEST_KEY_COUNT)
        return;
    const auto index = static_cast<std::size_t>(item);
    build();
    if (m_rows[index] == nullptr)
        makeRow(item);
    m_rows[index]->setState(state, m_values[index]);
}

void NetWorkTestUi::slot_BtnCheck(int enabled)
{
    if (enabled == 0) {
        clearRows();
        m_bScrolledAway = false;
    }
    setPhase(enabled == 0 ? Phase::Running : Phase::Done);
    scrollLater();
}

void NetWorkTestUi::slot_ButtonPressed()
{
    keyClick();
    if (ui != nullptr && sender() == ui->btn_close)
        hide();
    else
        startRun();
}

void NetWorkTestUi::setPhase(Phase phase)
{
    build();
    m_phase = phase;
    ui->btn_StartDiag->setEnabled(phase != Phase::Running);
    ui->lab_status->setText(phaseText());
    animate();
}

void NetWorkTestUi::animate()
{
    if (m_phase == Phase::Running && isVisible())
        m_pRunning->start();
    else
        m_pRunning->stop();
}

// After the new rows are laid out. rangeChanged() is not enough: two runs may end with lists of the
// same height.
void NetWorkTestUi::scrollLater()
{
    QTimer::singleShot(0, this, &NetWorkTestUi::scroll);
}

// To the newest row, or after a run to the first that failed: at the bottom of the view, so that
// its link's heading is seen if there is room. Not if the operator has scrolled to another place.
void NetWorkTestUi::scroll()
{
    if (m_bScrolledAway)
        return;
    QScrollBar *bar = ui->area_rows->verticalScrollBar();
    const NetWorkTestItem *row = m_phase == Phase::Running ? nullptr : firstFailed();
    bar->setValue(row == nullptr
                      ? bar->maximum()
                      : std::min(row->y(), row->geometry().bottom() + 1 - bar->pageStep()));
}

// By the order of the rows, which differs from that of the item numbers.
const NetWorkTestItem *NetWorkTestUi::firstFailed() const
{
    const NetWorkTestItem *first = nullptr;
    for (const NetWorkTestItem *row : m_rows) {
        if (row != nullptr && row->hasFailed() && (first == nullptr || row->y() < first->y()))
            first = row;
    }
    return first;
}

void NetWorkTestUi::clearRows()
{
    for (NetWorkTestItem *&row : m_rows) {
        delete row;
        row = nullptr;
    }
}

void NetWorkTestUi::makeRow(int item)
{
    auto *row = new NetWorkTestItem(item, m_pRunning, ui->rows);
    m_rows[static_cast<std::size_t>(item)] = row;
    setRowText(item);
    ui->rowList->insertWidget(ui->rowList->count() - 1, row); // above the stretch
}
