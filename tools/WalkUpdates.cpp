// The Update group of the walk, with a U-disk that has something for each page.
#include "tools/PanelWalk.h"

#include <QFile>
#include <QProcess>

namespace {

constexpr const char *LONGEST_MODEL = "KV156T-PRO-4G-CAN2-RS485X4-2023A"; // 32 bytes
constexpr int FILES = 20; // more than a list has room for

// A U-disk; pulled out when it goes.
class Stick
{
public:
    explicit Stick(PanelSteps &panel) : m_panel(panel) {}
    Stick(const Stick &) = delete;
    Stick &operator=(const Stick &) = delete;
    ~Stick() { m_panel.process().ask({utf8("usb"), utf8("remove"), m_folder.path()}); }

    void insert() const { m_panel.ask({utf8("usb"), utf8("insert"), m_folder.path()}); }
    QString file(const QString &name) const { return m_folder.filePath(name); }
    // A small file of the panel's own model, made by one of the project's tools.
    void make(const char *tool, const QString &name, const QStringList &options) const;
    void makeUpdate(const QString &name, const QStringList &options = {}) const;

private:
    PanelSteps &m_panel;
    QTemporaryDir m_folder;
};

void Stick::make(const char *tool, const QString &name, const QStringList &options) const
{
    const QStringList program{utf8(SOURCE_FOLDER "/tools/") + utf8(tool)};
    const QStringList rest{utf8("--size"), utf8("4096"), file(name)};
    QProcess process;
    process.start(utf8("/usr/bin/python3"), program + options + rest);
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw Stuck(std::string(tool) + " makes no " + name.toStdString());
}

void Stick::makeUpdate(const QString &name, const QStringList &options) const
{
    const QString model = m_panel.process().get(utf8("machine.hmiType")).toString();
    make("make-update-file", name, QStringList{utf8("sample"), utf8("--model"), model} + options);
}

void fill(const Stick &stick)
{
    for (const char *project : {"Packing line 3.tmt3", "包装线二号.tmt3"})
        stick.makeUpdate(utf8(project));
    stick.makeUpdate(utf8("KV070T-2.4.osf3"), {utf8("--version"), utf8("999")});
    for (const char *other : {"Spare panel.tmt3", "Spare panel.osf3"})
        stick.makeUpdate(utf8(other), {utf8("--model"), utf8(LONGEST_MODEL)});
    stick.make("make-plc-program", utf8("Conveyor.bin"), {});
}

// More files than the list has room for, and a name as long as names are.
void fillUp(const Stick &stick)
{
    const QString longest = utf8("包装线 二号 夹具 ").repeated(8).left(75);
    stick.makeUpdate(longest + utf8(".tmt3"));
    for (int i = 1; i < FILES; ++i) {
        QFile file(stick.file(QStringLiteral("Recipe %1.tmt3").arg(i)));
        if (!file.open(QIODevice::WriteOnly))
            throw Stuck("cannot fill the U-disk");
    }
}

// Installs the chosen project, slowly enough to be seen in the middle.
void download(PanelSteps &panel, const char *running, const char *done)
{
    panel.set("update.steps", "[40]");
    panel.set("update.stepTime", "1500");
    panel.touch("btn_DownLoadPro");
    panel.await(
        [&panel] {
            return panel.process().widget(utf8("bar_Project"), utf8("value")).toInt() == 40;
        },
        utf8("the bar"));
    panel.visit(running);
    panel.set("update.stepTime", "0");
    panel.answerBox(done);
}

void projects(PanelSteps &panel)
{
    panel.touch("list_Pro", 0);
    panel.visit("update-list");
    download(panel, "update-running", "update-done");
    panel.touch("list_Pro", 1);
    panel.touch("btn_DownLoadPro");
    panel.answerBox("update-other-model");
    panel.touch("list_Pro", 0);
    panel.set("update.error", "-9");
    panel.touch("btn_DownLoadPro");
    panel.answerBox("update-refused");
    panel.set("update.error", "null");
}

void firmware(PanelSteps &panel)
{
    panel.touch("tab_UpData", 1);
    panel.touch("list_Image", 0);
    panel.touch("btn_DownLoadImage");
    panel.answerBox("update-newer", "btn_Cancel");
    panel.answerBox("update-declined");
    panel.touch("list_Image", 1);
    panel.touch("btn_DownLoadImage");
    panel.answerBox("update-other-board");
}

void plcPrograms(PanelSteps &panel)
{
    panel.touch("tab_UpData", 2);
    panel.touch("list_PlcPro", 0);
    panel.visit("update-plc");
    panel.ask({utf8("fail"), utf8("plc.Commu"), utf8("-25"), utf8("1")});
    panel.touch("btn_DownLoadPlcPro");
    panel.answerBox("update-plc-timeout");
    panel.visit("update-plc-failed");
    panel.ask({utf8("fail"), utf8("plc.Commu"), utf8("-31"), utf8("1")});
    panel.touch("btn_DownLoadPlcPro");
    panel.answerBox("update-plc-no-id");
}

void manyFiles(PanelSteps &panel)
{
    panel.touch("tab_UpData", 0);
    const Stick stick(panel);
    fillUp(stick);
    stick.insert();
    const auto rows = [&panel] {
        return panel.process().widget(utf8("list_Pro"), utf8("items")).toArray();
    };
    panel.await([&] { return rows().size() == FILES; }, utf8("all files"));
    panel.visit("update-many");
    int longest = 0;
    while (rows()[longest].toString().size() < 80)
        ++longest;
    panel.touch("list_Pro", longest);
    panel.visit("update-long-name");
    download(panel, "update-long-running", "update-long-done");
}

} // namespace

void walkUpdates(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.touch("btn_UpData");
    panel.awaitSeen("list_Pro");
    panel.visit("update");
    {
        const Stick stick(panel);
        fill(stick);
        stick.insert();
        projects(panel);
        firmware(panel);
        plcPrograms(panel);
    }
    manyFiles(panel);
}
