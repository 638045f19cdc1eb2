// Client of the network service ("netServer"): Ethernet, Wi-Fi, 4G and the cloud connection.
//
// Unless said otherwise a function sends one request, waits for the answer and returns 0 or more
// on success, negative on failure (the codes below), its output arguments untouched. Its last two
// arguments are a flag that is passed on to the service as it is, and the time in milliseconds to
// wait for the answer; a function never blocks longer than that. All functions: any thread.
// A device is named as its record's sDevName names it.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace netT {

// The negative results of this client. A service may answer others; every negative one is failure.
enum Error {
    ERR_FAILED = -1,     // the service refused
    ERR_TIMEOUT = -2,    // no answer in time
    ERR_NO_SERVICE = -3, // the service does not run
    ERR_NO_DEVICE = -4,  // there is no device of that name
};

// One network device as the service sees it. Texts are bytes and may be empty.
struct stAllNetInfo_tag
{
    std::string sDevName;    // interface name
    std::string sNetType;    // "ETH", "WIFI" or "4G"
    std::string sDhcp;       // "enable" by DHCP, "disable" static
    std::string sMacAddr;    // as text
    std::string sIpAddr;     // dotted, or empty
    std::string sSubnetMask; // dotted
    std::string sGateway;    // dotted
    // DNS servers, dotted. A service that knows only one reports it in both fields.
    std::string sPrefDns;
    std::string sAlterDns;
    std::string sFunction; // "enable" switched on, "disable" switched off
    int bNetNormal = 0;    // 1 if the link is up and working
};

// One Wi-Fi access point in range.
struct stApInfo_tag
{
    int nId = 0;
    int nLevel = 0;    // 0 to 100
    std::string sSsid; // 0 to 32 bytes of any value (IEEE 802.11)
    std::string sText; // the service's own note
    int nSecurity = 0; // 0 or 1 open, 2 and above with a password
};

// The Wi-Fi network that is configured.
struct stUserInfo_tag
{
    std::string sSsid;
    std::string sPassword;
    int nSecurity = 4;
    int nId = -1;
};

// State of the Wi-Fi connection.
enum WIFI_STATE_T {
    WIFI_IDLE = 0,
    WIFI_SCANNED = 1, // a network was found, joining it
    WIFI_INACTIVE = 2,
    WIFI_CONNECTING = 3,
    WIFI_DISCONNECTED = 4,
    WIFI_FAILED = 5, // wrong password or out of reach; see connectwifi()
    WIFI_DISABLED = 6,
    WIFI_CONNECTED = 7,
};

// Access point name settings of the 4G modem.
struct stApnInfo_tag
{
    std::string sName;
    std::string sAuth; // "none", "pap" or "chap"
    std::string sUser;
    std::string sPassword;
    std::string sMode; // "enable" for these settings, "disable" for the operator's default
};

// Registration of the 4G modem.
struct stNetWorkRegis_tag
{
    int nDialUpMode = 0; // 1 if attached to the network
};

// What the service has collected from the modem by AT commands.
struct tag_atCollect
{
    std::array<std::string, 9> texts; // first: ICCID; fifth: IMEI
    std::array<int, 5> numbers{};     // first: signal quality as +CSQ gives it, 0 to 31, 99 unknown
    std::string last;
};

// Outcome of a ping. Times in milliseconds, loss in percent.
struct stNetCommuPacketInfo_tag
{
    int nMaxPacketTransTime = 0;
    int nMinPacketTransTime = 0;
    int nAvgPacketTransTime = 0;
    int nLostPackagePercentage = 0;
};

// --- Devices -----------------------------------------------------------------------------------

