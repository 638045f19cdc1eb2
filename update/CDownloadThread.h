// The one worker of the Update tabs.
#pragma once

#include "update/UpdateStatus.h"

#include <QThread>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

class WritablePartition;
struct UpdateJob;

// Carries out one job at a time: installs an HMI project or HMI firmware through the panel's update
// service, or downloads a PLC program by itself. A job ends with one result signal, 0 for success.
//
// The thread only starts an install; a task of the rate timer then asks the service how far it is,
// while the thread is free for another job. Signals therefore come from either thread, sglConfirm()
// and the PLC's result from the event loop of the object's own. Everything else: GUI thread.
class CDownloadThread : public QThread
{
    Q_OBJECT

public:
    enum Function {
        FUNC_DOWNLOAD_IMAGE = 0x1000,
        FUNC_DOWNLOAD_PRO = 0x1001,
        FUNC_DOWNLOAD_PLCPRO = 0x1002,
    };

    CDownloadThread() = default;
    // Gives up and waits for the thread. The rate timer has stopped before, since its tasks use the
    // object.
    ~CDownloadThread() override;

    // Starts the job of `code`, a Function, on the file `path`, bytes of any encoding. Returns
    // false, after saying "busy", while another job is under way; also once given up, and if the
    // system gives no thread. An unknown code does nothing.
    bool SetFunction(int code, const std::string &path);

    // The last result of each kind, as the pages show it again after a language change. The pages
    // reset the first two; a job writes the third alone.
    int projectResult() const { return m_nProjectResult; }
    void setProjectResult(int result) { m_nProjectResult = result; }
    int imageResult() const { return m_nImageResult; }
    void setImageResult(int result) { m_nImageResult = result; }
    int plcResult() const { return m_nPlcResult; }
    void setPlcResult(int result) { m_nPlcResult = result; }

    // The model that the update service has named for the file of `job` chosen last. Returns 0; -1,
    // with `model` untouched, if there is none.
    int fileModel(const UpdateJob &job, std::string &model) const;

    // The program ends: from now on nothing is asked of the update service or the operator, and no
    // signal is emitted; a question that is open counts as declined. Does not wait: a request under
    // way may finish on its thread, and the transfer of an older PLC program stops within a fifth
    // of a second. Whatever of an install ends last makes the partition read-only again.
    void giveUp();
    bool isGivenUp() const { return m_bGivenUp; } // any thread

    // The operator has accepted a newer firmware. Nothing takes that back: every later question is
    // answered yes whatever is pressed; this is intended.
    void setConfirmed() { m_bConfirmed = true; }

signals:
    void sglShowMessage();
    void sglDownLoadImageResult(int result);
    void sglDownLoadProResult(int result);
    void sglDownLoadPlcProResult(int result);
    // From the thread of the object's own, while the job waits: the answer is looked at when it
    // returns.
    void sglConfirm();
    void sglBoxMessage();
    void sglShowDownloadingPlc();
    void stringChanged();
    void sglProBarValue(int percent);
    void sglImageBarValue(int percent);

protected:
    void run() override;

private:
    friend int UpDatePro(void *worker);
    friend int UpDateImg(void *worker);

    // An install keeps one until it is over; a poll of it that is under way has it too.
    using Writable = std::shared_ptr<WritablePartition>;

    // Called by name from the thread of the job: a functor would be passed between the threads in
    // Qt alone, where the thread sanitizer does not see it.
    Q_INVOKABLE void tellPlcResult(int result);
    Q_INVOKABLE void askOperator();

    void threadDownPLC();
    UpdateResult ask(UpdateCommand command, const std::string &path, unsigned int timeoutMs,
                     UpdateStatus &status) const;
    void emitUnlessGivenUp(void (CDownloadThread::*signal)(int), int value);
    void install(const UpdateJob &job);
    void startInstall(const UpdateJob &job, const Writable &writable);
    bool isVersionFit(const UpdateJob &job, const UpdateStatus &checked);
    bool isConfirmed();
    bool isForThisPanel(const UpdateJob &job, const std::string &model);
    bool startPolling(const UpdateJob &job, const Writable &writable);
    Writable polled(const UpdateJob &job) const;
    void poll(const UpdateJob &job);
    void stopPolling(const UpdateJob &job);
    void finishInstall(const UpdateJob &job, const UpdateStatus &status);
    void storeModel(const UpdateJob &job, const std::string &model);

    // Set while a job is under way. One thread sets it and another clears it, as no mutex may be.
    std::atomic<bool> m_bBusy{false};
    int m_nFunction = 0;
    std::string m_sPath;

    std::atomic<int> m_nProjectResult{0};
    std::atomic<int> m_nImageResult{0};
    std::atomic<int> m_nPlcResult{1};
    std::atomic<bool> m_bConfirmed{false};

    mutable std::mutex m_pollMutex;                 // guards the two below
    std::map<const UpdateJob *, Writable> m_polled; // what the rate timer asks about
    std::atomic<bool> m_bGivenUp{false};            // set with the mutex held, read without

    mutable std::mutex m_modelMutex;
    std::map<const UpdateJob *, std::string> m_models; // of the files
};

// Tasks of the rate timer, under their own names: ask the update service how far the install of
// `worker`, a CDownloadThread, is, and end it. Return 0.
int UpDatePro(void *worker);
int UpDateImg(void *worker);
