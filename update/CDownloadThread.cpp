#include "update/CDownloadThread.h"

#include "platform/board.h"
#include "platform/cos_thread.h"
#include "platform/machine.h"
#include "update/PlcDownload.h"
#include "update/WritablePartition.h"

#include <QCoreApplication>

#include <cstdio>
#include <utility>

namespace {

constexpr unsigned int CHECK_TIMEOUT_MS = 8000;
constexpr unsigned int POLL_TIMEOUT_MS = 1000;
constexpr int POLL_PERIOD_MS = 50;
constexpr int FOR_EVER = -1;
constexpr int WAIT_SLICE_MS = 20;

constexpr int BAR_FULL = 100;

constexpr int PROJECT_WRONG_MODEL = -5;
constexpr int PROJECT_UNMATCHED = -8;
constexpr int VERSION_UNFIT = -9; // also the service's error number for it
constexpr int REQUEST_FAILED = -11;
constexpr int IMAGE_WRONG_MODEL = -11;

int projectPanelModel(std::string &model)
{
    return KVCORE::TMachine().GetHMIType(model);
}

} // namespace

// How the two installs differ. That a project which is done, or wrong, moves the firmware's bar,
// and the start of a firmware install the project's, is intended.
struct CDownloadThread::InstallKind
{
    const char *timer;
    COS::CCosRateTimer::Function task;
    int checkFailed;
    int wrongModel;
    unsigned int startTimeoutMs;
    bool asksForNewer; // a file of an unfit version may be installed if the operator wants it
    int (*panelModel)(std::string &model);
    std::string CDownloadThread::*model;
    void (CDownloadThread::*result)(int);
    void (CDownloadThread::*bar)(int);
    const char *modelTrace;  // of the panel's model and the file's, if they differ
    const char *resultTrace; // of the error number at the end
};

const CDownloadThread::InstallKind CDownloadThread::PROJECT = {
    "UpDatePro",
    UpDatePro,
    PROJECT_UNMATCHED,
    PROJECT_WRONG_MODEL,
    8000,  // ms
    false, // refused, then
    projectPanelModel,
    &CDownloadThread::m_sProjectModel,
    &CDownloadThread::sglDownLoadProResult,
    &CDownloadThread::sglProBarValue,
    nullptr,
    nullptr,
};

const CDownloadThread::InstallKind CDownloadThread::IMAGE = {
    "UpDateImg",
    UpDateImg,
    REQUEST_FAILED,
    IMAGE_WRONG_MODEL,
    3000, // ms
    true, // asks
    PLATFORM::CPlatBoard::getKVxxx,
    &CDownloadThread::m_sImageModel,
    &CDownloadThread::sglDownLoadImageResult,
    &CDownloadThread::sglImageBarValue,
    "===========[%s][%s]\n",
    "emit pDownloadThread->sglDownLoadImageResult(udiskUpdate.nErrNumber); = [%d]\n",
};

