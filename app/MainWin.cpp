#include "app/MainWin.h"

#include "app/look/BoxHelpers.h"
#include "app/look/DismissGuard.h"
#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "app/PageStack.h"
#include "app/PlatformCallbacks.h"
#include "app/Shutdown.h"
#include "machine/Info.h"
#include "machine/Version.h"
#include "network/Net4G.h"
#include "network/NetEth.h"
#include "network/NetExtend.h"
#include "network/NetWiFi.h"
#include "network/NetWorkTestUi.h"
#include "platform/board.h"
#include "platform/cos_process.h"
#include "platform/cos_thread.h"
#include "resources/Resources.h"
#include "system/CommSetting.h"
#include "system/ComParam.h"
#include "system/General.h"
#include "system/Language.h"
#include "system/LanguageSettings.h"
#include "ui_Qt_MainWin.h"
#include "update/CDownloadThread.h"
#include "update/DownLoadHmiImage.h"
#include "update/DownLoadHmiPro.h"
#include "update/DownLoadPlcPro.h"

#include <QApplication>

#include <cstdio>
#include <utility>

namespace {

constexpr int TICK_MS = 50;
constexpr int BUZZER_PERIOD_MS = 50;
constexpr int CLOUD_PERIOD_MS = 2000;
constexpr int REPEAT_FOR_EVER = -1;
constexpr int START_BEEP_MS = 480;
constexpr unsigned int RECORDS_TIMEOUT_MS = 5000;

constexpr int MOST_LINES_OF_SMALL_PICTURES = 480;

constexpr std::size_t UPDATE_GROUP = 2;
constexpr int WIFI_TAB = 1;
constexpr int LANGUAGE_TAB = 2;
constexpr int TABS_ACROSS = 5; // tabs that fit side by side on the screen

} // namespace

MainWin::MainWin()
    : ui(std::make_unique<Ui::Qt_MainWin>()),
      m_links({[this] { m_pNetExtend->refreshPriority(); },
               [this](int type, bool online) { emit sgl_NetChange(type, online); }}),
      m_cloudMonitor(m_cloudClient, OnCloudMessage, this, m_links,
                     {[this](int load, int status, const std::string &region) {
                          emit sgl_Util(load, status, QString::fromStdString(region));
                      },
                      [this](bool up) { emit sgl_Tarnicloud(up); }})
{
    std::puts("=====================start sysset");
    startTasks();
    m_pNotifyClient = std::make_unique<dsl::CNotifyClient>();
    openScreen();
    ui->setupUi(this); // its initial tab already clicks, and comes before there are pages
    growLayouts(this);
    m_groups = {{{ui->btn_Machine, ui->tab_Machine},
                 {ui->btn_Net, ui->tab_Net},
                 {ui->btn_UpData, ui->tab_UpData},
                 {ui->btn_Sysset, ui->tab_System}}};
    m_pInfo = ui->wdg_Info->setPage<Info>();
    m_pDownloadThread = std::make_unique<CDownloadThread>();
    // The tabs of the widest group fill the page area exactly.
    ui->stackedWidget->setFixedWidth(tabWidth() * (TABS_ACROSS - 1));
    setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    new DismissGuard(this, false);
    initLanguage();
    initLook();
}

void MainWin::start()
{
    show();
    // The first call paints the window, the second lets the screen take what is painted.
    for (int call = 0; call < 2; ++call)
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    makeOtherPages();
    registerHotPlug();
    m_pComParams = std::make_unique<ComParamLists>();
    m_pCommSetting->init(m_pComParams.get());
    m_pGeneral->init(m_pComParams.get());
}

MainWin::~MainWin()
{
    m_links.stop();
    if (m_pNetExtend != nullptr)
        m_pNetExtend->diagnosis()->stop();
    m_pDownloadThread->giveUp();
    const auto stopWorker = [this](int waitMs) {
        return m_pDownloadThread->wait(static_cast<unsigned long>(waitMs));
    };
    const bool quiet = stopAll(
        {COS::CCosRateTimer::destory, COS::CCosThreadPool::destory, stopWorker, stopCallbacks},
        [this] { showRestartNotice(); });
    if (quiet) { // else they may still be in use
        m_pDownloadThread.reset();
        m_pNotifyClient.reset();
        m_pComParams.reset();
    }
    syncDisks();
    const bool hardware = !m_bRestart || PLATFORM::CPlatCpu::enableReboot() != 0;
    reboot(hardware ? 1 : 0, quiet);
}

