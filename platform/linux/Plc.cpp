// The PLC download library: program files of the current format, and a PLC that speaks Modbus RTU.
// docs/porting/plc.md has the format, the PLC's registers, and why which number is returned.
#include "platform/plc.h"

#include "platform/linux/Journal.h"
#include "platform/linux/PlcFile.h"
#include "platform/linux/PlcSession.h"

#include <functional>
#include <mutex>

using board::PlcCommand;
using board::PlcFault;
using board::PlcSection;
using board::PlcSession;

namespace {

constexpr int DOWNLOAD_PASSWORD = -4;
constexpr int WRONG_TYPE = -16;
constexpr int WRONG_VERSION = -19;
constexpr int ANY_TYPE = 0;
constexpr int EXTENSION_ATTEMPTS = 3; // the caller makes one

// What a step returns. SetUpLoadPasswd has a number that no text is kept by, so that the text for
// all others is shown, which is the right one: -14 would send the file once more as an older one.
struct Step
{
    const char *name;
    int silent;
    int nonsense;
    int refused;
    int unsupported;
    int tooLarge;
};
constexpr Step COMMU = {"Commu", -25, -5, -5, -5, -5};
constexpr Step IS_HAS_PASSWORD = {"isHasPassword", 0, 0, 0, 0, 0}; // the next step tells it
constexpr Step CHECK_PASSWORD = {"CheckPassword", -25, -5, -4, -4, -4};
constexpr Step SET_UPLOAD_PASSWORD = {"SetUpLoadPasswd", -25, -5, -34, -27, -34};
constexpr Step CHECK_VERSION = {"CheckVer", -25, -5, -5, -5, -5};
constexpr Step STOP = {"StopPLC", -25, -6, -6, -6, -6};
constexpr Step READ_VERSION = {"ReadPlcVer", -7, -7, -7, -7, -7};
constexpr Step PROGRAM = {"DownLoadPro", -9, -9, -9, -9, -32};
constexpr Step PARAMETERS = {"DownLoadPara", -17, -17, -17, -17, -17};
constexpr Step MASK = {"DownLoadMask", -26, -26, -26, -28, -26};
constexpr Step MEMORY = {"DownLoadMemory", -11, -11, -11, -11, -11};
constexpr Step CAM = {"DownLoadCamTable", -12, -12, -12, -12, -12};
constexpr Step EXTENSION = {"DownLoadExtension", -20, -20, -20, -20, -20};
constexpr Step START = {"StartPLC", -13, -13, -13, -13, -13};
constexpr Step CLOSE = {"Close", -20, -20, -20, -20, -20};
constexpr Step OPEN = {"Open", -2, -2, -2, -2, -2};

// The one session that there can be at a time, and whose it is. Never destroyed: threads may ask
// to the very end.
struct Desk
{
    std::mutex mutex;
    PlcSession session;
    const UpDate5vPlcPro *owner = nullptr;
};

Desk &desk()
{
    static Desk &only = *new Desk;
    return only;
}

void tell(const char *step, const std::string &cause)
{
    board::journal(board::Severity::Error, std::string("PLC, ") + step + ": " + cause);
}

int codeOf(const Step &step, PlcFault fault)
{
    switch (fault) {
    case PlcFault::None:
        return 0;
    case PlcFault::NoPort:
    case PlcFault::Silent:
        return step.silent;
    case PlcFault::Nonsense:
        return step.nonsense;
    case PlcFault::WrongPassword:
        return DOWNLOAD_PASSWORD;
    case PlcFault::TooLarge:
        return step.tooLarge;
    case PlcFault::Unsupported:
        return step.unsupported;
    case PlcFault::Refused:
        break;
    }
    return step.refused;
}

int run(const Step &step, const std::function<PlcFault(PlcSession &)> &work)
{
    const std::lock_guard lock(desk().mutex);
    const PlcFault fault = work(desk().session);
    if (fault != PlcFault::None)
        tell(step.name, desk().session.cause());
    return codeOf(step, fault);
}

int run(const Step &step, PlcCommand command, const std::string &text = {})
{
    return run(step, [&](PlcSession &session) { return session.command(command, text); });
}

// A PLC that has restarted between two attempts is locked again.
int runUnlocked(const Step &step, const tagPdata &download,
                const std::function<PlcFault(PlcSession &)> &work)
{
    return run(step, [&](PlcSession &session) {
        PlcFault fault = work(session);
        if (fault != PlcFault::WrongPassword || download.sData.empty())
            return fault;
        fault = session.command(PlcCommand::Unlock, download.sData);
        return fault == PlcFault::None ? work(session) : fault;
    });
}

std::vector<std::uint8_t> joined(const std::list<PlcProData> &program)
{
    std::vector<std::uint8_t> bytes;
    for (const PlcProData &block : program)
        bytes.insert(bytes.end(), block.data.begin(), block.data.end());
    return bytes;
}

} // namespace

CLoadPlcInfo::CLoadPlcInfo() = default;

// NOLINTBEGIN(performance-unnecessary-value-param): as the header has them
int CLoadPlcInfo::ReadPlc5VDownLoadInfo(Plc5VDownLoadInfo &info, tag &extension, std::string path)
{
    board::PlcFile file;
    const int result = file.read(path);
    if (result == 0) {
        info = file.info();
        extension = file.extension();
    } else if (result != ERR_NOT_THIS_FORMAT) {
        tell("program file", file.fault());
    }
    return result;
}