// A question that waits for this thread is delivered meanwhile, and declined.
CDownloadThread::~CDownloadThread()
{
    giveUp();
    while (!wait(WAIT_SLICE_MS))
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

bool CDownloadThread::SetFunction(int code, const QString &path)
{
    if (m_bGivenUp)
        return false;
    if (m_bBusy.exchange(true)) {
        std::printf("busy\r\n");
        return false;
    }
    wait(); // the thread of the job before may not have ended quite, and would not start again
    m_nFunction = code;
    m_sPath = path;
    start(InheritPriority);
    const bool started = isRunning() || isFinished();
    if (!started)
        m_bBusy = false;
    return started;
}

void CDownloadThread::run()
{
    if (m_nFunction == FUNC_DOWNLOAD_PRO)
        install(PROJECT);
    else if (m_nFunction == FUNC_DOWNLOAD_IMAGE)
        install(IMAGE);
    else if (m_nFunction == FUNC_DOWNLOAD_PLCPRO)
        threadDownPLC();
    m_bBusy = false;
}

void CDownloadThread::threadDownPLC()
{
    std::printf("start download\r\n");
    char failed[PLC_TRACE_SIZE] = {};
    const int result = UpdatePLCprogram(m_sPath.toStdString(), failed);
    std::printf("end\r\n");
    m_nPlcResult = result;
    // The page connects after it has started the job, which may fail in less time than that takes.
    const auto tellResult = [this, result] {
        tell(&CDownloadThread::sglDownLoadPlcProResult, result);
    };
    QMetaObject::invokeMethod(this, tellResult, Qt::QueuedConnection);
}

void CDownloadThread::giveUp()
{
    std::map<const InstallKind *, Writable> polled; // released without the mutex
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    m_bGivenUp = true;
    polled.swap(m_polled);
    for (const auto &[kind, writable] : polled)
        COS::CCosRateTimer::removeTimer(kind->timer);
    requestInterruption();
}

UpdateResult CDownloadThread::ask(UpdateCommand command, const std::string &path,
                                  unsigned int timeoutMs, UpdateStatus &status) const
{
    return m_bGivenUp ? UPDATE_FAILED : askUpdateService(command, path, timeoutMs, status);
}

void CDownloadThread::tell(void (CDownloadThread::*signal)(int), int value)
{
    if (!m_bGivenUp)
        emit(this->*signal)(value);
}

void CDownloadThread::install(const InstallKind &kind)
{
    if (m_bGivenUp)
        return;
    storeModel(kind, std::string()); // of the file chosen before
    startInstall(kind, std::make_shared<WritablePartition>());
    tell(&CDownloadThread::sglProBarValue, BAR_FULL);
}

void CDownloadThread::startInstall(const InstallKind &kind, const Writable &writable)
{
    const std::string path = m_sPath.toStdString();
    UpdateStatus status;
    if (ask(UPDATE_CHECK, path, CHECK_TIMEOUT_MS, status) != UPDATE_ANSWERED) {
        tell(kind.result, kind.checkFailed);
        return;
    }
    storeModel(kind, status.model);
    std::printf("[%d][%s]\n", status.nErrNumber, status.model.c_str());
    if (!isVersionFit(kind, status))
        return;
    if (!isForThisPanel(kind, status.model)) {
        tell(&CDownloadThread::sglImageBarValue, BAR_FULL);
        tell(kind.result, kind.wrongModel);
        return;
    }
    if (ask(UPDATE_INSTALL, path, kind.startTimeoutMs, status) == UPDATE_FAILED ||
        !startPolling(kind, writable))
        tell(kind.result, REQUEST_FAILED);
}

// Or if the operator takes it as it is, where he is asked.
bool CDownloadThread::isVersionFit(const InstallKind &kind, const UpdateStatus &checked)
{
    if (checked.nErrNumber != VERSION_UNFIT)
        return true;
    const bool wanted = kind.asksForNewer && isConfirmed();
    if (!wanted)
        tell(kind.result, kind.asksForNewer ? VERSION_UNFIT : kind.checkFailed);
    return wanted;
}

// Whether the operator has ever said yes. A question that the program's end drops is a no.
bool CDownloadThread::isConfirmed()
{
    const auto ask = [this] {
        if (!m_bGivenUp)
            emit sglConfirm();
    };
    QMetaObject::invokeMethod(this, ask, Qt::BlockingQueuedConnection);
    return m_bConfirmed && !m_bGivenUp;
}

// A panel that does not know its model and a file that names none are no match.
bool CDownloadThread::isForThisPanel(const InstallKind &kind, const std::string &model)
{
    std::string panelModel;
    const int read = kind.panelModel(panelModel);
    const bool matches = read >= 0 && !model.empty() && panelModel == model;
    if (!matches && kind.modelTrace != nullptr)
        std::printf(kind.modelTrace, panelModel.c_str(), model.c_str());
    return matches;
}

// Returns false if the program ends or the timer takes no task: nobody would hear of the install.
bool CDownloadThread::startPolling(const InstallKind &kind, const Writable &writable)
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    if (m_bGivenUp ||
        COS::CCosRateTimer::addTimer(kind.task, this, kind.timer, POLL_PERIOD_MS, FOR_EVER, 0) < 0)
        return false;
    m_polled[&kind] = writable;
    return true;
}

void CDownloadThread::stopPolling(const InstallKind &kind)
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    COS::CCosRateTimer::removeTimer(kind.timer);
    m_polled.erase(&kind);
}

// Null once the install is given up.
CDownloadThread::Writable CDownloadThread::polled(const InstallKind &kind) const
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    const auto found = m_polled.find(&kind);
    return found == m_polled.end() ? nullptr : found->second;
}

// A poll that fails tells that failure, and then the error number of a record that nobody has
// written, which is 0; this is intended.
void CDownloadThread::poll(const InstallKind &kind)
{
    const Writable writable = polled(kind); // released after the result
    if (!writable)
        return;
    UpdateStatus status;
    const UpdateResult asked = ask(UPDATE_POLL, "", POLL_TIMEOUT_MS, status);
    if (m_bGivenUp)
        return;
    if (asked == UPDATE_FAILED) {
        tell(kind.bar, BAR_FULL);
        tell(kind.result, REQUEST_FAILED);
    }
    if (status.state == UpdateStatus::INSTALLING) {
        tell(kind.bar, status.percent);
        return;
    }
    if (asked == UPDATE_TOO_SHORT)
        status.nErrNumber = REQUEST_FAILED;
    finishInstall(kind, status);
}

void CDownloadThread::finishInstall(const InstallKind &kind, const UpdateStatus &status)
{
    if (!status.model.empty())
        storeModel(kind, status.model);
    stopPolling(kind);
    tell(kind.bar, BAR_FULL);
    if (kind.resultTrace != nullptr) {
        std::printf(kind.resultTrace, status.nErrNumber);
    }
    tell(kind.result, status.nErrNumber);
}

void CDownloadThread::storeModel(const InstallKind &kind, const std::string &model)
{
    const std::lock_guard<std::mutex> lock(m_modelMutex);
    this->*kind.model = model;
}

int CDownloadThread::copyModel(std::string CDownloadThread::*from, std::string &to) const
{
    const std::lock_guard<std::mutex> lock(m_modelMutex);
    if ((this->*from).empty())
        return -1;
    to = this->*from;
    return 0;
}

int CDownloadThread::projectModel(std::string &model) const
{
    return copyModel(&CDownloadThread::m_sProjectModel, model);
}

int CDownloadThread::imageModel(std::string &model) const
{
    return copyModel(&CDownloadThread::m_sImageModel, model);
}

int UpDatePro(void *worker)
{
    auto *thread = static_cast<CDownloadThread *>(worker);
    thread->poll(CDownloadThread::PROJECT);
    return 0;
}

int UpDateImg(void *worker)
{
    auto *thread = static_cast<CDownloadThread *>(worker);
    thread->poll(CDownloadThread::IMAGE);
    return 0;
}
