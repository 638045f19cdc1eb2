#include "update/CDownloadThread.h"

#include "platform/board.h"
#include "platform/cos_thread.h"
#include "platform/machine.h"
#include "update/PlcDownload.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr unsigned int CHECK_TIMEOUT_MS = 8000;
constexpr unsigned int POLL_TIMEOUT_MS = 1000;
constexpr int POLL_PERIOD_MS = 50;
constexpr int FOR_EVER = -1;
constexpr int WAIT_SLICE_MS = 20;

constexpr int READ_ONLY = 0;
constexpr int WRITABLE = 1;

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

CDownloadThread::~CDownloadThread()
{
    disconnect();
    giveUp();
    requestInterruption();
    // A question on its way to this thread would wait for it for ever.
    while (!wait(WAIT_SLICE_MS))
        QCoreApplication::removePostedEvents(nullptr, QEvent::MetaCall);
}

bool CDownloadThread::SetFunction(int code, const QString &path)
{
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
    QMetaObject::invokeMethod(
        this, [this, result] { emit sglDownLoadPlcProResult(result); }, Qt::QueuedConnection);
}

void CDownloadThread::remount(int mode)
{
    if (remountPartion(mode, "") < 0)
        std::printf("remountPartion [%d] error \n", mode);
}

void CDownloadThread::makeWritable()
{
    ++m_nWritable;
    remount(WRITABLE);
}

// Once for each makeWritable(), whoever comes first.
void CDownloadThread::makeReadOnly()
{
    int installs = m_nWritable;
    while (installs > 0 && !m_nWritable.compare_exchange_weak(installs, installs - 1))
        ;
    if (installs > 0)
        remount(READ_ONLY);
}

void CDownloadThread::giveUp()
{
    for (const InstallKind *kind : {&PROJECT, &IMAGE})
        COS::CCosRateTimer::removeTimer(kind->timer);
    while (m_nWritable > 0)
        makeReadOnly();
}

void CDownloadThread::install(const InstallKind &kind)
{
    makeWritable();
    storeModel(kind, std::string()); // of the file chosen before
    if (!startInstall(kind))
        makeReadOnly();
    emit sglProBarValue(BAR_FULL);
}

// Returns whether the service installs and is asked about it; else the result has been told.
bool CDownloadThread::startInstall(const InstallKind &kind)
{
    const std::string path = m_sPath.toStdString();
    UpdateStatus status;
    if (askUpdateService(UPDATE_CHECK, path, CHECK_TIMEOUT_MS, status) != UPDATE_ANSWERED) {
        emit(this->*kind.result)(kind.checkFailed);
        return false;
    }
    storeModel(kind, status.model);
    std::printf("[%d][%s]\n", status.nErrNumber, status.model.c_str());
    if (!isVersionFit(kind, status))
        return false;
    if (!isForThisPanel(kind, status.model)) {
        emit sglImageBarValue(BAR_FULL);
        emit(this->*kind.result)(kind.wrongModel);
        return false;
    }
    const bool polled =
        askUpdateService(UPDATE_INSTALL, path, kind.startTimeoutMs, status) != UPDATE_FAILED &&
        COS::CCosRateTimer::addTimer(kind.task, this, kind.timer, POLL_PERIOD_MS, FOR_EVER, 0) >= 0;
    if (!polled)
        emit(this->*kind.result)(REQUEST_FAILED);
    return polled;
}

// Or if the operator takes it as it is, where he is asked.
bool CDownloadThread::isVersionFit(const InstallKind &kind, const UpdateStatus &checked)
{
    if (checked.nErrNumber != VERSION_UNFIT)
        return true;
    if (!kind.asksForNewer) {
        emit(this->*kind.result)(kind.checkFailed);
        return false;
    }
    emit sglConfirm();
    if (!m_bConfirmed)
        emit(this->*kind.result)(VERSION_UNFIT);
    return m_bConfirmed;
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

// A poll that fails tells that failure, and then the error number of a record that nobody has
// written, which is 0; this is intended.
void CDownloadThread::poll(const InstallKind &kind)
{
    UpdateStatus status;
    const UpdateResult asked = askUpdateService(UPDATE_POLL, "", POLL_TIMEOUT_MS, status);
    if (asked == UPDATE_FAILED) {
        emit(this->*kind.bar)(BAR_FULL);
        emit(this->*kind.result)(REQUEST_FAILED);
    }
    if (status.state == UpdateStatus::INSTALLING) {
        emit(this->*kind.bar)(status.percent);
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
    COS::CCosRateTimer::removeTimer(kind.timer);
    emit(this->*kind.bar)(BAR_FULL);
    if (kind.resultTrace != nullptr) {
        std::printf(kind.resultTrace, status.nErrNumber);
    }
    emit(this->*kind.result)(status.nErrNumber);
    makeReadOnly();
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
