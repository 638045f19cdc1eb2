#include "tests/panel/Operator.h"

#include <QJsonDocument>

#include <filesystem>

namespace {

constexpr int PROJECT_TAB = 0;
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
        QVERIFY(make("make-plc-program", {"--from"_s, onStick("raw"), onStick("plc.bin")}));
        QVERIFY(make("make-update-file",
                     {"--model"_s, "KV070T"_s, "--size"_s, "200000"_s, onStick("raw")}));
        m_project = contentOf(onStick("raw"));
        QCOMPARE(std::rename((stick() + "raw").c_str(), (stick() + "\xB9\xA4.tmt3").c_str()), 0);

        QVERIFY(m_panel.writeEnglish() && m_panel.start());
        QVERIFY(m_panel.set("update.stepTime"_s, "0"));
        QVERIFY(m_panel.press("btn_UpData"_s) && m_panel.appears("list_Pro"_s));
        m_panel.ask({"usb"_s, "insert"_s, m_stick.path()});
        QVERIFY(PanelProcess::wait([this] { return rows("list_Pro") == 1; }));
    }

    void cleanupTestCase() { std::filesystem::remove_all(stick()); } // Qt leaves a name in GBK

    void projectInstalled()
    {
        openTab(PROJECT_TAB);
        download("list_Pro", "btn_DownLoadPro");
        QCOMPARE(answer(), "Download successfully!\nUpdated, please restart HMI!"_s);
        QCOMPARE(contentOf(m_panel.file("/mnt/data/update/project.tmt3"_s)), m_project);
        QCOMPARE(m_panel.get("partition.remounts"_s).toArray(), QJsonArray({1, 0}));
    }

    void languageChangedDuringDownload()
    {
        openTab(PLC_TAB);
        m_panel.ask({"delay"_s, "plc.Commu"_s, "1500"_s});
        download("list_PlcPro", "btn_DownLoadPlcPro");
        QVERIFY(m_panel.press("btn_Sysset"_s));
        QVERIFY(m_panel.press("tab_System"_s, 2) && m_panel.appears("CHBtn"_s));
        QVERIFY(m_panel.press("CHBtn"_s));
        QVERIFY(boxText().contains("PLC \u7A0B\u5E8F\u5DF2\u66F4\u65B0"_s));
        answer();
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
        const auto asked = [this] {
            return m_panel.get("update.requests"_s).toArray().size() == 1;
        };
        QVERIFY(PanelProcess::wait(asked));
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
        const auto last = QJsonDocument::fromJson(contentOf(m_panel.file("/run/last.json"_s)));
        QCOMPARE(last["update"_s]["requests"_s].toArray().size(), 1);
        QCOMPARE(last["partition"_s]["remounts"_s].toArray(), QJsonArray({1, 0}));
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

    std::string stick() const { return m_stick.path().toStdString() + '/'; }

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
    QString answer()
    {
        QString text = boxText();
        m_panel.press("btn_Ok"_s);
        PanelProcess::wait([&] { return !m_panel.isVisible("MessageBox"_s) || boxText() != text; });
        return text;
    }

    int rows(const char *list) { return m_panel.items(QLatin1String(list)).size(); }

    QTemporaryDir m_stick;
    QByteArray m_program;
    QByteArray m_project;
    Operator m_panel;
};

QTEST_GUILESS_MAIN(UpdateStoryTest)
#include "UpdateStoryTest.moc"
