#include "tests/panel/Operator.h"

#include <QJsonObject>

namespace {

constexpr int PROJECT_TAB = 0;
constexpr int FIRMWARE_TAB = 1;
constexpr int PLC_TAB = 2;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// An operator with a U-disk, on the whole program over its real sockets and serial lines.
class UpdateStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_program.resize(9000);
        for (int i = 0; i < m_program.size(); ++i)
            m_program[i] = static_cast<char>(i * 7 + i / 256);
        QFile raw(onStick("raw"));
        QVERIFY(raw.open(QIODevice::WriteOnly));
        raw.write(m_program);
        raw.close();
        QVERIFY(make("make-update-file",
                     {"--model"_s, "KV070T"_s, "--size"_s, "200000"_s, onStick("line.tmt3")}));
        QVERIFY(make("make-update-file", {"--model"_s, "KV070T"_s, "--version"_s, "999"_s,
                                          "--size"_s, "100000"_s, onStick("panel.osf3")}));
        QVERIFY(make("make-plc-program", {"--from"_s, onStick("raw"), onStick("plc.bin")}));
        QVERIFY(raw.remove());

        QVERIFY(m_panel.writeEnglish());
        QVERIFY(m_panel.start());
        QVERIFY(m_panel.set("update.stepTime"_s, "0"));
        QVERIFY(m_panel.press("btn_UpData"_s) && m_panel.appears("list_Pro"_s));
        QCOMPARE(rows("list_Pro"), 0);
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        QVERIFY(PanelProcess::wait([this] { return rows("list_Pro") == 1; }));
    }

    void projectInstalled()
    {
        openTab(PROJECT_TAB);
        download("list_Pro", "btn_DownLoadPro");
        QCOMPARE(answer(), "Download successfully!\nUpdated, please restart HMI!"_s);
        QCOMPARE(contentOf(m_panel.file("/mnt/data/update/project.tmt3"_s)),
                 contentOf(onStick("line.tmt3")));
        QCOMPARE(m_panel.get("partition.remounts"_s).toArray(), QJsonArray({1, 0}));
    }

    void otherModelRefused()
    {
        QVERIFY(m_panel.set("machine.hmiType"_s, R"("KV101")"));
        download("list_Pro", "btn_DownLoadPro");
        QCOMPARE(answer(),
                 "Download failure!\nHMI model: KV101\nModel settings in project: KV070T\n"
                 "Model does not match, please modify it!"_s);
        QVERIFY(m_panel.set("machine.hmiType"_s, R"("KV070T")"));
    }

    void newerFirmwareConfirmed()
    {
        openTab(FIRMWARE_TAB);
        download("list_Image", "btn_DownLoadImage");
        QVERIFY(answer("btn_Cancel").startsWith("The firmware is a newer version."_s));
        QVERIFY(answer().startsWith("Update failure!\nProject file unmatched."_s));
        download("list_Image", "btn_DownLoadImage");
        QVERIFY(answer("btn_Ok").startsWith("The firmware is a newer version."_s));
        QCOMPARE(answer(), "Update Successful\nUpdated firmware\r\nPlease restart HMI!!"_s);
        QCOMPARE(contentOf(m_panel.file("/mnt/data/update/firmware.osf3"_s)),
                 contentOf(onStick("panel.osf3")));
    }

    // What was installed before stays whole, and the partition is read-only again.
    void stickPulledDuringInstall()
    {
        const QString project = onStick("line.tmt3");
        const QString away = onStick("away");
        openTab(PROJECT_TAB);
        QVERIFY(m_panel.set("update.stepTime"_s, "300"));
        download("list_Pro", "btn_DownLoadPro");
        QVERIFY(PanelProcess::wait(
            [this] { return m_panel.widget("bar_Project"_s, "value"_s).toInt() % 100 >= 30; }));
        QVERIFY(QFile::rename(project, away));
        QFile truncated(away);
        QVERIFY(truncated.resize(10));
        QCOMPARE(answer(), "Download failure!\nThe project img file is not found in Udisk."_s);
        QVERIFY(m_panel.set("update.stepTime"_s, "0"));
        QCOMPARE(contentOf(m_panel.file("/mnt/data/update/project.tmt3"_s)).size(), 200000 + 48);
        QVERIFY(m_panel.becomes("partition.writable"_s, false));
    }

    void plcWithFailingAttempts()
    {
        openTab(PLC_TAB);
        QVERIFY(m_panel.set("plc.results"_s, R"({"DownLoadPro": [-9, -32]})"));
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QCOMPARE(answer(), "Download successfully!\nUpdated PLC program!"_s);
        const QJsonArray steps = m_panel.get("plc.steps"_s).toArray();
        QCOMPARE(std::count(steps.begin(), steps.end(), QJsonValue("DownLoadPro"_s)), 3);

        QVERIFY(m_panel.set("plc.results"_s, R"({"StopPLC": [-6]})"));
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QCOMPARE(answer(), "Download failure!\nUnable to stop PLC\uFF01"_s);
    }

    void languageChangedDuringDownload()
    {
        m_panel.ask({"delay"_s, "plc.Commu"_s, "1500"_s});
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QVERIFY(m_panel.press("btn_Sysset"_s));
        QVERIFY(m_panel.press("tab_System"_s, 2) && m_panel.appears("CHBtn"_s));
        QVERIFY(m_panel.press("CHBtn"_s));
        QVERIFY(boxText().contains("PLC \u7A0B\u5E8F\u5DF2\u66F4\u65B0"_s));
        answer();
        m_panel.ask({"delay"_s, "clear"_s});
        QVERIFY(m_panel.press("ENBtn"_s));
        QVERIFY(m_panel.press("btn_UpData"_s));
        openTab(PLC_TAB);
        QVERIFY(PanelProcess::wait([this] { return m_panel.isEnabled("list_PlcPro"_s); }));
    }

    void olderProgramByteForByte()
    {
        QVERIFY(m_panel.set("plc.file.read"_s, "-3"));
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QCOMPARE(answer(), "Download successfully!\nUpdated PLC program!"_s);
        QCOMPARE(contentOf(m_panel.file("/plc/program.bin"_s)), m_program);
        QVERIFY(!QFile::exists(m_panel.file("/tmp/unzip_temp/update.bin"_s)));
    }

    void stickPulledOut()
    {
        m_panel.ask({"usb"_s, "remove"_s, m_stick.path()});
        for (const char *list : {"list_Pro", "list_Image", "list_PlcPro"})
            QVERIFY(PanelProcess::wait([&] { return rows(list) == 0; }));
        QCOMPARE(m_panel.text("lab_PlcPro"_s),
                 "Failed to recognize U disk, please check it or change new one!"_s);
    }

    // The line would take a quarter of an hour for the rest.
    void endDuringTransfer()
    {
        QVERIFY(make("make-plc-program",
                     {"--size"_s, "400000"_s, "--baud"_s, "9600"_s, onStick("plc.bin")}));
        QVERIFY(m_panel.set("plc.line.paced"_s, "true"));
        QVERIFY(m_panel.set("plc.file.read"_s, "-3"));
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QVERIFY(
            PanelProcess::wait([this] { return m_panel.get("plc.line.received"_s).toInt() > 0; }));
        QElapsedTimer timer;
        timer.start();
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
        QVERIFY(timer.elapsed() < 8000);
    }