// 0 or more if the device is there, negative if not.
int netIsExist(const std::string &device, bool flag, unsigned int timeoutMs);
// Switch a device on or off. The answer means that the request is taken; a record tells when it
// is done.
int netDeviceUp(const std::string &device, bool flag, unsigned int timeoutMs);
int netDeviceDown(const std::string &device, bool flag, unsigned int timeoutMs);
// 0 if the device is up, 1 if it is down.
int isNetUp(const std::string &device, bool flag, unsigned int timeoutMs);
// 0 if a cable is plugged in at both ends (for a modem: if there is a link), negative if not.
int checkEthCableLink(const std::string &device, bool flag, unsigned int timeoutMs);

// --- Addresses ---------------------------------------------------------------------------------

int startDhcp(const std::string &device, bool flag, unsigned int timeoutMs);
int stopDhcp(const std::string &device, bool flag, unsigned int timeoutMs);
// 0 if the device takes its address by DHCP, 1 if it is static, negative on failure.
int isNetDeviceDhcp(const std::string &device, bool flag, unsigned int timeoutMs);
// Static address. All texts dotted; the gateway may be empty or 0.0.0.0, for none. ERR_FAILED if
// one is no IPv4 address, or if they do not fit each other: platform/posix/Ipv4.h has what fits.
int setIp(const std::string &device, const std::string &ip, const std::string &mask,
          const std::string &gateway, bool flag, unsigned int timeoutMs);
int getIp(const std::string &device, std::string &ip, std::string &mask, std::string &gateway,
          bool flag, unsigned int timeoutMs);
// Dotted; either may be empty. ERR_FAILED if one is no address of a server.
int setDns(const std::string &device, const std::string &preferred, const std::string &alternate,
           bool flag, unsigned int timeoutMs);
int getDns(const std::string &device, std::string &preferred, std::string &alternate, bool flag,
           unsigned int timeoutMs);

// --- Wi-Fi -------------------------------------------------------------------------------------
// All of these fail with ERR_NO_DEVICE where there is no Wi-Fi device.

// The networks in range, in no particular order. ERR_FAILED while the device is switched off.
int getAPList(std::vector<stApInfo_tag> &list, bool flag, unsigned int timeoutMs);
int getStatus(WIFI_STATE_T &state, bool flag, unsigned int timeoutMs);
int getConnectInfo(stUserInfo_tag &info, bool flag, unsigned int timeoutMs);
// Stores the network to join; connectwifi() joins it. ERR_FAILED for a name that is empty or longer
// than 32 bytes.
int setConnectInfo(const std::string &ssid, const std::string &password, bool flag,
                   unsigned int timeoutMs);
// Starts joining the stored network and returns at once; getStatus() tells how it goes. When it
// ends, well or badly, a record of the device follows. A failure lasts: getStatus() answers
// WIFI_FAILED until the next connectwifi() or until the device is switched, as the program may ask
// ten seconds later and more. Where the network joined before is back it answers that for 20 s and
// then WIFI_CONNECTED, with a record. ERR_FAILED while the device is switched off.
int connectwifi();
// The signal level, 0 to 100.
int getSignal(bool flag, unsigned int timeoutMs);

// --- 4G ----------------------------------------------------------------------------------------

// The signal quality as +CSQ gives it (3GPP TS 27.007, 8.5): 0 to 31, 99 unknown.
int getCsqSignal(bool flag, unsigned int timeoutMs);
int getApn(stApnInfo_tag &apn, bool flag, unsigned int timeoutMs);
int setApn(const stApnInfo_tag &apn, bool flag, unsigned int timeoutMs);
// The SIM card's ICCID; empty without a card.
int getCCID(std::string &iccid, bool flag, unsigned int timeoutMs);
int get4gDialUpMode(stNetWorkRegis_tag &mode, bool flag, unsigned int timeoutMs);

// --- Preferred link, diagnosis -----------------------------------------------------------------

