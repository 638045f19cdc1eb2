// The network diagnosis: why the panel cannot reach the cloud, link by link.
#pragma once

#include "network/NetWorkTestTexts.h"

#include <QDialog>

#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

class NetWorkTestItem;
class QMovie;

namespace Ui {
class NetWorkTestUi;
}

// The form and its rows are made when the dialog first opens. It can be closed while a run goes on,
// which then comes to its end unseen. GUI thread, but for what is marked otherwise.
class NetWorkTestUi : public QDialog
{
    Q_OBJECT

public:
    explicit NetWorkTestUi(QWidget *parent = nullptr);
    // Waits for a run under way, at most as long as the call that it waits for.
    ~NetWorkTestUi() override;

    // The item file of the rows' texts: 0 Chinese, 1 English. Changes the rows that are shown, too.
    void setLanguage(int language);
    // Sets texts and style sheets anew, after a language change.
    void retranslate();

    // The names by which the network service knows the devices. Any thread; the next run uses them.
    void setEthDevice(const std::string &device) { setDevice(0, device); }
    void setWifiDevice(const std::string &device) { setDevice(1, device); }
    void set4gDevice(const std::string &device) { setDevice(2, device); }

    // Makes a run that is under way end after the call that it waits for, and later ones do
    // nothing. Any thread.
    void stop() { m_bStopped = true; }

    // One run, with its mutex held: a second one waits. A worker's thread, or any.
    void runTest();

signals:
    // 0: a run begins; 1: it is over.
    void sgl_BtnCheck(int enabled);
    // `state` is a NetWorkTestState.
    void sgl_TestStatus(int item, int state);

public slots:
    // The cloud monitor's report: the result of loading its configuration, the status of its client
    // (1 connected, -5 to -2 the stage at which it stopped), its region.
    void slot_Util(int loadResult, int connectionStatus, QString text);
    void slot_TestStatus(int item, int state);
    void slot_BtnCheck(int enabled);
    void slot_ButtonPressed();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    enum class Phase { Untested, Refused, Running, Done };

    void build();
    void awaitCloud() const;
    void startRun();
    void setPhase(Phase phase);
    QString phaseText() const;
    void clearRows();
    void makeRow(int item);
    void setRowTexts();
    void setRowText(int item);
    void scrollLater();
    void scroll();
    const NetWorkTestItem *firstFailed() const;
    void animate();
    void setDevice(std::size_t link, const std::string &device);

    std::unique_ptr<Ui::NetWorkTestUi> ui; // null until the dialog first opens
    QMovie *m_pRunning = nullptr;
    std::array<NetWorkTestItem *, NETWORK_TEST_KEYS.size()> m_rows{}; // null: not reported yet
    NetWorkTestTexts m_texts;
    int m_nLanguage = 0;
    QString m_sRegion;
    Phase m_phase = Phase::Untested;
    bool m_bScrolledAway = false; // the operator has scrolled to another row

    // Shared with the worker.
    std::mutex m_runMutex; // held for a whole run
    std::mutex m_mutex;    // of the members down to the next blank line
    std::array<std::string, 3> m_devices;
    int m_nJobs = 0; // of this dialog in the pool; one may still be ending when the next is there
    std::condition_variable m_jobDone;

    std::atomic<bool> m_bStopped{false};
    std::atomic<bool> m_bCloudKnown{false}; // the next two hold the cloud monitor's report
    std::atomic<int> m_nLoadResult{-1};
    std::atomic<int> m_nConnectionStatus{-1};
    std::atomic<int> m_nResult{0};
    std::array<std::atomic<int>, NETWORK_TEST_KEYS.size()> m_values{}; // that go with the states
};

// The worker: one run of `dialog`, a NetWorkTestUi. Returns 0. Any thread.
int NetWorkTest_Thread(void *dialog);
