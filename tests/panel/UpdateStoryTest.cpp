#include "tests/panel/Operator.h"

#include <QJsonDocument>

namespace {

constexpr int PLC_TAB = 2;
constexpr int PROGRAM_SIZE = 9000;

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
        for (int i = 0; i < PROGRAM_SIZE; ++i)
            m_program += static_cast<char>(i * 7 + i / 256);
        QFile project(onStick("a.tmt3")); // whatever it holds
        QVERIFY(project.open(QIODevice::WriteOnly) && project.write(m_program) == PROGRAM_SIZE);
        project.close();
        makeProgram({"--from"_s, onStick("a.tmt3")});
        QVERIFY(m_panel.writeEnglish() && m_panel.start());
        QVERIFY(m_panel.press("btn_UpData"_s) && m_panel.appears("list_Pro"_s));
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        QVERIFY(PanelProcess::wait([this] { return rows("list_Pro") == 1; }));
    }

    // The older format, byte for byte; the language changes while the file is read.
    void languageChangedDuringDownload()
    {
        QVERIFY(m_panel.set("plc.file.read"_s, "-3"));
        m_panel.ask({"delay"_s, "plc.ReadPlc5VDownLoadInfo"_s, "1500"_s});
        openTab(PLC_TAB);
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QVERIFY(m_panel.press("btn_Sysset"_s));
        QVERIFY(m_panel.press("tab_System"_s, 2) && m_panel.appears("CHBtn"_s));
        QVERIFY(m_panel.press("CHBtn"_s));
        QVERIFY(PanelProcess::wait([this] { return m_panel.isVisible("MessageBox"_s); }, 30000));
        QVERIFY(m_panel.text("label"_s).contains("PLC \u7A0B\u5E8F\u5DF2\u66F4\u65B0"_s));
        QVERIFY(m_panel.press("btn_Ok"_s) && m_panel.goes("MessageBox"_s));
        QCOMPARE(contentOf(m_panel.file("/plc/program.bin"_s)), m_program);
        QVERIFY(m_panel.press("ENBtn"_s) && m_panel.press("btn_UpData"_s));
        openTab(PLC_TAB);
        QVERIFY(PanelProcess::wait([this] { return m_panel.isEnabled("list_PlcPro"_s); }));
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
        makeProgram({"--size"_s, "400000"_s, "--baud"_s, "9600"_s});
        QVERIFY(m_panel.set("plc.line.paced"_s, "true"));
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

    // In the eight seconds of the check: nothing is installed then.
    void endDuringCheck()
    {
        QVERIFY(m_panel.start());
        QVERIFY(m_panel.set("update.late"_s, "1000"));
        QVERIFY(m_panel.press("btn_UpData"_s));
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        download("list_Pro", "btn_DownLoadPro");
        QVERIFY(PanelProcess::wait(
            [this] { return m_panel.get("update.requests"_s).toArray().size() == 1; }));
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
        const auto last = QJsonDocument::fromJson(contentOf(m_panel.file("/run/last.json"_s)));
        QCOMPARE(last["update"_s]["requests"_s].toArray().size(), 1);
        QCOMPARE(last["partition"_s]["remounts"_s].toArray(), QJsonArray({1, 0}));
    }

private:
    void makeProgram(const QStringList &options) const
    {
        QProcess tool;
        tool.start("/usr/bin/python3"_s, QStringList(TOOLS_FOLDER "/make-plc-program"_s) + options +
                                             QStringList(onStick("plc.bin")));
        QVERIFY(tool.waitForFinished() && tool.exitCode() == 0);
    }

    QString onStick(const char *name) const { return m_stick.filePath(QLatin1String(name)); }

    void openTab(int tab) { QVERIFY(m_panel.press("tab_UpData"_s, tab)); }

    void download(const char *list, const char *button)
    {
        QVERIFY(m_panel.appears(QLatin1String(list)));
        QVERIFY2(m_panel.press(QLatin1String(list), 0), qPrintable(m_panel.error()));
        QVERIFY2(m_panel.press(QLatin1String(button)), qPrintable(m_panel.error()));
    }

    int rows(const char *list) { return m_panel.items(QLatin1String(list)).size(); }

    QTemporaryDir m_stick;
    QByteArray m_program;
    Operator m_panel;
};

QTEST_GUILESS_MAIN(UpdateStoryTest)
#include "UpdateStoryTest.moc"
