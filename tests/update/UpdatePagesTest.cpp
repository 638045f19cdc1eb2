#include "app/look/FontStyle.h"
#include "platform/cos_thread.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/LanguageSettings.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Text.h"
#include "update/DownLoadHmiImage.h"
#include "update/DownLoadHmiPro.h"
#include "update/DownLoadPlcPro.h"
#include "update/Progress.h"

#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QtTest>

#include <map>
#include <memory>

using sim::Json;
using sim::panel;

namespace {

const QString NO_UDISK = "Failed to recognize U disk, please check it or change new one!"_s;

enum Page { PROJECT, FIRMWARE, PLC };
const char *const LISTS[] = {"list_Pro", "list_Image", "list_PlcPro"};
const char *const BARS[] = {"bar_Project", "bar_Image", "bar_PlcPro"};
const char *const BUTTONS[] = {"btn_DownLoadPro", "btn_DownLoadImage", "btn_DownLoadPlcPro"};
const char *const LABELS[] = {"lab_Pro", "lab_Image", "lab_PlcPro"};
const char *const RESULT_SLOTS[] = {"slot_ShowDownProReResult", "slot_ShowDownImageReResult",
                                    "slot_ShowDownPlcProReResult"};

// The English texts by code, and of all other codes.
struct Texts
{
    std::map<int, QString> byCode;
    QString other;
    int lowest;
};

const QString TIMEOUT = "Download timeout,\r\nThe reasons may be as follows:\r\n"
                        "1.Communication parameter setting error\r\n"
                        "2.Communication cable is abnormal"_s;
const QString CABLE = "\r\n2.Communication cable is abnormal"_s;
const QString UNMATCHED =
    "Project file unmatched. Please select the project that matches HMI firmware."_s;
const QString PARAMETER =
    "Download the PLC parameter failed!\r\n1.please check the PLC parameter setting!"_s + CABLE;

const Texts TEXTS[] = {
    {{{0, "Updated, please restart HMI!"_s},
      {-1, "The project img file is not found in Udisk."_s},
      {-4, "Failed to get HMI model."_s},
      {-5, "HMI model: KV070T\nModel settings in project: \n"
           "Model does not match, please modify it!"_s},
      {-8, UNMATCHED}},
     "Failed to update, please restart HMI!"_s,
     -8},
    {{{0, "Updated firmware\r\nPlease restart HMI!!"_s},
      {-1, "Failed to get Udisk HMI firmware."_s},
      {-4, "Failed to get HMI model."_s},
      {-8, UNMATCHED},
      {-9, UNMATCHED},
      {-11, "Failed to get Udisk HMI model."_s}},
     QString(),
     -11},
    {{{0, "Updated PLC program!"_s},
      {-1, "Failed to update PLC program!"_s},
      {-2, "Failed to open COM !!"_s},
      {-3, TIMEOUT},
      {-4, "Download password error!!"_s},
      {-5, "Unable to communicate with the PLC!"_s},
      {-6, "Unable to stop PLC\uFF01"_s},
      {-7, "Unable to communicate with the PLC!"_s},
      {-8, "Failed to read file !!"_s},
      {-9, "Download the PLC program failed!\r\n1.please check the PLC program!"_s + CABLE},
      {-10, "Download the PLC comment failed!\r\n1.please check the PLC comment!"_s + CABLE},
      {-11, "Download the PLC memory failed!\r\n1.please check the PLC memory!"_s + CABLE},
      {-12, "Failed to download the electronic CAM table!\r\n"
            "1.please check the related parameters!"_s +
                CABLE},
      {-13, "Unable to communicate with the PLC!"_s},
      {-14, "Failed to set disable upload!"_s},
      {-15, "Failed to read file !!"_s},
      {-16, "PLC type does not match!!"_s},
      {-17, PARAMETER},
      {-18, PARAMETER},
      {-19, "PLC version does not match!!"_s},
      {-20, "Failed to update PLC program!"_s},
      {-21, "Failed to open COM !!"_s},
      {-22, "Failed to read file !!"_s},
      {-23, "PLC version does not match!!"_s},
      {-24, "Download password error!!"_s},
      {-25, TIMEOUT},
      {-26, "Failed to update PLC subprogram!!"_s},
      {-27, "The file contains prohibit uploading setting, but this PLC does not support it!!"_s},
      {-28,
       "The file contains subroutine encryption setting, but this PLC does not support it!!"_s},
      {-29, "The file contains program ID, but this PLC does not support it!!"_s},
      {-30, "The program ID error!!"_s},
      {-31, "The program ID required by the PLC isn't found in the update file, the download "
            "error!!"_s},
      {-32, "Program exceeds capacity range!!"_s},
      {-33, "Comment exceeds capacity range!!"_s}},
     "Failed to set disable upload!"_s,
     -33},
};

bool isChinese(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar letter) { return letter.script() == QChar::Script_Han; });
}

} // namespace