private:
    // Runs a tool of the project. Returns whether it succeeded.
    static bool make(const char *tool, const QStringList &arguments)
    {
        QProcess process;
        process.start("/usr/bin/python3"_s,
                      QStringList(TOOLS_FOLDER "/"_s + QLatin1String(tool)) + arguments);
        return process.waitForFinished() && process.exitCode() == 0;
    }

    QString onStick(const char *name) const { return m_stick.filePath(QLatin1String(name)); }

    void openTab(int tab) { QVERIFY(m_panel.press("tab_UpData"_s, tab)); }

    void download(const char *list, const char *button)
    {
        QVERIFY(m_panel.appears(QLatin1String(list)));
        QVERIFY2(m_panel.press(QLatin1String(list), 0), qPrintable(m_panel.error()));
        QVERIFY2(m_panel.press(QLatin1String(button)), qPrintable(m_panel.error()));
    }

    QString boxText()
    {
        if (!PanelProcess::wait([this] { return m_panel.isVisible("MessageBox"_s); }, 30000))
            return "no box"_s;
        return m_panel.text("label"_s);
    }

    // Waits for the box, answers it and returns its text.
    QString answer(const char *button = "btn_Ok")
    {
        QString text = boxText();
        m_panel.press(QLatin1String(button));
        PanelProcess::wait([&] { return !m_panel.isVisible("MessageBox"_s) || boxText() != text; });
        return text;
    }

    int rows(const char *list) { return m_panel.items(QLatin1String(list)).size(); }

    QTemporaryDir m_stick;
    QByteArray m_program;
    Operator m_panel;
};

QTEST_GUILESS_MAIN(UpdateStoryTest)
#include "UpdateStoryTest.moc"
