// The Update group of the walk, with a U-disk that has something for each page.
#include "tools/PanelWalk.h"

#include <QFile>
#include <QProcess>

namespace {

constexpr const char *LONGEST_MODEL = "KV156T-PRO-4G-CAN2-RS485X4-2023A"; // 32 bytes

QString latin(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void PanelWalk::makeFile(const char *tool, const QStringList &options, const QString &name)
{
    const QStringList arguments = QStringList{latin(SOURCE_FOLDER "/tools/") + latin(tool)} +
                                  options + QStringList{m_stick->filePath(name)};
    QProcess process;
    process.start(latin("/usr/bin/python3"), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw Stuck(std::string(tool) + " makes no " + name.toStdString());
}

void PanelWalk::makeStick()
{
    m_stick = std::make_unique<QTemporaryDir>();
    const QStringList small{latin("--size"), latin("4096"), latin("--model"),
                            m_panel->get(latin("machine.hmiType")).toString()};
    for (const char *project : {"Packing line 3.tmt3", "包装线二号.tmt3"})
        makeFile("make-update-file", small, latin(project));
    makeFile("make-update-file", small + QStringList{latin("--version"), latin("999")},
             latin("KV070T-2.4.osf3"));
    for (const char *other : {"Spare panel.tmt3", "Spare panel.osf3"})
        makeFile("make-update-file", small + QStringList{latin("--model"), latin(LONGEST_MODEL)},
                 latin(other));
    makeFile("make-plc-program", small.mid(0, 2), latin("Conveyor.bin"));
}

void PanelWalk::updates()
{
    start();
    makeStick();
    awaitSeen("tab_Machine");
    touch("btn_UpData");
    awaitSeen("list_Pro");
    at("update");
    ask({latin("usb"), latin("insert"), m_stick->path()});
    projects();
    firmware();
    plcPrograms();
    changeStick();
    manyFiles();
}

void PanelWalk::projects()
{
    touch("list_Pro", 0);
    at("update-list");
    set("update.steps", "[40]");
    set("update.stepTime", "1500");
    touch("btn_DownLoadPro");
    await([this] { return m_panel->widget(latin("bar_Project"), latin("value")).toInt() == 40; },
          latin("the bar"));
    at("update-running");
    set("update.stepTime", "0");
    box("update-done");
    touch("list_Pro", 1);
    touch("btn_DownLoadPro");
    box("update-other-model");
    touch("list_Pro", 0);
    set("update.error", "-9");
    touch("btn_DownLoadPro");
    box("update-refused");
    set("update.error", "null");
}

void PanelWalk::firmware()
{
    touch("tab_UpData", 1);
    touch("list_Image", 0);
    touch("btn_DownLoadImage");
    box("update-newer", "btn_Cancel");
    box("update-declined");
    touch("list_Image", 1);
    touch("btn_DownLoadImage");
    box("update-other-board");
}

void PanelWalk::plcPrograms()
{
    touch("tab_UpData", 2);
    touch("list_PlcPro", 0);
    at("update-plc");
    ask({latin("fail"), latin("plc.Commu"), latin("-25"), latin("1")});
    touch("btn_DownLoadPlcPro");
    box("update-plc-timeout");
    at("update-plc-failed");
    ask({latin("fail"), latin("plc.Commu"), latin("-31"), latin("1")});
    touch("btn_DownLoadPlcPro");
    box("update-plc-no-id");
}

// More files than the list has room for, and a name as long as names are.
void PanelWalk::changeStick()
{
    ask({latin("usb"), latin("remove"), m_stick->path()});
    m_stick = std::make_unique<QTemporaryDir>();
    const QString longest = QString::fromUtf8("包装线 二号 夹具 ").repeated(8).left(75);
    makeFile("make-update-file",
             {latin("--size"), latin("4096"), latin("--model"),
              m_panel->get(latin("machine.hmiType")).toString()},
             longest + latin(".tmt3"));
    for (int i = 1; i < 20; ++i) {
        QFile file(m_stick->filePath(QStringLiteral("Recipe %1.tmt3").arg(i)));
        if (!file.open(QIODevice::WriteOnly))
            throw Stuck("cannot fill the U-disk");
    }
}

void PanelWalk::manyFiles()
{
    touch("tab_UpData", 0);
    ask({latin("usb"), latin("insert"), m_stick->path()});
    const auto rows = [this] {
        return m_panel->widget(latin("list_Pro"), latin("items")).toArray();
    };
    await([&] { return rows().size() == 20; }, latin("all files"));
    at("update-many");
    int longest = 0;
    while (rows()[longest].toString().size() < 80)
        ++longest;
    touch("list_Pro", longest);
    at("update-long-name");
    set("update.steps", "[40]");
    set("update.stepTime", "1500");
    touch("btn_DownLoadPro");
    await([this] { return m_panel->widget(latin("bar_Project"), latin("value")).toInt() == 40; },
          latin("the bar"));
    at("update-long-running");
    set("update.stepTime", "0");
    box("update-long-done");
}