// The three pages on a U-disk that is a folder, with the worker and the simulated services.
class UpdatePagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void cleanup();
    void resultTexts_data();
    void resultTexts();
    void listing();
    void hostileNames();
    void jobFromPressToBox_data();
    void jobFromPressToBox();
    void modelReports();
    void rowOutOfRange();
    void pageWaitsWhileWorkerIsBusy();
    void newerFirmwareAsks();
    void removalDuringJob();
    void barsMove();
    void afterLanguageChange();

private:
    void insert();
    void addFiles(const QList<QByteArray> &names) const;
    template <typename Widget>
    Widget *find(Page page, const char *const *names) const
    {
        return m_pages[page]->findChild<Widget *>(QString::fromLatin1(names[page]));
    }
    QListWidget *list(Page page) const { return find<QListWidget>(page, LISTS); }
    QStringList rows(Page page) const;
    QString label(Page page) const { return find<QLabel>(page, LABELS)->text(); }
    void pick(Page page, int row) const;
    void press(Page page) const
    {
        QTest::mouseClick(find<QPushButton>(page, BUTTONS), Qt::LeftButton);
    }

    PanelRoot m_root;
    std::unique_ptr<QTemporaryDir> m_stick;
    std::unique_ptr<CDownloadThread> m_worker;
    std::array<std::unique_ptr<UpdatePage>, 3> m_pages;
};

void UpdatePagesTest::init()
{
    panel().reset();
    m_root.clear();
    applyLanguage(LANGUAGE_ENGLISH);
    g_Progress.nPercent = 0;
    COS::CCosRateTimer::init(50);
    m_stick = std::make_unique<QTemporaryDir>();
    m_worker = std::make_unique<CDownloadThread>();
    m_pages = {std::make_unique<DownLoadHmiPro>(), std::make_unique<DownLoadHmiImage>(),
               std::make_unique<DownLoadPlcPro>()};
    for (const auto &page : m_pages) {
        page->setWorker(m_worker.get());
        page->retranslate();
        page->resize(600, 400);
        page->show();
    }
}

void UpdatePagesTest::cleanup()
{
    QVERIFY(dialogsDone());
    COS::CCosRateTimer::destory();
    m_worker.reset();
    for (auto &page : m_pages)
        page.reset();
}

void UpdatePagesTest::addFiles(const QList<QByteArray> &names) const
{
    for (const QByteArray &name : names) {
        const QByteArray path = m_stick->path().toUtf8() + '/' + name;
        std::FILE *file = std::fopen(path.constData(), "w");
        QVERIFY(file != nullptr);
        std::fputs("content", file);
        std::fclose(file);
    }
}

void UpdatePagesTest::insert()
{
    for (const auto &page : m_pages) {
        page->setUdiskPresent(true);
        page->listUdisk(m_stick->path().toStdString());
    }
}

QStringList UpdatePagesTest::rows(Page page) const
{
    QStringList texts;
    for (int row = 0; row < list(page)->count(); ++row)
        texts += list(page)->item(row)->text();
    return texts;
}

void UpdatePagesTest::pick(Page page, int row) const
{
    QListWidget *view = list(page);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualItemRect(view->item(row)).center());
}

void UpdatePagesTest::resultTexts_data()
{
    QTest::addColumn<int>("page");
    QTest::newRow("project") << int(PROJECT);
    QTest::newRow("firmware") << int(FIRMWARE);
    QTest::newRow("PLC program") << int(PLC);
}

