// The PLC download library: reads a program file and speaks with the PLC at a serial port.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <vector>

// Serial line that the program file asks for.
struct SERIALCOMSET
{
    int nPort = 0; // 0 the first port, 1 the second
    int nMode = 0; // 0 RS-232, 1 RS-422, 2 RS-485
    int nBaud = 0; // bits a second
    int nDataBits = 8;
    int nStopBits = 1;
    int nParity = 0; // 0 none, 1 odd, 2 even
};

// A password as the file carries it; empty where it carries none.
struct tagPdata
{
    std::string sData;
};

// One block of the program.
struct PlcProData
{
    std::vector<std::uint8_t> data;
};

// The parameter section.
struct plcparacomfig_t
{
    std::vector<std::uint8_t> data;
};

// One range of the device memory.
struct devmemorydataitem_t
{
    int nAddress = 0;
    std::vector<std::uint16_t> values;
};

// The electronic CAM table.
struct EcamTable_t
{
    std::vector<std::uint8_t> data;
};

// The extension data, which every file may carry.
struct tag
{
    std::vector<std::uint8_t> data;
};

// What a program file carries. A section is there if its flag says so.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): each flag beside its section
struct Plc5VDownLoadInfo
{
    SERIALCOMSET serial;
    bool bDownLoadPasswd = false; // the file knows the PLC's download password
    tagPdata downLoadPasswd;
    bool bUpLoadProtect = false; // the program must not be read back without a password
    tagPdata upLoadPasswd;
    int nVersion = 0; // of the PLC that the program is made for
    bool bProgram = false;
    std::list<PlcProData> program;
    bool bPara = false;
    plcparacomfig_t para;
    bool bMask = false;
    bool bMemory = false;
    std::list<devmemorydataitem_t> memory;
    bool bCam = false;
    EcamTable_t cam;
};

// Any thread, an object of its own each.
class CLoadPlcInfo
{
public:
    enum Error {
        ERR_NOT_THIS_FORMAT = -3, // an older file, which this library does not read
    };

    CLoadPlcInfo();

    // Reads the program file `path` (bytes of a file name). Returns 0; an Error or another
    // negative number if the file cannot be read or is damaged.
    int ReadPlc5VDownLoadInfo(Plc5VDownLoadInfo &info, tag &extension, std::string path);
};

// One session with the PLC. Any thread, one session at a time. Every function returns 0, or a
// negative number that says what failed; the numbers are those that the operator's texts are kept
// by. They block until the PLC has answered or the library's time is over, some seconds each.
class UpDate5vPlcPro
{
public:
    UpDate5vPlcPro();
    // Closes the port if it is open.
    ~UpDate5vPlcPro();
    UpDate5vPlcPro(const UpDate5vPlcPro &) = delete;
    UpDate5vPlcPro &operator=(const UpDate5vPlcPro &) = delete;

    // Opens the serial port; nothing is sent yet.
    int Open(SERIALCOMSET line);
    // Whether a PLC answers.
    int Commu();
    // Gives the PLC the download password that it asks for.
    int CheckPassword(tagPdata &password);
    // Sets the password that reading the program back will need.
    int SetUpLoadPasswd(tagPdata &password);
    // Whether the PLC is of the version that the program is made for.
    int CheckVer(int version);
    int StopPLC();
    int ReadPlcVer();
    // Both passwords: the download's and the upload's. May be repeated after a failure.
    int DownLoadPro(tagPdata download, tagPdata upload, std::list<PlcProData> program);
    int DownLoadPara(tagPdata download, tagPdata upload, plcparacomfig_t parameters);
    int DownLoadMask(tagPdata download, tagPdata upload);
    // Only the low 8 bits of the result, read as a signed number, count.
    int DownLoadMemory(std::list<devmemorydataitem_t> memory);
    int DownLoadCamTable(EcamTable_t table);
    int DownLoadExtension(tag &extension);
    int StartPLC();
    int Close();
};

// Whether the PLC that is connected asks for a download password: not 0 if so. `ask` is 1. During
// a session that is open; any thread.
int isHasPassword(int ask);
