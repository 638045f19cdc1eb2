// The one worker of the Update tabs.
#pragma once

#include "update/UpdateStatus.h"

#include <QString>
#include <QThread>

#include <atomic>
#include <mutex>
#include <string>

// Carries out one job at a time: installs an HMI project or HMI firmware through the panel's update
// service, or downloads a PLC program by itself. A job ends with one result signal, 0 for success.
//
// The thread only starts an install; a task of the rate timer then asks the service how far it is,
// while the thread is free for another job. Signals therefore come from either thread, the PLC's
// result from the event loop of the object's own. Everything else: GUI thread.
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
    // Waits for the job under way; a question that it would still ask counts as declined. The rate
    // timer has stopped before, since its tasks use the object.
    ~CDownloadThread() override;

    // Starts job `code` on the file `path`. Returns false, after saying "busy", while another job
    // is under way, and if the system gives no thread. An unknown code does nothing.
    bool SetFunction(int code, const QString &path);

    // The last result of each kind, as the pages show it again after a language change. The pages
    // reset the first two; a job writes the third alone.
    int projectResult() const { return m_nProjectResult; }
    void setProjectResult(int result) { m_nProjectResult = result; }
    int imageResult() const { return m_nImageResult; }
    void setImageResult(int result) { m_nImageResult = result; }
    int plcResult() const { return m_nPlcResult; }
    void setPlcResult(int result) { m_nPlcResult = result; }

    // The model that the update service has named for the project, or for the firmware, chosen
    // last. Returns 0; -1, with `model` untouched, if there is none.
    int projectModel(std::string &model) const;
    int imageModel(std::string &model) const;

    // The program ends: nobody asks about an install any more, and the partition is read-only
    // again. The update service may still be at work.
    void giveUp();

    // The operator has accepted a newer firmware. Nothing takes that back: every later question is
    // answered yes whatever is pressed; this is intended.
    void setConfirmed() { m_bConfirmed = true; }

signals:
    void sglShowMessage();
    void sglDownLoadImageResult(int result);
    void sglDownLoadProResult(int result);
    void sglDownLoadPlcProResult(int result);
    // To be connected so that it blocks: the answer is looked at when it returns.
    void sglConfirm();
    void sglBoxMessage();
    void sglShowDownloadingPlc();
    void stringChanged();
    void sglProBarValue(int percent);
    void sglImageBarValue(int percent);

protected:
    void run() override;

private:
    struct InstallKind;
    static const InstallKind PROJECT;
    static const InstallKind IMAGE;

    friend int UpDatePro(void *worker);
    friend int UpDateImg(void *worker);

    void threadDownPLC();
    static void remount(int mode);
    void makeWritable();
    void makeReadOnly();
    void install(const InstallKind &kind);
    bool startInstall(const InstallKind &kind);
    bool isVersionFit(const InstallKind &kind, const UpdateStatus &checked);
    bool isForThisPanel(const InstallKind &kind, const std::string &model);
    void poll(const InstallKind &kind);
    void finishInstall(const InstallKind &kind, const UpdateStatus &status);
    void storeModel(const InstallKind &kind, const std::string &model);
    int copyModel(std::string CDownloadThread::*from, std::string &to) const;

    // Set while a job is under way. One thread sets it and another clears it, as no mutex may be.
    std::atomic<bool> m_bBusy{false};
    int m_nFunction = 0;
    QString m_sPath;

    std::atomic<int> m_nProjectResult{0};
    std::atomic<int> m_nImageResult{0};
    std::atomic<int> m_nPlcResult{1};
    std::atomic<bool> m_bConfirmed{false};
    std::atomic<int> m_nWritable{0}; // installs that have made the partition writable

    mutable std::mutex m_modelMutex;
    std::string m_sProjectModel;
    std::string m_sImageModel;
};

// Tasks of the rate timer, under their own names: ask the update service how far the install of
// `worker`, a CDownloadThread, is, and end it. Return 0.
int UpDatePro(void *worker);
int UpDateImg(void *worker);