// Every code, one above the range and one below, in both languages.
void UpdatePagesTest::resultTexts()
{
    QFETCH(int, page);
    const Texts &texts = TEXTS[page];
    const auto textOf = [&](int code) {
        QMetaObject::invokeMethod(m_pages[page].get(), RESULT_SLOTS[page], Q_ARG(int, code));
        return label(Page(page));
    };
    for (int code = texts.lowest - 1; code <= 1; ++code) {
        const auto known = texts.byCode.find(code);
        QCOMPARE(textOf(code), known == texts.byCode.end() ? texts.other : known->second);
    }
    applyLanguage(LANGUAGE_CHINESE);
    std::map<QString, QString> english; // by the Chinese of it: no two texts may become one
    for (int code = texts.lowest - 1; code <= 1; ++code) {
        const auto known = texts.byCode.find(code);
        const QStringList expected =
            (known == texts.byCode.end() ? texts.other : known->second).split(u'\n');
        const QStringList lines = textOf(code).split(u'\n');
        QCOMPARE(lines.size(), expected.size());
        for (int i = 0; i < lines.size(); ++i) {
            QVERIFY2(isChinese(lines[i]) || expected[i].isEmpty(), qPrintable(lines[i]));
            QCOMPARE(english.emplace(lines[i], expected[i]).first->second, expected[i]);
        }
    }
    if (page == PLC)
        QVERIFY(textOf(-6).endsWith(u'\uFF01'));
}

void UpdatePagesTest::listing()
{
    QCOMPARE(label(PLC), NO_UDISK);
    insert(); // an empty one takes no number
    QCOMPARE(label(PLC), "Please select PLC project."_s);
    addFiles({"a.tmt3", "a.tmt3.bak", "b.osf2", "c.osf3", "logo.osf2", "logos.osf2", "d.bin",
              "old.binary", "tmt3", "README"});
    insert();
    const QStringList projects = {"U1/a.tmt3"_s, "U1/a.tmt3.bak"_s};
    QCOMPARE(rows(PROJECT), projects);
    QCOMPARE(rows(FIRMWARE), QStringList({"U1/c.osf3"_s, "U1/logo.osf2"_s, "U1/logos.osf2"_s}));
    QCOMPARE(rows(PLC), QStringList({"U1/d.bin"_s, "U1/old.binary"_s}));
    insert();
    QCOMPARE(rows(PROJECT), projects + QStringList({"U2/a.tmt3"_s, "U2/a.tmt3.bak"_s}));
    m_pages[PROJECT]->clearUdisk();
    QCOMPARE(rows(PROJECT), QStringList());
    QCOMPARE(label(PROJECT), NO_UDISK);
    insert();
    QCOMPARE(rows(PROJECT), projects);
}

void UpdatePagesTest::hostileNames()
{
    const QByteArray longName = QByteArray(250, 'x') + ".tmt3";
    addFiles({"%s%n.tmt3", "<img src=x>.tmt3", "two\nlines.tmt3", "caf\xE9.tmt3",
              "\xE5\xB7\xA5\xE7\xA8\x8B.tmt3", "%1 %2.tmt3", longName});
    insert();
    const QStringList shown = rows(PROJECT);
    for (const QString &name :
         {"%s%n.tmt3"_s, "<img src=x>.tmt3"_s, "two\\x0Alines.tmt3"_s, "caf\\xE9.tmt3"_s,
          "\u5DE5\u7A0B.tmt3"_s, "%1 %2.tmt3"_s, QString::fromLatin1(longName)})
        QVERIFY2(shown.contains("U1/"_s + name), qPrintable(name));
    for (int row = 0; row < shown.size(); ++row) {
        list(PROJECT)->scrollToItem(list(PROJECT)->item(row));
        pick(PROJECT, row);
        QCOMPARE(label(PROJECT), "Selected HMI project:"_s + shown[row]);
        QCOMPARE(m_pages[PROJECT]->width(), 600);
    }
    // Another U-disk and another language leave what is read and chosen where it is.
    for (int i = 0; i < 99; ++i)
        addFiles({QByteArray::number(i) + ".tmt3"});
    insert();
    list(PROJECT)->scrollToItem(list(PROJECT)->item(50));
    pick(PROJECT, 50);
    const int place = list(PROJECT)->verticalScrollBar()->value();
    QVERIFY(place > 0);
    insert();
    m_pages[PROJECT]->retranslate();
    QCOMPARE(list(PROJECT)->verticalScrollBar()->value(), place);
    QCOMPARE(list(PROJECT)->currentRow(), 50);
}

