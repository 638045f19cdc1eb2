#include "update/CDownloadThread.h"

#include "platform/cos_thread.h"
#include "update/PlcDownload.h"
#include "update/UpdateJob.h"
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

constexpr int VERSION_UNFIT = -9; // the service's error number
constexpr int REQUEST_FAILED = -11;

} // namespace

// A question that waits for this thread is delivered meanwhile, and declined.
CDownloadThread::~CDownloadThread()
{
    giveUp();
    while (m_bBusy) {
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
        wait(WAIT_SLICE_MS);
    }
    wait();
}

bool CDownloadThread::SetFunction(int code, const std::string &path)
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
    const UpdateJob *job = updateJob(m_nFunction);
    if (job == &PLC_JOB)
        threadDownPLC();
    else if (job != nullptr)
        install(*job);
    m_bBusy = false;
}

void CDownloadThread::threadDownPLC()
{
    std::printf("start download\r\n");
    char failed[PLC_TRACE_SIZE] = {};
    const int result = UpdatePLCprogram(m_sPath, failed);
    std::printf("end\r\n");
    m_nPlcResult = result;
    // The page connects after it has started the job, which may fail in less time than that takes.
    QMetaObject::invokeMethod(this, "tellPlcResult", Qt::QueuedConnection, Q_ARG(int, result));
}

void CDownloadThread::tellPlcResult(int result)
{
    emitUnlessGivenUp(&CDownloadThread::sglDownLoadPlcProResult, result);
}

void CDownloadThread::giveUp()
{
    std::map<const UpdateJob *, Writable> polled; // released without the mutex
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    m_bGivenUp = true;
    polled.swap(m_polled);
    for (const auto &[job, writable] : polled)
        COS::CCosRateTimer::removeTimer(job->install->timer);
    requestInterruption();
}

UpdateResult CDownloadThread::ask(UpdateCommand command, const std::string &path,
                                  unsigned int timeoutMs, UpdateStatus &status) const
{
    return m_bGivenUp ? UPDATE_FAILED : askUpdateService(command, path, timeoutMs, status);
}

void CDownloadThread::emitUnlessGivenUp(void (CDownloadThread::*signal)(int), int value)
{
    if (!m_bGivenUp)
        emit(this->*signal)(value);
}

void CDownloadThread::install(const UpdateJob &job)
{
    if (m_bGivenUp)
        return;
    storeModel(job, std::string()); // of the file chosen before
    startInstall(job, std::make_shared<WritablePartition>());
    emitUnlessGivenUp(job.install->startedBar, BAR_FULL);
}

void CDownloadThread::startInstall(const UpdateJob &job, const Writable &writable)
{
    UpdateStatus status;
    if (ask(UPDATE_CHECK, m_sPath, CHECK_TIMEOUT_MS, status) != UPDATE_ANSWERED) {
        emitUnlessGivenUp(job.resultSignal, job.install->checkFailed);
        return;
    }
    storeModel(job, status.model);
    std::printf("[%d][%s]\n", status.nErrNumber, status.model.c_str());
    if (!isVersionFit(job, status))
        return;
    if (!isForThisPanel(job, status.model)) {
        emitUnlessGivenUp(job.install->mismatchBar, BAR_FULL);
        emitUnlessGivenUp(job.resultSignal, job.install->wrongModel);
        return;
    }
    if (ask(UPDATE_INSTALL, m_sPath, job.install->startTimeoutMs, status) == UPDATE_FAILED ||
        !startPolling(job, writable))
        emitUnlessGivenUp(job.resultSignal, REQUEST_FAILED);
}

// Or if the operator takes it as it is, where he is asked.
bool CDownloadThread::isVersionFit(const UpdateJob &job, const UpdateStatus &checked)
{
    if (checked.nErrNumber != VERSION_UNFIT)
        return true;
    const bool wanted = job.install->asksForNewer && isConfirmed();
    if (!wanted)
        emitUnlessGivenUp(job.resultSignal, job.install->versionUnfit);
    return wanted;
}