UpDate5vPlcPro::UpDate5vPlcPro() = default;

UpDate5vPlcPro::~UpDate5vPlcPro()
{
    const std::lock_guard lock(desk().mutex);
    if (desk().owner == this) {
        desk().session.close();
        desk().owner = nullptr;
    }
}

int UpDate5vPlcPro::Open(SERIALCOMSET line)
{
    return run(OPEN, [&](PlcSession &session) {
        desk().owner = this;
        return session.open(line);
    });
}

int UpDate5vPlcPro::Commu()
{
    return run(COMMU, [](PlcSession &session) { return session.identify(); });
}

int UpDate5vPlcPro::CheckPassword(tagPdata &password)
{
    return run(CHECK_PASSWORD, PlcCommand::Unlock, password.sData);
}

int UpDate5vPlcPro::SetUpLoadPasswd(tagPdata &password)
{
    return run(SET_UPLOAD_PASSWORD, PlcCommand::Protect, password.sData);
}

int UpDate5vPlcPro::CheckVer(int version)
{
    const board::PlcModel wanted = board::plcModel(version);
    board::PlcIdentity found;
    const int result = run(CHECK_VERSION, [&](PlcSession &session) {
        const PlcFault fault = session.identify();
        found = session.identity();
        return fault;
    });
    if (result != 0)
        return result;
    const bool isType = wanted.type == ANY_TYPE || found.type == wanted.type;
    if (isType && found.version == wanted.version)
        return 0;
    tell(CHECK_VERSION.name, "the PLC is of type " + std::to_string(found.type) + ", version " +
                                 std::to_string(found.version) + "; the file is for type " +
                                 std::to_string(wanted.type) + ", version " +
                                 std::to_string(wanted.version));
    return isType ? WRONG_VERSION : WRONG_TYPE;
}

int UpDate5vPlcPro::StopPLC()
{
    return run(STOP, PlcCommand::Stop);
}

// Capacities may be others once the PLC is stopped.
int UpDate5vPlcPro::ReadPlcVer()
{
    return run(READ_VERSION, [](PlcSession &session) { return session.identify(); });
}

// The PLC keeps the upload password that it got by SetUpLoadPasswd.
int UpDate5vPlcPro::DownLoadPro(tagPdata download, tagPdata, std::list<PlcProData> program)
{
    return runUnlocked(PROGRAM, download, [&](PlcSession &session) {
        return session.send(PlcSection::Program, joined(program));
    });
}

int UpDate5vPlcPro::DownLoadPara(tagPdata download, tagPdata, plcparacomfig_t parameters)
{
    return runUnlocked(PARAMETERS, download, [&](PlcSession &session) {
        return session.send(PlcSection::Parameters, parameters.data);
    });
}

int UpDate5vPlcPro::DownLoadMask(tagPdata download, tagPdata)
{
    return runUnlocked(MASK, download,
                       [](PlcSession &session) { return session.command(PlcCommand::Hide); });
}

int UpDate5vPlcPro::DownLoadMemory(std::list<devmemorydataitem_t> memory)
{
    return run(MEMORY, [&](PlcSession &session) {
        for (const devmemorydataitem_t &range : memory)
            if (const PlcFault fault = session.send(range); fault != PlcFault::None)
                return fault;
        return PlcFault::None;
    });
}

int UpDate5vPlcPro::DownLoadCamTable(EcamTable_t table)
{
    return run(CAM, [&](PlcSession &session) { return session.send(PlcSection::Cam, table.data); });
}
// NOLINTEND(performance-unnecessary-value-param)

// A failure here leaves the PLC stopped and is told as a success: a file without an extension, or a
// PLC that has no room for any, must not come to that.
int UpDate5vPlcPro::DownLoadExtension(tag &extension)
{
    if (extension.data.empty())
        return 0;
    return run(EXTENSION, [&](PlcSession &session) {
        PlcFault fault = PlcFault::None;
        if (session.identity().capacity(PlcSection::Extension) == 0) {
            board::journal(board::Severity::Warning,
                           "PLC, DownLoadExtension: this PLC has no room for any; left out");
            return fault;
        }
        for (int attempt = 0; attempt < EXTENSION_ATTEMPTS; ++attempt) {
            fault = session.send(PlcSection::Extension, extension.data);
            if (fault == PlcFault::None)
                break;
        }
        return fault;
    });
}

int UpDate5vPlcPro::StartPLC()
{
    return run(START, PlcCommand::Start);
}

int UpDate5vPlcPro::Close()
{
    return run(CLOSE, [](PlcSession &session) {
        const PlcFault fault = session.command(PlcCommand::Leave);
        session.close();
        return fault;
    });
}

int isHasPassword(int)
{
    bool isLocked = false;
    run(IS_HAS_PASSWORD, [&](PlcSession &session) {
        const PlcFault fault = session.identify();
        isLocked = fault == PlcFault::None && session.identity().isLocked;
        return fault;
    });
    return isLocked ? 1 : 0;
}
