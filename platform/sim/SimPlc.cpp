// The PLC download library: a PLC that answers as ordered, whatever comes before.
#include "platform/plc.h"
#include "platform/posix/OpenFile.h"
#include "platform/sim/Panel.h"

#include <algorithm>
#include <climits>
#include <cstring>

using sim::Json;
using sim::panel;

namespace {

constexpr const char *READ_INFO = "plc.ReadPlc5VDownLoadInfo";
constexpr int ERR_UNREADABLE = -1;
constexpr std::size_t LARGEST_PROGRAM = 65536;
constexpr std::size_t BLOCK = 1024;
constexpr std::size_t PARAMETERS = 64;
constexpr std::size_t CAM_POINTS = 32;
constexpr int PLC_VERSION = 5;

using Bytes = std::vector<std::uint8_t>;

// The name without the namespace; `op` is "plc." and the name.
const char *nameOf(const char *op)
{
    return std::strchr(op, '.') + 1;
}

void noteStep(const char *op)
{
    panel().locked([&](Json &state) { sim::appendLatest(state["plc"]["steps"], nameOf(op)); });
}

// The next of the answers that are ordered for the operation.
int nextResult(Json &state, const char *op)
{
    Json &results = state["plc"]["results"];
    const auto ordered = results.find(nameOf(op));
    if (ordered == results.end() || ordered->empty())
        return 0;
    const int result = ordered->front().get<int>();
    ordered->erase(ordered->begin());
    return result;
}

int step(const char *op, Json args = Json())
{
    noteStep(op);
    return panel().call(op, std::move(args), [&](Json &state) { return nextResult(state, op); });
}

Json lineArgs(const SERIALCOMSET &line)
{
    return Json::array(
        {line.nPort, line.nMode, line.nBaud, line.nDataBits, line.nStopBits, line.nParity});
}

Bytes bytesOf(const std::string &text, std::size_t offset, std::size_t size)
{
    const std::string part = text.substr(std::min(offset, text.size()), size);
    return {part.begin(), part.end()};
}

void fillProgram(Plc5VDownLoadInfo &info, const std::string &content)
{
    for (std::size_t offset = 0; offset < content.size(); offset += BLOCK)
        info.program.push_back({bytesOf(content, offset, BLOCK)});
}

// What a file of this content carries if it has the sections that `file` (plc.file) says.
Plc5VDownLoadInfo infoOf(const Json &file, const std::string &content)
{
    const auto has = [&](const char *section) { return file.at(section).get<bool>(); };
    Plc5VDownLoadInfo info;
    info.serial = {0, 0, 115200, 8, 1, 0};
    info.nVersion = PLC_VERSION;
    info.bDownLoadPasswd = has("password");
    info.downLoadPasswd.sData = info.bDownLoadPasswd ? "20210815" : "";
    info.bUpLoadProtect = has("protect");
    info.upLoadPasswd.sData = info.bUpLoadProtect ? "51802012" : "";
    info.bProgram = has("program");
    if (info.bProgram)
        fillProgram(info, content);
    info.bPara = has("parameters");
    if (info.bPara)
        info.para.data = bytesOf(content, 0, PARAMETERS);
    info.bMask = has("mask");
    info.bMemory = has("memory");
    if (info.bMemory)
        info.memory = {{0, {1, 2, 3, 4}}, {1000, {5, 6}}};
    info.bCam = has("cam");
    if (info.bCam)
        info.cam.data = bytesOf(content, 0, CAM_POINTS);
    return info;
}

int readProgram(const std::string &path, Plc5VDownLoadInfo &info, tag &extension)
{
    Json file;
    int ordered = panel().locked([&](Json &state) {
        file = state["plc"]["file"];
        return nextResult(state, READ_INFO);
    });
    if (ordered == 0)
        ordered = file.at("read").get<int>();
    if (ordered != 0)
        return ordered;
    const std::string content = os::OpenFile(path).read(0, LARGEST_PROGRAM);
    if (content.empty())
        return ERR_UNREADABLE;
    info = infoOf(file, content);
    extension.data = bytesOf(content, 0, BLOCK);
    return 0;
}

} // namespace

CLoadPlcInfo::CLoadPlcInfo() = default;

int CLoadPlcInfo::ReadPlc5VDownLoadInfo(Plc5VDownLoadInfo &info, tag &extension, std::string path)
{
    noteStep(READ_INFO);
    panel().serialPlc().start(); // an older file is sent over the serial line next
    return panel().callOutside(READ_INFO, Json::array({path}), UINT_MAX, 0,
                               [&](unsigned int) { return readProgram(path, info, extension); });
}

UpDate5vPlcPro::UpDate5vPlcPro() = default;
UpDate5vPlcPro::~UpDate5vPlcPro() {} // this panel holds no port open

int UpDate5vPlcPro::Open(SERIALCOMSET line)
{
    return step("plc.Open", lineArgs(line));
}

int UpDate5vPlcPro::Commu()
{
    return step("plc.Commu");
}

int UpDate5vPlcPro::CheckPassword(tagPdata &password)
{
    return step("plc.CheckPassword", Json::array({password.sData}));
}

int UpDate5vPlcPro::SetUpLoadPasswd(tagPdata &password)
{
    return step("plc.SetUpLoadPasswd", Json::array({password.sData}));
}

int UpDate5vPlcPro::CheckVer(int version)
{
    return step("plc.CheckVer", Json::array({version}));
}

int UpDate5vPlcPro::StopPLC()
{
    return step("plc.StopPLC");
}

int UpDate5vPlcPro::ReadPlcVer()
{
    return step("plc.ReadPlcVer");
}

// The library takes copies of its own. NOLINTBEGIN(performance-unnecessary-value-param)
int UpDate5vPlcPro::DownLoadPro(tagPdata download, tagPdata upload, std::list<PlcProData> program)
{
    return step("plc.DownLoadPro", Json::array({download.sData, upload.sData, program.size()}));
}

int UpDate5vPlcPro::DownLoadPara(tagPdata download, tagPdata upload, plcparacomfig_t parameters)
{
    return step("plc.DownLoadPara",
                Json::array({download.sData, upload.sData, parameters.data.size()}));
}

int UpDate5vPlcPro::DownLoadMask(tagPdata download, tagPdata upload)
{
    return step("plc.DownLoadMask", Json::array({download.sData, upload.sData}));
}

int UpDate5vPlcPro::DownLoadMemory(std::list<devmemorydataitem_t> memory)
{
    return step("plc.DownLoadMemory", Json::array({memory.size()}));
}

int UpDate5vPlcPro::DownLoadCamTable(EcamTable_t table)
{
    return step("plc.DownLoadCamTable", Json::array({table.data.size()}));
}
// NOLINTEND(performance-unnecessary-value-param)

int UpDate5vPlcPro::DownLoadExtension(tag &extension)
{
    return step("plc.DownLoadExtension", Json::array({extension.data.size()}));
}

int UpDate5vPlcPro::StartPLC()
{
    return step("plc.StartPLC");
}

int UpDate5vPlcPro::Close()
{
    return step("plc.Close");
}

int isHasPassword(int ask)
{
    noteStep("plc.isHasPassword");
    return panel().call("plc.isHasPassword", Json::array({ask}),
                        [](Json &state) { return state["plc"]["hasPassword"].get<int>(); });
}