void MainWin::showRestartNotice()
{
    auto *box = new MessageBox(BOX_INFORMATION, this);
    box->setText(tr("Restarting. Please wait."));
    for (QPushButton *button : box->findChildren<QPushButton *>())
        button->hide();
    const QSize corner = fractionOf(m_screen, 0.25, 0.25);
    placeOnScreen(box, fractionOf(m_screen, 0.5, 0.5), {corner.width(), corner.height()});
    box->show();
}

MainWin::Tasks::Tasks()
{
    COS::CCosThreadPool::init(1, 5, 20);
    COS::CCosRateTimer::init(TICK_MS);
}

MainWin::Tasks::~Tasks()
{
    stopCallbacks(0);
    COS::CCosRateTimer::destory();
    COS::CCosThreadPool::destory();
}

void MainWin::startTasks()
{
    m_tasks.emplace();
    connect(this, &MainWin::sgl_Tarnicloud, this, &MainWin::slot_Tarnicloud);
    COS::CCosRateTimer::addTimer(Buzzer_Thread, nullptr, "Buzzer_Thread", BUZZER_PERIOD_MS,
                                 REPEAT_FOR_EVER, 0);
    COS::CCosRateTimer::addTimer(CheckTarnicloud_Thread, this, "CheckTarnicloud_Thread",
                                 CLOUD_PERIOD_MS, REPEAT_FOR_EVER, 0);
}

void MainWin::openScreen()
{
    PLATFORM::CPlatLcd::open();
    m_screen = screenSize();
    QApplication::setFont(panelFont());
    Beep(START_BEEP_MS);
    setFixedSize(m_screen);
    if (m_screen.height() > MOST_LINES_OF_SMALL_PICTURES)
        loadLargePictures();
}

void MainWin::makeOtherPages()
{
    m_pVersion = ui->wdg_Version->setPage<Version>();
    m_pNetEth = ui->wdg_Eth->setPage<NetEth>();
    m_pNetWiFi = ui->wdg_Wifi->setPage<NetWiFi>();
    m_pNet4G = ui->wdg_SIM4G->setPage<Net4G>();
    m_pNetExtend = ui->wdg_NetExtend->setPage<NetExtend>();
    m_pCommSetting = ui->wdg_CommSetting->setPage<CommSetting>();
    m_pGeneral = ui->wdg_Gerneral->setPage<General>();
    m_pLanguage = ui->wdg_Language->setPage<Language>();
    m_updatePages = {ui->wdg_HmiPro->setPage<DownLoadHmiPro>(),
                     ui->wdg_HmiImage->setPage<DownLoadHmiImage>(),
                     ui->wdg_PlcPro->setPage<DownLoadPlcPro>()};
    for (UpdatePage *page : m_updatePages)
        page->setWorker(m_pDownloadThread.get());
    retranslateOtherPages();
    connect(m_pLanguage, &Language::sgl_LanguageChange, this, &MainWin::slot_LanguageChange);
    connect(this, &MainWin::sgl_Util, m_pNetExtend->diagnosis(), &NetWorkTestUi::slot_Util);
}

void MainWin::retranslateOtherPages()
{
    m_pNetExtend->diagnosis()->setLanguage(m_nLanguage);
    m_pCommSetting->retranslate();
    m_pGeneral->retranslate();
    m_pNetEth->retranslate();
    m_pNetWiFi->retranslate();
    for (UpdatePage *page : m_updatePages)
        page->retranslate();
    m_pNet4G->retranslate();
    m_pVersion->retranslate();
    m_pNetExtend->diagnosis()->retranslate();
    m_pNetExtend->retranslate();
    m_pLanguage->retranslate(m_nLanguage);
}

