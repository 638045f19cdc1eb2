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
    ~Stick() { m_panel.process().ask({latin("usb"), latin("remove"), m_folder.path()}); }

    void insert() const { m_panel.ask({latin("usb"), latin("insert"), m_folder.path()}); }
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
    const QStringList arguments{latin(SOURCE_FOLDER "/tools/") + latin(tool), latin("--size"),
                                latin("4096")};
    QProcess process;
    process.start(latin("/usr/bin/python3"), arguments + options + QStringList{file(name)});
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw Stuck(std::string(tool) + " makes no " + name.toStdString());
}

void Stick::makeUpdate(const QString &name, const QStringList &options) const
{
    const QString model = m_panel.process().get(latin("machine.hmiType")).toString();
    make("make-update-file", name, QStringList{latin("--model"), model} + options);
}

void fill(const Stick &stick)
{
    for (const char *project : {"Packing line 3.tmt3", "包装线二号.tmt3"})
        stick.makeUpdate(latin(project));
    stick.makeUpdate(latin("KV070T-2.4.osf3"), {latin("--version"), latin("999")});
    for (const char *other : {"Spare panel.tmt3", "Spare panel.osf3"})
        stick.makeUpdate(latin(other), {latin("--model"), latin(LONGEST_MODEL)});
    stick.make("make-plc-program", latin("Conveyor.bin"), {});
}

// More files than the list has room for, and a name as long as names are.
void fillUp(const Stick &stick)
{
    const QString longest = latin("包装线 二号 夹具 ").repeated(8).left(75);
    stick.makeUpdate(longest + latin(".tmt3"));
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
            return panel.process().widget(latin("bar_Project"), latin("value")).toInt() == 40;
        },
        latin("the bar"));
    panel.at(running);
    panel.set("update.stepTime", "0");
    panel.box(done);
}

void projects(PanelSteps &panel)
{
    panel.touch("list_Pro", 0);
    panel.at("update-list");
    download(panel, "update-running", "update-done");
    panel.touch("list_Pro", 1);
    panel.touch("btn_DownLoadPro");
    panel.box("update-other-model");
    panel.touch("list_Pro", 0);
    panel.set("update.error", "-9");
    panel.touch("btn_DownLoadPro");
    panel.box("update-refused");
    panel.set("update.error", "null");
}

void firmware(PanelSteps &panel)
{
    panel.touch("tab_UpData", 1);
    panel.touch("list_Image", 0);
    panel.touch("btn_DownLoadImage");
    panel.box("update-newer", "btn_Cancel");
    panel.box("update-declined");
    panel.touch("list_Image", 1);
    panel.touch("btn_DownLoadImage");
    panel.box("update-other-board");
}

void plcPrograms(PanelSteps &panel)
{
    panel.touch("tab_UpData", 2);
    panel.touch("list_PlcPro", 0);
    panel.at("update-plc");
    panel.ask({latin("fail"), latin("plc.Commu"), latin("-25"), latin("1")});
    panel.touch("btn_DownLoadPlcPro");
    panel.box("update-plc-timeout");
    panel.at("update-plc-failed");
    panel.ask({latin("fail"), latin("plc.Commu"), latin("-31"), latin("1")});
    panel.touch("btn_DownLoadPlcPro");
    panel.box("update-plc-no-id");
}

void manyFiles(PanelSteps &panel)
{
    panel.touch("tab_UpData", 0);
    const Stick stick(panel);
    fillUp(stick);
    stick.insert();
    const auto rows = [&panel] {
        return panel.process().widget(latin("list_Pro"), latin("items")).toArray();
    };
    panel.await([&] { return rows().size() == FILES; }, latin("all files"));
    panel.at("update-many");
    int longest = 0;
    while (rows()[longest].toString().size() < 80)
        ++longest;
    panel.touch("list_Pro", longest);
    panel.at("update-long-name");
    download(panel, "update-long-running", "update-long-done");
}

} // namespace

void walkUpdates(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.touch("btn_UpData");
    panel.awaitSeen("list_Pro");
    panel.at("update");
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
