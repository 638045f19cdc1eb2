#include "update/PlcDownload.h"

#include "platform/cos_file.h"
#include "platform/cos_time.h"
#include "platform/paths.h"
#include "platform/plc.h"
#include "update/LegacyDownload.h"
#include "update/Progress.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>

namespace {

constexpr int PASSWORD_MISSING = -4;
constexpr int NOT_THIS_FORMAT = -14;
constexpr int UNREADABLE = -15;

constexpr int SECTION_ATTEMPTS = 3;
constexpr int NO_PROGRESS = -1;
constexpr int PROGRESS_BEFORE_START = 90;
constexpr int PROGRESS_DONE = 100;

struct Step
{
    const char *failed; // its trace line; null for none
    bool wanted;
    int attempts;
    int percent; // when it is done
    std::function<int()> run;
};

// The download of one file of the library's format. The library's objects live as long as it does.
class Download
{
public:
    explicit Download(char (&failed)[PLC_TRACE_SIZE]) : m_failed(failed) {}

    int run(const std::string &path);

private:
    int connect();
    int sendSections(int last);
    int finish(int last);

    template <std::size_t Count>
    int runAll(const Step (&steps)[Count], int last);
    int fail(const char *trace, int code);
    int checkPassword();

    CLoadPlcInfo m_file;
    UpDate5vPlcPro m_plc;
    Plc5VDownLoadInfo m_info;
    tag m_extension;
    char (&m_failed)[PLC_TRACE_SIZE];
};

int Download::run(const std::string &path)
{
    const int read = m_file.ReadPlc5VDownLoadInfo(m_info, m_extension, path);
    if (read < 0)
        return read == CLoadPlcInfo::ERR_NOT_THIS_FORMAT ? NOT_THIS_FORMAT : UNREADABLE;
    int result = connect();
    if (result >= 0)
        result = sendSections(result);
    return result < 0 ? result : finish(result);
}

int Download::connect()
{
    const Step steps[] = {
        {"open serial Error ", true, 1, NO_PROGRESS, [this] { return m_plc.Open(m_info.serial); }},
        {"Commu Error ", true, 1, NO_PROGRESS, [this] { return m_plc.Commu(); }},
        {m_info.bDownLoadPasswd ? "CheckPassword Error " : nullptr, true, 1, 10,
         [this] { return checkPassword(); }},
        {"SetUpLoadPasswd Error ", m_info.bUpLoadProtect, 1, NO_PROGRESS,
         [this] { return m_plc.SetUpLoadPasswd(m_info.upLoadPasswd); }},
        {"CheckVer Error ", true, 1, NO_PROGRESS,
         [this] { return m_plc.CheckVer(m_info.nVersion); }},
        {"StopPLC Error ", true, 1, NO_PROGRESS, [this] { return m_plc.StopPLC(); }},
        {"ReadPlcVer Error ", true, 1, NO_PROGRESS, [this] { return m_plc.ReadPlcVer(); }},
    };
    return runAll(steps, 0);
}

int Download::sendSections(int last)
{
    const tagPdata &down = m_info.downLoadPasswd;
    const tagPdata &up = m_info.upLoadPasswd;
    const Step steps[] = {
        {"DownLoadPro Error ", m_info.bProgram, SECTION_ATTEMPTS, 30,
         [&] { return m_plc.DownLoadPro(down, up, m_info.program); }},
        {"DownLoadPara Error ", m_info.bPara, SECTION_ATTEMPTS, 40,
         [&] { return m_plc.DownLoadPara(down, up, m_info.para); }},
        {"DownLoadMask Error ", m_info.bMask, SECTION_ATTEMPTS, 50,
         [&] { return m_plc.DownLoadMask(down, up); }},
        {"DownLoadMemory Error ", m_info.bMemory, SECTION_ATTEMPTS, 70,
         [&] { return static_cast<std::int8_t>(m_plc.DownLoadMemory(m_info.memory)); }},
        {"DownLoadCamTable Error ", m_info.bCam, SECTION_ATTEMPTS, NO_PROGRESS,
         [&] { return m_plc.DownLoadCamTable(m_info.cam); }},
    };
    return runAll(steps, last);
}

// `last` is the result of the last step. A failed extension ends the download with it, normally a
// success; this is intended.
int Download::finish(int last)
{
    if (m_plc.DownLoadExtension(m_extension) < 0)
        return fail("DownLoadExtension Error ", last);
    g_Progress.nPercent = PROGRESS_BEFORE_START;
    if (const int result = m_plc.StartPLC(); result < 0)
        return fail("StartPLC Error ", result);
    std::puts("StartPLC Ok ");
    const int result = m_plc.Close();
    if (result < 0)
        return fail("Close Error ", result);
    std::puts("Close Ok ");
    return result;
}

// Runs the steps that are wanted, each until it answers 0 or its attempts are used up. Returns the
// first negative answer, else the last one; `last` if nothing is wanted.
template <std::size_t Count>
int Download::runAll(const Step (&steps)[Count], int last)
{
    for (const Step &step : steps) {
        for (int attempt = 0; step.wanted && attempt < step.attempts; ++attempt) {
            last = step.run();
            if (last == 0)
                break;
        }
        if (last < 0)
            return step.failed == nullptr ? last : fail(step.failed, last);
        if (step.percent != NO_PROGRESS)
            g_Progress.nPercent = step.percent;
    }
    return last;
}

int Download::fail(const char *trace, int code)
{
    std::puts(trace);
    std::strncpy(m_failed, trace, PLC_TRACE_SIZE - 1);
    return code;
}

int Download::checkPassword()
{
    if (m_info.bDownLoadPasswd)
        return m_plc.CheckPassword(m_info.downLoadPasswd);
    return isHasPassword(1) != 0 ? PASSWORD_MISSING : 0;
}

int downloadCurrentFormat(const std::string &path, char (&failed)[PLC_TRACE_SIZE])
{
    const int result = Download(failed).run(path);
    g_Progress.nPercent = PROGRESS_DONE;
    return result;
}

} // namespace

int UpdatePLCprogram(const std::string &path, char (&failed)[PLC_TRACE_SIZE])
{
    std::printf("Update PLC Program!\r\n");
    std::printf("on_UpdatePLCProgram_clicked start time %ld!\r\n",
                static_cast<long>(COS::CosTime::GetTimeStamp()));
    COS::CosDir::MakeDir(panelPath("/tmp/unzip_temp")); // else the deciphering fails
    const int result = downloadCurrentFormat(path, failed);
    return result == NOT_THIS_FORMAT ? downloadLegacyProgram(path) : result;
}