void UpdatePagesTest::jobFromPressToBox_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QByteArray>("orders");
    QTest::addColumn<QString>("downloading");
    QTest::addColumn<QString>("box");

    const auto row = [](const char *name, Page page, const char *orders, const char *downloading,
                        const char *box) {
        QTest::newRow(name)
            << int(page) << QByteArray(orders)
            << "Downloading %1:U1/a%2,Please do not shut down or replug the device!"_s.arg(
                   QString::fromLatin1(downloading),
                   QStringList({".tmt3"_s, ".osf3"_s, ".bin"_s})[page])
            << QString::fromLatin1(box);
    };
    const char *quick = R"({"update": {"steps": [20]}})";
    const char *bad = R"({"update": {"steps": [], "result": -3}, "fail": [["plc.Commu", -5]]})";
    row("project", PROJECT, quick, "HMI project",
        "Download successfully!\nUpdated, please restart HMI!");
    row("firmware", FIRMWARE, quick, "HMI firmware",
        "Update Successful\nUpdated firmware\r\nPlease restart HMI!!");
    row("PLC program", PLC, quick, "PLC project", "Download successfully!\nUpdated PLC program!");
    row("project fails", PROJECT, bad, "HMI project",
        "Download failure!\nFailed to update, please restart HMI!");
    row("firmware fails without a text", FIRMWARE, bad, "HMI firmware", "Update failure!");
    row("PLC fails", PLC, bad, "PLC project",
        "Download failure!\nUnable to communicate with the PLC!");
}

void UpdatePagesTest::jobFromPressToBox()
{
    QFETCH(int, page);
    QFETCH(QByteArray, orders);
    QFETCH(QString, downloading);
    QFETCH(QString, box);
    const Page at = Page(page);
    panel().apply(Json::parse(orders.toStdString()));
    addFiles({"a.tmt3", "a.osf3", "a.bin"});
    insert();

    for (int round = 0; round < 2; ++round) { // the second finds the page as the first did
        const int clicks = panel().get("buzzer.opens").get<int>();
        pick(at, 0);
        press(at);
        press(at); // nothing more: it is under way
        QCOMPARE(label(at), downloading);
        QCOMPARE(panel().get("buzzer.opens").get<int>(), clicks + 2);
        QVERIFY(!m_pages[page]->isEnabled());
        QString told;
        answerNextBox(1, &told);
        QTRY_VERIFY(dialogsDone());
        QCOMPARE(told, box);
        QCOMPARE(label(at), box.section(u'\n', 1));
        QVERIFY(m_pages[page]->isEnabled() && list(at)->isEnabled());
        QCOMPARE(find<QProgressBar>(at, BARS)->value(), 0);
        QTRY_COMPARE(panel().get("partition.writable"), Json(false));
    }
}

void UpdatePagesTest::modelReports()
{
    panel().apply({{"update", {{"model", "KV101<b>"}}}});
    addFiles({"a.tmt3", "a.osf3"});
    insert();
    for (const Page page : {PROJECT, FIRMWARE}) {
        for (const bool known : {true, false}) {
            panel().set("machine.hmiType", known ? Json("KV070T") : Json());
            QString told;
            answerNextBox(1, &told);
            pick(page, 0);
            press(page);
            QTRY_VERIFY(dialogsDone());
            const QStringList expected =
                page == PROJECT
                    ? QStringList({"Failed to get HMI model."_s,
                                   "HMI model: KV070T\nModel settings in project: KV101<b>\n"
                                   "Model does not match, please modify it!"_s})
                    : QStringList({"Failed to get Local HMI model."_s,
                                   "HMI model: KV070T\nModel settings in firmware: KV101<b>\n"
                                   "Model does not match, please re-select the firmware file!"_s});
            QCOMPARE(told.section(u'\n', 1), expected[known ? 1 : 0]);
        }
    }
}

void UpdatePagesTest::rowOutOfRange()
{
    press(PROJECT);
    addFiles({"a.tmt3"});
    insert();
    press(PROJECT);
    QVERIFY(m_pages[PROJECT]->isEnabled());
    QVERIFY(panel().get("partition.remounts").empty());
}

// A press while another page's job is in the worker: the page waits for a result that this press
// never produces. The next job of its kind frees it.
void UpdatePagesTest::pageWaitsWhileWorkerIsBusy()
{
    addFiles({"a.tmt3", "a.bin"});
    insert();
    panel().delay("plc.Commu", 60000);
    panel().set("update.steps", Json::array());
    pick(PLC, 0);
    press(PLC);
    pick(PROJECT, 0);
    press(PROJECT);
    QVERIFY(label(PROJECT).startsWith("Downloading"_s));
    answerNextBox(1);
    panel().hurry();
    QTRY_VERIFY(dialogsDone());
    QVERIFY(m_pages[PLC]->isEnabled());
    QVERIFY(!m_pages[PROJECT]->isEnabled());
    QVERIFY(panel().get("partition.remounts").empty());
    answerNextBox(1);
    QVERIFY(
        m_worker->SetFunction(CDownloadThread::FUNC_DOWNLOAD_PRO, m_stick->filePath("a.tmt3"_s)));
    QTRY_VERIFY(dialogsDone());
    QVERIFY(m_pages[PROJECT]->isEnabled());
}