void MainWin::initLanguage()
{
    loadLanguageSettings();
    m_nLanguage = g_nLanguge;
    ui->retranslateUi(this);
    m_pInfo->retranslate();
    if (!g_bChange)
        ui->tab_System->removeTab(LANGUAGE_TAB);
}

void MainWin::initLook()
{
    ui->stackedWidget->setCurrentIndex(3);
    ui->tab_Machine->setCurrentIndex(0);
    ui->stackedWidget->setCurrentIndex(0);
    m_strip.emplace(
        StatusStrip::Labels{ui->lab_usb, ui->lab_Eth, ui->lab_wifi, ui->lab_4g, ui->lab_cloud});
    applyStyle();
    highlightGroup(0);
    applyPendingStyles(ui->wdg_Status);
    connect(this, qOverload<int, bool>(&MainWin::sgl_NetChange), this,
            qOverload<int, bool>(&MainWin::slot_NetChange));
    connect(this, qOverload<>(&MainWin::sgl_NetChange), this,
            qOverload<>(&MainWin::slot_NetChange));
}

void MainWin::registerHotPlug()
{
    qRegisterMetaType<std::string>("std::string");
    connect(this, &MainWin::sgl_UDevInput, this, &MainWin::slot_UDevInput,
            Qt::BlockingQueuedConnection);
    connect(this, &MainWin::sgl_UDevOutput, this, &MainWin::slot_UDevOutput,
            Qt::BlockingQueuedConnection);
    PLATFORM::CPlatMedia::addDev(
        {PLATFORM::DEV_ETH, PLATFORM::DEV_WIFI, PLATFORM::DEV_4G, PLATFORM::DEV_UDISK},
        {OnUdiskAdd, OnUdiskRemove}, this);
}

void MainWin::checkNetworkService()
{
    if (COS::CosOsState::GetProcessPIDByName("netServer") < 0) {
        runBox(BOX_INFORMATION, this, tr("netServer not run"));
        return;
    }
    const int result =
        netT::getAllNetInfoCallBack(getAllNetInfo, this, true, RECORDS_TIMEOUT_MS, true);
    std::puts(result >= 0 ? "InitNetWork OK" : "InitNetWork Error");
    m_pNetWiFi->startRefresh();
    m_pNet4G->start();
}

void MainWin::openUpdate(const QString &word)
{
    disconnect(ui->tab_UpData, SIGNAL(currentChanged(int)), this, SLOT(slot_TabWidgetChange(int)));
    const bool project = word.startsWith(QLatin1String("DownloadProject"));
    if (project || word.startsWith(QLatin1String("DownloadImage"))) {
        ui->stackedWidget->setCurrentIndex(static_cast<int>(UPDATE_GROUP));
        ui->tab_UpData->setCurrentIndex(project ? 0 : 1);
        highlightGroup(UPDATE_GROUP);
    }
    connect(ui->tab_UpData, SIGNAL(currentChanged(int)), this, SLOT(slot_TabWidgetChange(int)));
}

void MainWin::setNetRecords(const std::vector<netT::stAllNetInfo_tag> &records)
{
    {
        const std::lock_guard<std::mutex> lock(m_recordsMutex);
        m_netRecords = records;
        // The pages ask a service that may be slow: a burst of records must not queue up.
        if (std::exchange(m_bRecordsAnnounced, true))
            return;
    }
    emit sgl_NetChange();
}

std::vector<netT::stAllNetInfo_tag> MainWin::netRecords() const
{
    const std::lock_guard<std::mutex> lock(m_recordsMutex);
    return m_netRecords;
}

void MainWin::checkCloud()
{
    m_cloudMonitor.run(netRecords());
}

void MainWin::slot_ButtonPressed()
{
    if (sender() == ui->btn_Reboot) {
        restart();
        return;
    }
    for (std::size_t index = 0; index < m_groups.size(); ++index) {
        if (sender() == m_groups[index].button)
            showGroup(index);
    }
}

void MainWin::showGroup(std::size_t index)
{
    // The tab first, so that the one before it does not come into view for a moment.
    QTabWidget *tabs = m_groups[index].tabs;
    if (tabs->currentIndex() == 0)
        keyClick();
    else
        tabs->setCurrentIndex(0); // clicks in slot_TabWidgetChange
    ui->stackedWidget->setCurrentIndex(static_cast<int>(index));
    highlightGroup(index);
}

