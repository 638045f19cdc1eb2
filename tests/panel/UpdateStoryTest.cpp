#include "tests/panel/Operator.h"

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
        QVERIFY(m_panel.write("/raw"_s, m_program));
        makeProgram({"--older"_s, "--from"_s, m_panel.file("/raw"_s)});
        QVERIFY(m_panel.writeEnglish() && m_panel.start());
        openPage();
        QVERIFY(insertStick());
    }

    // The older format, byte for byte; the language changes while the file is read.
    void languageChangedDuringDownload()
    {
        QVERIFY(m_panel.set("plc.file.read"_s, "-3"));
        m_panel.ask({"delay"_s, "plc.ReadPlc5VDownLoadInfo"_s, "1500"_s});
        download();
        QVERIFY(m_panel.press("btn_Sysset"_s));
        QVERIFY(m_panel.press("tab_System"_s, 2) && m_panel.appears("CHBtn"_s));
        QVERIFY(m_panel.press("CHBtn"_s));
        QVERIFY(PanelProcess::wait([this] { return m_panel.isVisible("MessageBox"_s); }, 30000));
        QVERIFY(m_panel.text("label"_s).contains("PLC \u7A0B\u5E8F\u5DF2\u66F4\u65B0"_s));
        QVERIFY(m_panel.press("btn_Ok"_s) && m_panel.goes("MessageBox"_s));
        QCOMPARE(contentOf(m_panel.file("/plc/program.bin"_s)), m_program);
        openPage();
        QVERIFY(PanelProcess::wait([this] { return m_panel.isEnabled("list_PlcPro"_s); }));
    }

    // The line would take a quarter of an hour.
    void endDuringTransfer()
    {
        makeProgram({"--older"_s, "--size"_s, "400000"_s, "--baud"_s, "9600"_s});
        QVERIFY(m_panel.set("plc.line.paced"_s, "true"));
        m_panel.ask({"usb"_s, "remove"_s, m_stick.path()});
        QVERIFY(PanelProcess::wait([this] { return m_panel.items("list_PlcPro"_s).isEmpty(); }));
        QVERIFY(insertStick());
        download();
        QVERIFY(m_panel.becomes("plc.line.received"_s, 0)); // it has begun
        QElapsedTimer timer;
        timer.start();
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
        QVERIFY(timer.elapsed() < 8000);
    }

private:
    void makeProgram(const QStringList &options) const
    {
        QProcess tool;
        tool.start("/usr/bin/python3"_s, QStringList(TOOLS_FOLDER "/make-plc-program"_s) + options +
                                             QStringList(m_stick.filePath("plc.bin"_s)));
        QVERIFY(tool.waitForFinished() && tool.exitCode() == 0);
    }

    bool insertStick()
    {
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        return PanelProcess::wait([this] { return m_panel.items("list_PlcPro"_s).size() == 1; });
    }
    void openPage()
    {
        QVERIFY(m_panel.press("btn_UpData"_s));
        QVERIFY(m_panel.press("tab_UpData"_s, PLC_TAB) && m_panel.appears("list_PlcPro"_s));
    }
    void download()
    {
        QVERIFY(m_panel.press("list_PlcPro"_s, 0) && m_panel.press("btn_DownLoadPlcPro"_s));
    }

    QTemporaryDir m_stick;
    QByteArray m_program;
    Operator m_panel;
};

QTEST_GUILESS_MAIN(UpdateStoryTest)
#include "UpdateStoryTest.moc"