// Whether the operator has ever said yes. A question that the program's end drops is a no.
bool CDownloadThread::isConfirmed()
{
    QMetaObject::invokeMethod(this, "askOperator", Qt::BlockingQueuedConnection);
    return m_bConfirmed && !m_bGivenUp;
}

void CDownloadThread::askOperator()
{
    if (!m_bGivenUp)
        emit sglConfirm();
}

// A panel that does not know its model and a file that names none are no match.
bool CDownloadThread::isForThisPanel(const UpdateJob &job, const std::string &model)
{
    std::string panelModel;
    const int read = job.install->panelModel(panelModel);
    const bool matches = read >= 0 && !model.empty() && panelModel == model;
    if (!matches && job.install->modelTrace != nullptr)
        std::printf(job.install->modelTrace, panelModel.c_str(), model.c_str());
    return matches;
}

// Returns false if the program ends or the timer takes no task: nobody would hear of the install.
bool CDownloadThread::startPolling(const UpdateJob &job, const Writable &writable)
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    if (m_bGivenUp || COS::CCosRateTimer::addTimer(job.install->task, this, job.install->timer,
                                                   POLL_PERIOD_MS, FOR_EVER, 0) < 0)
        return false;
    m_polled[&job] = writable;
    return true;
}

void CDownloadThread::stopPolling(const UpdateJob &job)
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    COS::CCosRateTimer::removeTimer(job.install->timer);
    m_polled.erase(&job);
}

// Null once the install is given up.
CDownloadThread::Writable CDownloadThread::polled(const UpdateJob &job) const
{
    const std::lock_guard<std::mutex> lock(m_pollMutex);
    const auto found = m_polled.find(&job);
    return found == m_polled.end() ? nullptr : found->second;
}

// A poll that fails tells that failure, and then the error number of a record that nobody has
// written, which is 0; this is intended.
void CDownloadThread::poll(const UpdateJob &job)
{
    const Writable writable = polled(job); // released after the result
    if (!writable)
        return;
    UpdateStatus status;
    const UpdateResult asked = ask(UPDATE_POLL, "", POLL_TIMEOUT_MS, status);
    if (m_bGivenUp)
        return;
    if (asked == UPDATE_FAILED) {
        emitUnlessGivenUp(job.barSignal, BAR_FULL);
        emitUnlessGivenUp(job.resultSignal, REQUEST_FAILED);
    }
    if (status.state == UpdateStatus::INSTALLING) {
        emitUnlessGivenUp(job.barSignal, status.percent);
        return;
    }
    if (asked == UPDATE_TOO_SHORT)
        status.nErrNumber = REQUEST_FAILED;
    finishInstall(job, status);
}

void CDownloadThread::finishInstall(const UpdateJob &job, const UpdateStatus &status)
{
    if (!status.model.empty())
        storeModel(job, status.model);
    stopPolling(job);
    emitUnlessGivenUp(job.barSignal, BAR_FULL);
    if (job.install->resultTrace != nullptr) {
        std::printf(job.install->resultTrace, status.nErrNumber);
    }
    emitUnlessGivenUp(job.resultSignal, status.nErrNumber);
}

void CDownloadThread::storeModel(const UpdateJob &job, const std::string &model)
{
    const std::lock_guard<std::mutex> lock(m_modelMutex);
    m_models[&job] = model;
}

int CDownloadThread::fileModel(const UpdateJob &job, std::string &model) const
{
    const std::lock_guard<std::mutex> lock(m_modelMutex);
    const auto found = m_models.find(&job);
    if (found == m_models.end() || found->second.empty())
        return -1;
    model = found->second;
    return 0;
}

int UpDatePro(void *worker)
{
    auto *thread = static_cast<CDownloadThread *>(worker);
    thread->poll(PROJECT_JOB);
    return 0;
}

int UpDateImg(void *worker)
{
    auto *thread = static_cast<CDownloadThread *>(worker);
    thread->poll(IMAGE_JOB);
    return 0;
}
