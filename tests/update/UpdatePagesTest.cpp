#include "app/look/FontStyle.h"
#include "platform/cos_thread.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/LanguageSettings.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/DownLoadHmiImage.h"
#include "update/DownLoadHmiPro.h"
#include "update/DownLoadPlcPro.h"
#include "update/Progress.h"
#include "update/UpdateJob.h"

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>

#include <filesystem>
#include <fstream>
#include <set>

using sim::Json;
using sim::panel;

namespace {

const QString NO_UDISK = "Failed to recognize U disk, please check it or change new one!"_s;

enum Page { PROJECT, FIRMWARE, PLC };
const QString NAMES[] = {"Pro"_s, "Image"_s, "PlcPro"_s}; // in those of widgets and slots
const QString KINDS[] = {"HMI project"_s, "HMI firmware"_s, "PLC project"_s};
const std::string ENDINGS[] = {".tmt3", ".osf3", ".bin"};

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
    void init()
    {
        panel().reset();
        m_root.clear();
        applyLanguage(LANGUAGE_ENGLISH);
        g_Progress.nPercent = 0;
        COS::CCosRateTimer::init(50);
        m_disk = panelPath("/disk/");
        std::filesystem::create_directory(m_disk);
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
    void cleanup()
    {
        QVERIFY(dialogsDone());
        COS::CCosRateTimer::destory();
        m_worker.reset();
        m_pages = {};
    }

    // page | codes | a word of each line of their text
    void resultTexts_data()
    {
        rows({"0 | 0 | Updated, please restart", "0 | -1 | not found in Udisk",
              "0 | -4 | get HMI model", "0 | -5 | KV070T/in project/Model does not match",
              "0 | -8 | Project file unmatched",
              "0 | 1 -2 -3 -6 -7 -9 | Failed to update, please restart",
              // The firmware's.
              "1 | 0 | Updated firmware/restart", "1 | -1 | get Udisk HMI firmware",
              "1 | -4 | get HMI model", "1 | -8 -9 | Project file unmatched",
              "1 | -11 | get Udisk HMI model", "1 | 1 -2 -3 -5 -6 -7 -10 -12 |",
              // The PLC program's.
              "2 | 0 | Updated PLC", "2 | -1 -20 | update PLC program", "2 | -2 -21 | open COM",
              "2 | -3 -25 | timeout/reasons/parameter setting/cable", "2 | -4 -24 | password",
              "2 | -5 -7 -13 | communicate", "2 | -6 | stop PLC\uFF01",
              "2 | -8 -15 -22 | read file", "2 | -9 | program failed/PLC program!/cable",
              "2 | -10 | comment failed/PLC comment!/cable",
              "2 | -11 | memory failed/PLC memory!/cable",
              "2 | -12 | CAM table/related parameters/cable", "2 | 1 -14 -34 | set disable upload",
              "2 | -16 | PLC type", "2 | -17 -18 | parameter failed/PLC parameter setting/cable",
              "2 | -19 -23 | PLC version", "2 | -26 | PLC subprogram",
              "2 | -27 | prohibit uploading", "2 | -28 | subroutine encryption",
              "2 | -29 | contains program ID", "2 | -30 | program ID error",
              "2 | -31 | program ID required", "2 | -32 | Program exceeds",
              "2 | -33 | Comment exceeds"});
    }
    // A text that differs from the translated one by a letter stays English.
    void resultTexts()
    {
        const Page page = Page(number(0));
        const QByteArray slot = "slot_ShowDown%1ReResult"_s.arg(NAMES[page]).toLatin1();
        const auto linesOf = [&](int language, const QString &code) {
            applyLanguage(language);
            QMetaObject::invokeMethod(m_pages[page].get(), slot, Q_ARG(int, code.toInt()));
            return label(page).split(page == PROJECT ? "\n"_s : "\r\n"_s);
        };
        const QStringList words = cell(2).split(u'/');
        for (const QString &code : cell(1).split(u' ')) {
            const QStringList english = linesOf(LANGUAGE_ENGLISH, code);
            const QStringList chinese = linesOf(LANGUAGE_CHINESE, code);
            QCOMPARE(english.size(), words.size());
            for (int i = 0; i < words.size(); ++i) {
                QVERIFY2(english[i].contains(words[i]), qPrintable(code + english[i]));
                QCOMPARE(english[i].isEmpty(), words[i].isEmpty());
                QVERIFY2(isChinese(chinese[i]) || words[i].isEmpty(), qPrintable(chinese[i]));
                QCOMPARE(m_english.emplace(chinese[i], english[i]).first->second, english[i]);
                QVERIFY(chinese[i].endsWith(u'\uFF01') || !words[i].endsWith(u'\uFF01'));
            }
        }
    }

    void listing()
    {
        QCOMPARE(label(PLC), NO_UDISK);
        insert(); // an empty one takes no number
        QCOMPARE(label(PLC), "Please select PLC project."_s);
        addFiles({"a.tmt3", "a.tmt3.bak", "b.osf2", "c.osf3", "logo.osf2", "logos.osf2", "d.bin",
                  "old.binary", "tmt3", "README"});
        insert();
        QCOMPARE(rowsOf(PROJECT), "U1/a.tmt3 U1/a.tmt3.bak"_s);
        QCOMPARE(rowsOf(FIRMWARE), "U1/c.osf3 U1/logo.osf2 U1/logos.osf2"_s);
        QCOMPARE(rowsOf(PLC), "U1/d.bin U1/old.binary"_s);
        insert();
        QCOMPARE(rowsOf(PROJECT), "U1/a.tmt3 U1/a.tmt3.bak U2/a.tmt3 U2/a.tmt3.bak"_s);
        m_pages[PROJECT]->clearUdisk();
        QCOMPARE(rowsOf(PROJECT), QString());
        QCOMPARE(label(PROJECT), NO_UDISK);
        insert();
        QCOMPARE(rowsOf(PROJECT), "U1/a.tmt3 U1/a.tmt3.bak"_s);
        // Another U-disk and another language leave what is read and chosen where it is.
        for (int i = 10; i < 60; ++i)
            addFiles({std::to_string(i) + ".tmt3"});
        insert();
        pick(PROJECT, 40);
        const int place = list(PROJECT)->verticalScrollBar()->value();
        QVERIFY(place > 0);
        insert();
        m_pages[PROJECT]->retranslate();
        QCOMPARE(list(PROJECT)->verticalScrollBar()->value(), place);
        QCOMPARE(list(PROJECT)->currentRow(), 40);
    }

    // As a U-disk of a Chinese Windows has them (GBK), cut UTF-8, and what is special to a label or
    // to printf(). Each row installs its own file, whatever it looks like.
    // page | the box, "/" for a new line
    void namesAreBytes_data()
    {
        rows({"0 | Download successfully!/Updated, please restart HMI!",
              "1 | Update Successful/Updated firmware/Please restart HMI!!",
              "2 | Download successfully!/Updated PLC program!"});
    }
    void namesAreBytes()
    {
        const QByteArray bytes = "%1 %2|%s%n|<img src=x>|caf\\xE9|caf\xE9|cut\xE5\xB7|two\nlines|" +
                                 QByteArray(250, 'x') +
                                 "|\xB9\xA4\xB3\xCC|\xE5\xB7\xA5\xE7\xA8\x8B";
        const QString shown =
            "%1 %2|%s%n|<img src=x>|caf\\xE9|caf\\xE9|cut\\xE5\\xB7|two\\x0Alines|"_s +
            QString(250, u'x') + "|\\xB9\\xA4\\xB3\\xCC|\u5DE5\u7A0B"_s;
        const Page page = Page(number(0));
        m_disk += "\xCA\xFD/";
        std::filesystem::create_directory(m_disk);
        std::vector<std::string> names; // in the order of their rows
        for (const QByteArray &name : bytes.split('|'))
            names.push_back(name.toStdString() + ENDINGS[page]);
        addFiles(names);
        insert();
        panel().set("update.steps", Json::array());
        int row = 0;
        for (const std::string &name : names) {
            panel().clearCalls();
            pick(page, row);
            const QString said =
                ":U1/"_s + shown.section(u'|', row, row) + QLatin1String(ENDINGS[page].c_str());
            QVERIFY2(label(page).endsWith(said), qPrintable(label(page)));
            ++row;
            QCOMPARE(m_pages[page]->width(), 600);
            press(page);
            QCOMPARE(answered(), cell(1));
            QCOMPARE(pathsAskedFor(), Json({m_disk + '/' + name}));
        }
    }

    // page | what the panel meets | the box, "/" for a new line
    void failureFromPressToBox_data()
    {
        rows({"0 | failure | Download failure!/Failed to update, please restart HMI!",
              "1 | failure | Update failure!",
              "2 | failure | Download failure!/Unable to communicate with the PLC!",
              "0 | other model | Download failure!/HMI model: KV070T/"
              "Model settings in project: KV101<b>/Model does not match, please modify it!",
              "1 | other model | Update failure!/HMI model: KV070T/Model settings in "
              "firmware: KV101<b>/Model does not match, please re-select the firmware file!",
              "0 | no model | Download failure!/Failed to get HMI model.",
              "1 | no model | Update failure!/Failed to get Local HMI model."});
    }
    void failureFromPressToBox()
    {
        const std::map<QString, const char *> orders = {
            {"failure"_s,
             R"({"update": {"steps": [], "result": -3}, "fail": [["plc.Commu", -5]]})"},
            {"other model"_s, R"({"update": {"model": "KV101<b>"}})"},
            {"no model"_s, R"({"update": {"model": "KV101"}, "machine": {"hmiType": null}})"}};
        const Page page = Page(number(0));
        panel().apply(Json::parse(orders.at(cell(1))));
        addFiles({"a" + ENDINGS[page]});
        press(page);
        insert();
        press(page);
        QVERIFY(m_pages[page]->isEnabled());      // no row is chosen
        for (int round = 0; round < 2; ++round) { // the second finds the page as the first did
            const int clicks = panel().get("buzzer.opens").get<int>();
            download(page);
            press(page); // nothing more: it is under way
            QCOMPARE(label(page),
                     "Downloading %1:%2,Please do not shut down or replug the device!"_s.arg(
                         KINDS[page], rowsOf(page)));
            QCOMPARE(panel().get("buzzer.opens").get<int>(), clicks + 2);
            QVERIFY(!m_pages[page]->isEnabled());
            QCOMPARE(answered(), cell(2));
            QCOMPARE(label(page).remove(u'\r').replace(u'\n', u'/'), cell(2).section(u'/', 1));
            QVERIFY(m_pages[page]->isEnabled() && list(page)->isEnabled());
            QCOMPARE(bar(page)->value(), 0);
            QTRY_COMPARE(panel().get("partition.writable"), Json(false));
        }
    }

    // A press while another page's job is in the worker: the page waits for a result that this
    // press never produces. The next job of its kind frees it. Nor does the loss of its U-disk end
    // a job.
    void pageWaitsWhileWorkerIsBusy()
    {
        addFiles({"a.tmt3", "a.bin"});
        insert();
        panel().delay("plc.Commu", 60000);
        panel().set("update.steps", Json::array());
        download(PLC);
        download(PROJECT);
        QVERIFY(label(PROJECT).startsWith("Downloading"_s));
        QTRY_VERIFY(bar(PLC)->value() > 0); // a second, and so two ticks of the project's timer
        QCOMPARE(bar(PROJECT)->value(), 0);
        m_pages[PLC]->clearUdisk();
        QVERIFY(!m_pages[PLC]->isEnabled());
        QCOMPARE(label(PLC), NO_UDISK);
        panel().hurry();
        QVERIFY(answered().endsWith("/Updated PLC program!"_s));
        QVERIFY(m_pages[PLC]->isEnabled() && !m_pages[PROJECT]->isEnabled());
        QVERIFY(panel().get("partition.remounts").empty());
        m_worker->SetFunction(CDownloadThread::FUNC_DOWNLOAD_PRO, m_disk + "a.tmt3");
        answered();
        QVERIFY(m_pages[PROJECT]->isEnabled());
        m_worker->giveUp(); // from then on no box
        download(PROJECT);
        emit m_worker->sglDownLoadProResult(0);
        QVERIFY(!m_pages[PROJECT]->isEnabled());
    }

    void newerFirmwareAsks()
    {
        panel().apply({{"update", {{"error", -9}, {"steps", Json::array()}}}});
        addFiles({"a.osf3"});
        insert();
        // Once accepted, declining counts as accepted too.
        for (const auto &[answer, outcome] :
             {std::pair(0, "Update failure!/Project file unm"_s),
              std::pair(1, "Update Successful"_s), std::pair(0, "Update Successful"_s)}) {
            QString question;
            QSize size;
            whenOpen("MessageBox", [&](QWidget *box) {
                size = box->size();
                return true;
            });
            answerNextBox(answer, &question);
            download(FIRMWARE);
            QVERIFY(answered().startsWith(outcome));
            QCOMPARE(question,
                     "The firmware is a newer version. You risk data loss if you click \"OK\". "
                     "Exit and compile HMI project with new version recommended. "_s);
            QCOMPARE(size, QSize(420, 240));
            QTRY_COMPARE(panel().get("partition.writable"), Json(false));
        }
    }

    // Between two reports the project's and the firmware's bar creep, but never from 0 or to beyond
    // 100; the PLC's follows the download's own number.
    void barsMove()
    {
        addFiles({"a.osf3", "a.bin"});
        insert();
        panel().apply({{"update", {{"steps", {98}}, {"stepTime", 60000}}}});
        panel().delay("plc.Commu", 60000);
        download(FIRMWARE);
        QTRY_COMPARE(bar(FIRMWARE)->value(), 98);
        QTRY_COMPARE(bar(FIRMWARE)->value(), 99);
        QTRY_VERIFY(m_worker->isFinished());
        g_Progress.nPercent = 41;
        download(PLC);
        QTRY_COMPARE(bar(PLC)->value(), 42);
        panel().set("update.stepTime", 0);
        panel().hurry();
        answerNextBox(1);
        answered();
    }

    // The project page never says its last result again; the PLC page does, whatever row is chosen:
    // its noResult is 1, and its resetResult the project's.
    void afterLanguageChange()
    {
        addFiles({"a.tmt3", "a.bin"});
        const auto said = [this](Page page) {
            m_pages[page]->retranslate();
            return label(page);
        };
        insert();
        QCOMPARE(said(PROJECT), "Please select HMI project."_s);
        for (const Page page : {PROJECT, PLC}) {
            download(page);
            answered();
        }
        QCOMPARE(said(PROJECT), "Selected HMI project:U1/a.tmt3"_s);
        m_worker->setProjectResult(-4);
        pick(PLC, 0);
        QCOMPARE(m_worker->projectResult(), 0);
        QCOMPARE(label(PLC), "Selected PLC project:U1/a.bin"_s);
        QCOMPARE(said(PLC), "Updated PLC program!"_s);
        applyLanguage(LANGUAGE_CHINESE);
        QVERIFY(isChinese(said(PLC)));
        QVERIFY(isChinese(find<QPushButton>(PLC, "btn_DownLoad")->text()));
    }

private:
    template <typename Widget>
    Widget *find(Page page, const char *kind) const
    {
        return m_pages[page]->findChild<Widget *>(QLatin1String(kind) + NAMES[page]);
    }
    QListWidget *list(Page page) const { return find<QListWidget>(page, "list_"); }
    QProgressBar *bar(Page page) const { return m_pages[page]->findChild<QProgressBar *>(); }
    QString label(Page page) const { return find<QLabel>(page, "lab_")->text(); }
    QString rowsOf(Page page) const
    {
        QStringList texts;
        for (const QListWidgetItem *row : list(page)->findItems({}, Qt::MatchContains))
            texts += row->text();
        return texts.join(u' ');
    }

    void addFiles(const std::vector<std::string> &names) const
    {
        for (const std::string &name : names)
            std::ofstream(m_disk + name) << "content";
    }
    void insert() const
    {
        for (const auto &page : m_pages) {
            page->setUdiskPresent(true);
            page->listUdisk(m_disk);
        }
    }
    void pick(Page page, int row) const
    {
        QListWidget *view = list(page);
        view->scrollToItem(view->item(row));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                          view->visualItemRect(view->item(row)).center());
    }
    void press(Page page) const
    {
        QTest::mouseClick(find<QPushButton>(page, "btn_DownLoad"), Qt::LeftButton);
    }
    void download(Page page) const
    {
        pick(page, 0);
        press(page);
    }
    // Of the jobs since the calls were cleared.
    static Json pathsAskedFor()
    {
        std::set<std::string> paths;
        for (const Json &call : panel().calls()) {
            const Json &args = call["args"];
            if (call["op"] == "plc.ReadPlc5VDownLoadInfo")
                paths.insert(args[0].get<std::string>());
            else if (call["op"] == "CBB.request" && args[1] != 7)
                paths.insert(args[2].get<std::string>());
        }
        return paths;
    }
    // The text of the box at the job's end, which it waits for; "/" for a new line.
    static QString answered()
    {
        QString told;
        answerNextBox(1, &told);
        return QTest::qWaitFor(dialogsDone, 30000) ? told.remove(u'\r').replace(u'\n', u'/')
                                                   : "no box"_s;
    }

    PanelRoot m_root;
    std::string m_disk;
    std::unique_ptr<CDownloadThread> m_worker;
    std::array<std::unique_ptr<UpdatePage>, 3> m_pages;
    std::map<QString, QString> m_english; // by the Chinese of it: no two texts may become one
};

QTEST_MAIN(UpdatePagesTest)
#include "UpdatePagesTest.moc"
