// The Update group of the walk, with a U-disk that has something for each page.
#include "tools/PanelWalk.h"

#include <QProcess>

namespace {

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
    const QByteArray model = m_panel->get(latin("machine.hmiType")).toString().toUtf8();
    set("machine.hmiType", R"("KV101T-PRO")");
    touch("btn_DownLoadPro");
    box("update-other-model");
    set("machine.hmiType", ('"' + model + '"').constData());
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
}