// The kind of device that outgoing traffic prefers: "ETH", "WIFI" or "4G".
int getDevPriority(std::string &kind, bool flag, unsigned int timeoutMs);
int setDevPriority(const std::string &kind, bool flag, unsigned int timeoutMs);
// The cloud server's address.
int getNetServerAddr(std::string &address, bool flag, unsigned int timeoutMs);
// Pings `target`, a dotted address or a host name, `count` times out of `device`. If `target` is
// empty `fallback` is pinged: the alternate DNS server, for the status icons. Beside a target it is
// the device's own address, perhaps empty: a client may send from it but does not ping it. `quiet`
// and `flag` are passed on to the service. 0 or more if any reply came; negative, with
// `statistics` untouched, if none did.
int netTping(const std::string &device, const std::string &target, const std::string &fallback,
             stNetCommuPacketInfo_tag &statistics, bool quiet, int count, bool flag,
             unsigned int timeoutMs);

// --- Callbacks ---------------------------------------------------------------------------------
// They come from the client's own thread, one at a time, never from within the registration.
// Their result is ignored; 0 by convention. There is no way to unregister: `context` lives as long
// as the program. A registration fails with ERR_NO_SERVICE or ERR_TIMEOUT; nothing is called then.

using AllNetInfoCallback = int (*)(std::vector<stAllNetInfo_tag> &list, void *context);
// Calls `callback` with the records of all devices: once soon after this call, then after every
// change. `repeat` false asks for the first call only.
int getAllNetInfoCallBack(AllNetInfoCallback callback, void *context, bool flag,
                          unsigned int timeoutMs, bool repeat);

using AtInfoCallback = int (*)(tag_atCollect &info, void *context);
// Calls `callback` with what the modem says: once soon after this call, then after every change.
int get4gAtInfoCallBackup(AtInfoCallback callback, void *context);

// --- Cloud -------------------------------------------------------------------------------------

// What CAsyncClient::start() connects with. loadCloudXML() fills the first five, the program the
// others.
struct CloudConfig
{
    std::string sUrl;     // MQTT server: host name or dotted address
    std::string sCertUrl; // certificate service, likewise
    std::string sNtpUrl;  // time server, likewise, at its usual port
    int nPort = 0;        // of the MQTT server, 1 to 65535
    int nCertPort = 0;    // of the certificate service, 1 to 65535
    // Who the panel is for the cloud, as getDeviceId() says; empty if that fails.
    std::string sDeviceId;
    // MD5 of the processor's identifier, 32 lower-case hexadecimal digits, for what the client
    // derives from it; the same at each start, stored nowhere.
    std::string sSalt;
    std::string sRequestTopic;  // "kvhmi/CQ/" and sDeviceId
    std::string sResponseTopic; // "kvhmi/CP/" and sDeviceId
};

// Loads the cloud configuration from the file at `path`: fills the addresses and ports of `config`,
// and `text` with the cloud's region. Returns 0; negative on failure, both untouched: -1 no file,
// -2 a bad one, -3 a resource file that it needs is missing. Blocks for the reading. Any thread.
// platform/posix/CloudFile.h has the format and reads it.
int loadCloudXML(const std::string &path, CloudConfig &config, std::string &text);

// The MQTT client of the remote-access cloud. It works on the service's threads.
class CAsyncClient
{
public:
    using MessageHandler = int (*)(const std::string &topic, const std::string &message,
                                   void *context);

    CAsyncClient();
    ~CAsyncClient();
    CAsyncClient(const CAsyncClient &) = delete;
    CAsyncClient &operator=(const CAsyncClient &) = delete;

    // Connects in the background and stays connected, over every loss of the link: the program
    // calls it once. Subscribes to the request topic of `config`; `handler` gets what arrives on
    // it, one message at a time, on a thread of the client's, until the client is destroyed. What
    // it returns is published on the response topic, as a decimal number. Returns 0; negative on
    // failure, which is not asked for again.
    int start(const CloudConfig &config, MessageHandler handler, void *context);

    // 1 connected; 0 connecting; negative: the stage at which it stopped, -2 time
    // synchronisation, -3 certificate, -4 server, -5 subscription; -1 not started.
    int getConnectedStatus() const;
};

} // namespace netT
