// The settings window: frame, navigation, status strip, and what ties the pages together.
#pragma once

#include "app/CloudMonitor.h"
#include "app/LinkMonitor.h"
#include "app/StatusStrip.h"
#include "platform/net.h"
#include "platform/services.h"

#include <QDialog>

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class CDownloadThread;
class CommSetting;
class ComParamLists;
class General;
class Info;
class Language;
class Net4G;
class NetEth;
class NetExtend;
class NetWiFi;
class QPushButton;
class QTabWidget;
class UpdatePage;
class Version;

namespace Ui {
class Qt_MainWin;
}

// One for the life of the program. Its destruction restarts the panel and does not return. GUI
// thread, but for the signals and what is marked otherwise.
class MainWin : public QDialog
{
    Q_OBJECT

public:
    MainWin();
    ~MainWin() override;

    // Shows the window and, once its first picture is on the screen, makes the pages that are not
    // seen yet and opens what feeds them: U-disks and COM settings. Input waits until then. Once.
    void start();

    // Looks for the network service and starts the talk with it; tells the operator if it does
    // not run. Once, after start().
    void checkNetworkService();

    // Opens the update group on the tab that `word` begins with ("DownloadProject",
    // "DownloadImage"); any other word changes nothing.
    void openUpdate(const QString &word);

    // Takes the network service's records. Any thread.
    void setNetRecords(const std::vector<netT::stAllNetInfo_tag> &records);

    // One run of the online and cloud check. Rate timer's thread.
    void checkCloud();

signals:
    void sgl_Tarnicloud(bool up);
    void sgl_UDevInput(int type, std::string path);
    void sgl_UDevOutput(int type, std::string path);
    void sgl_NetChange(int type, bool online);
    void sgl_NetChange();
    void sgl_Util(int loadResult, int connectionStatus, QString text);

public slots:
    void slot_ButtonPressed();
    void slot_TabWidgetChange(int index);
    void slot_TabNetChange(int index);
    void slot_Tarnicloud(bool up);
    void slot_UDevInput(int type, std::string path);
    void slot_UDevOutput(int type, std::string path);
    void slot_NetChange(int type, bool online);
    void slot_LanguageChange(int index);
    void slot_NetChange();

private:
    // A navigation button and what it leads to.
    struct Group
    {
        QPushButton *button;
        QTabWidget *tabs;
    };

    void startTasks();
    void openScreen();
    void makeOtherPages();
    void retranslateOtherPages();
    void initLanguage();
    void initLook();
    void registerHotPlug();

    void showGroup(std::size_t index);
    void highlightGroup(std::size_t index);
    void applyStyle();
    void restart();
    void showRestartNotice();
    std::vector<netT::stAllNetInfo_tag> netRecords() const;

    std::unique_ptr<Ui::Qt_MainWin> ui;
    Info *m_pInfo = nullptr;
    Version *m_pVersion = nullptr;
    General *m_pGeneral = nullptr;
    NetEth *m_pNetEth = nullptr;
    NetWiFi *m_pNetWiFi = nullptr;
    NetExtend *m_pNetExtend = nullptr;
    Net4G *m_pNet4G = nullptr;
    CommSetting *m_pCommSetting = nullptr;
    Language *m_pLanguage = nullptr;
    std::array<UpdatePage *, 3> m_updatePages{}; // project, firmware, PLC program
    std::array<Group, 4> m_groups{};
    QSize m_screen;
    int m_nLanguage = 0; // a copy of g_nLanguge, for what is told the language
    std::size_t m_nGroup = 0;
    bool m_bRestart = false; // the operator has asked for the end

    mutable std::mutex m_recordsMutex;
    std::vector<netT::stAllNetInfo_tag> m_netRecords;
    bool m_bRecordsAnnounced = false; // sgl_NetChange() is on its way

    netT::CAsyncClient m_cloudClient;
    LinkMonitor m_links;
    CloudMonitor m_cloudMonitor;
    std::unique_ptr<dsl::CNotifyClient> m_pNotifyClient;
    std::unique_ptr<ComParamLists> m_pComParams;
    std::unique_ptr<CDownloadThread> m_pDownloadThread;
    std::optional<StatusStrip> m_strip;

    // The platform's pool and timer, running as long as the object lives. The last member, so that
    // no task outlives anything that it uses, even if the window's construction fails.
    struct Tasks
    {
        Tasks();
        ~Tasks();
        Tasks(const Tasks &) = delete;
        Tasks &operator=(const Tasks &) = delete;
    };
    std::optional<Tasks> m_tasks;
};