void MainWin::highlightGroup(std::size_t index)
{
    m_nGroup = index;
    for (std::size_t group = 0; group < m_groups.size(); ++group)
        setStyleOnce(m_groups[group].button, navigationStyle(group == index));
}

void MainWin::slot_TabWidgetChange(int)
{
    keyClick();
}

// Bound by the form, which runs it once before there are pages.
void MainWin::slot_TabNetChange(int index)
{
    if (m_pNetWiFi != nullptr)
        m_pNetWiFi->setPageVisible(index == WIFI_TAB);
}

void MainWin::slot_Tarnicloud(bool up)
{
    m_strip->setCloud(up);
    std::printf("slot_Tarnicloud [%d][%d]\n", m_cloudMonitor.loadResult(),
                m_cloudMonitor.isCloudUp() ? 1 : 0);
}

void MainWin::slot_UDevInput(int type, std::string path)
{
    if (type == PLATFORM::DEV_UDISK) {
        m_strip->setUsb(true);
        for (UpdatePage *page : m_updatePages) {
            page->setUdiskPresent(true);
            page->listUdisk(path);
        }
    }
}

void MainWin::slot_UDevOutput(int type, std::string)
{
    if (type == PLATFORM::DEV_UDISK) {
        m_strip->setUsb(false);
        for (UpdatePage *page : m_updatePages) {
            page->setUdiskPresent(false);
            page->clearUdisk();
        }
    } else if (type == PLATFORM::DEV_WIFI) {
        slot_NetChange();
    }
}

void MainWin::slot_NetChange(int type, bool online)
{
    m_strip->setLink(type, online);
}

void MainWin::slot_NetChange()
{
    {
        const std::lock_guard<std::mutex> lock(m_recordsMutex);
        m_bRecordsAnnounced = false;
    }
    for (const netT::stAllNetInfo_tag &record : netRecords()) {
        std::printf("[%s][%s][%s]\n", record.sDevName.c_str(), record.sNetType.c_str(),
                    record.sIpAddr.c_str());
        if (record.sNetType == "ETH") {
            m_pNetEth->setNetInfo(record);
            m_pNetExtend->diagnosis()->setEthDevice(record.sDevName);
        } else if (record.sNetType == "WIFI") {
            m_pNetWiFi->setNetInfo(record);
            m_pNetExtend->diagnosis()->setWifiDevice(m_pNetWiFi->deviceName());
        } else if (record.sNetType == "4G") {
            m_pNet4G->setNetInfo(record);
            m_pNetExtend->diagnosis()->set4gDevice(record.sDevName);
        }
    }
}

void MainWin::slot_LanguageChange(int index)
{
    m_nLanguage = index == LANGUAGE_ENGLISH ? LANGUAGE_ENGLISH : LANGUAGE_CHINESE;
    applyLanguage(m_nLanguage);
    for (PageTab *tab : findChildren<PageTab *>())
        tab->parkPage();
    ui->retranslateUi(this);
    applyStyle();
    highlightGroup(m_nGroup);
    m_pInfo->retranslate();
    retranslateOtherPages();
}

// The window's own sheet comes first: whatever has one by then is styled once more.
void MainWin::applyStyle()
{
    setStyleOnce(this, windowStyle());
    const QString tabs = tabStyle();
    for (const Group &group : m_groups) {
        const bool updates = group.tabs == ui->tab_UpData;
        const QString style = updates ? tabs + updateStyle() : tabs;
        // The window is not shown yet at the start: its first group would be styled twice.
        if (&group == &m_groups[m_nGroup])
            setStyleOnce(group.tabs, style);
        else
            setStyleWhenSeen(group.tabs, style);
    }
    setStyleOnce(ui->btn_Reboot, navigationStyle(false));
}

void MainWin::restart()
{
    keyClick();
    if (runBox(BOX_QUESTION, this, tr("Are you sure you want to restart HMI?")) == 0)
        return;
    m_bRestart = true;
    QApplication::quit();
}