void UpdatePagesTest::newerFirmwareAsks()
{
    panel().apply({{"update", {{"error", -9}, {"steps", Json::array()}}}});
    addFiles({"a.osf3"});
    insert();
    const QString ended = "Update Successful\nUpdated firmware\r\nPlease restart HMI!!"_s;
    const QString refused = "Update failure!\n"_s + UNMATCHED;
    // Once accepted, declining counts as accepted too.
    for (const auto &[answer, outcome] :
         {std::pair(0, refused), std::pair(1, ended), std::pair(0, ended)}) {
        QString question;
        QString told;
        QSize size;
        whenOpen("MessageBox", [&](QWidget *box) {
            size = box->size();
            return true;
        });
        answerNextBox(answer, &question);
        answerNextBox(1, &told);
        pick(FIRMWARE, 0);
        press(FIRMWARE);
        QTRY_VERIFY(dialogsDone());
        QCOMPARE(question, "The firmware is a newer version. You risk data loss if you click "
                           "\"OK\". Exit and compile HMI project with new version recommended. "_s);
        QCOMPARE(told, outcome);
        QCOMPARE(size, QSize(420, 240));
        QTRY_COMPARE(panel().get("partition.writable"), Json(false));
    }
}

void UpdatePagesTest::removalDuringJob()
{
    addFiles({"a.bin"});
    insert();
    panel().delay("plc.Commu", 60000);
    pick(PLC, 0);
    press(PLC);
    m_pages[PLC]->setUdiskPresent(false);
    m_pages[PLC]->clearUdisk();
    QVERIFY(!m_pages[PLC]->isEnabled());
    QCOMPARE(label(PLC), NO_UDISK);
    QString told;
    answerNextBox(1, &told);
    panel().hurry();
    QTRY_VERIFY(dialogsDone());
    QCOMPARE(told, "Download successfully!\nUpdated PLC program!"_s);
}

// Between two reports the project's and the firmware's bar creep, but never from 0 or to beyond
// 100; the PLC's follows the download's own number.
void UpdatePagesTest::barsMove()
{
    addFiles({"a.osf3", "a.bin"});
    insert();
    panel().apply({{"update", {{"steps", {98}}, {"stepTime", 60000}}}});
    panel().delay("plc.Commu", 60000);
    pick(FIRMWARE, 0);
    press(FIRMWARE);
    auto *bar = find<QProgressBar>(FIRMWARE, BARS);
    QTRY_COMPARE(bar->value(), 98);
    QTRY_COMPARE(bar->value(), 99);
    QTRY_VERIFY(m_worker->isFinished());
    g_Progress.nPercent = 41;
    pick(PLC, 0);
    press(PLC);
    QTRY_COMPARE(find<QProgressBar>(PLC, BARS)->value(), 42);
    answerNextBox(1);
    answerNextBox(1);
    panel().set("update.stepTime", 0);
    panel().hurry();
    QTRY_VERIFY(dialogsDone());
}

void UpdatePagesTest::afterLanguageChange()
{
    addFiles({"a.tmt3", "a.bin"});
    const auto said = [this](Page page) {
        m_pages[page]->retranslate();
        return label(page);
    };
    QCOMPARE(said(PLC), NO_UDISK);
    insert();
    QCOMPARE(said(PROJECT), "Please select HMI project."_s);
    for (const Page page : {PROJECT, PLC}) {
        answerNextBox(1);
        pick(page, 0);
        press(page);
        QTRY_VERIFY(dialogsDone());
    }
    // The project page never says its last result again; the PLC page does, whatever row is
    // chosen, because a row resets the project's result.
    QCOMPARE(said(PROJECT), "Selected HMI project:U1/a.tmt3"_s);
    m_worker->setProjectResult(-4);
    pick(PLC, 0);
    QCOMPARE(m_worker->projectResult(), 0);
    QCOMPARE(label(PLC), "Selected PLC project:U1/a.bin"_s);
    QCOMPARE(said(PLC), "Updated PLC program!"_s);
    applyLanguage(LANGUAGE_CHINESE);
    QVERIFY(isChinese(said(PLC)));
    QVERIFY(isChinese(find<QPushButton>(PLC, BUTTONS)->text()));
}

QTEST_MAIN(UpdatePagesTest)
#include "UpdatePagesTest.moc"
