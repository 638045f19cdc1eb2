// What netServer decides without a bus: addresses, profiles, networks in range, its own settings.
#include "services/network/Profile.h"
#include "services/network/Settings.h"
#include "services/network/Supplicant.h"
#include "services/network/WifiNetworks.h"
#include "tests/support/Text.h"

#include <QtTest>

using namespace network;

namespace {

std::string toText(const std::optional<os::StaticAddress> &address)
{
    return address
               ? address->address + "/" + std::to_string(address->prefix) + " " + address->gateway
               : "none";
}

bool verifies(NMConnection *profile)
{
    return nm_connection_normalize(profile, nullptr, nullptr, nullptr) != FALSE;
}

constexpr auto PSK = NM_802_11_AP_SEC_KEY_MGMT_PSK;
constexpr auto SAE = NM_802_11_AP_SEC_KEY_MGMT_SAE;
constexpr auto NONE = NM_802_11_AP_SEC_NONE;

} // namespace

class PartsTest : public QObject
{
    Q_OBJECT

private slots:
    void checksAddresses_data();
    void checksAddresses();
    void keepsAddressing();
    void makesOneProfileADevice();
    void knowsARefusal();
    void listsEachNetworkOnce();
    void tellsSecurity_data();
    void tellsSecurity();
    void joinsNetworks_data();
    void joinsNetworks();
    void keepsSettings();
};

void PartsTest::checksAddresses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("gateway");
    QTest::addColumn<QString>("checked");
    const auto row = [](const char *address, const char *mask, const char *gateway,
                        const char *checked) {
        QTest::addRow("%s %s %s", address, mask, gateway)
            << QString::fromLatin1(address) << QString::fromLatin1(mask)
            << QString::fromLatin1(gateway) << QString::fromLatin1(checked);
    };
    row("192.168.1.2", "255.255.255.0", "192.168.1.1", "192.168.1.2/24 192.168.1.1");
    row("192.168.1.2", "255.255.255.0", "", "192.168.1.2/24 ");
    row("192.168.1.2", "255.255.255.0", "0.0.0.0", "192.168.1.2/24 ");
    row("10.0.0.0", "255.255.255.254", "10.0.0.1", "10.0.0.0/31 10.0.0.1");
    row("10.0.0.7", "255.255.255.255", "", "10.0.0.7/32 ");
    row("192.168.1.2", "255.255.255.0", "192.168.2.1", "none"); // beyond the net
    row("192.168.1.2", "255.255.255.0", "192.168.1.2", "none"); // itself
    row("192.168.1.2", "255.255.255.0", "192.168.1.255", "none");
    row("192.168.1.0", "255.255.255.0", "", "none");
    row("192.168.1.255", "255.255.255.0", "", "none");
    row("192.168.1.2", "255.0.255.0", "", "none");
    row("192.168.1.2", "0.0.0.0", "", "none");
    row("0.0.0.0", "0.0.0.0", "0.0.0.0", "none");
    row("127.0.0.2", "255.0.0.0", "", "none");
    row("224.0.0.1", "255.255.255.0", "", "none");
    row("192.168.1", "255.255.255.0", "", "none");
    row("192.168.1.2.", "255.255.255.0", "", "none");
    row("192.168.1.256", "255.255.255.0", "", "none");
    row("192.168.1.2", "255.255.255.0", "gateway", "none");
    row("", "", "", "none");
}

void PartsTest::checksAddresses()
{
    QFETCH(QString, address);
    QFETCH(QString, mask);
    QFETCH(QString, gateway);
    QTEST(QString::fromStdString(toText(
              os::checkAddress(address.toStdString(), mask.toStdString(), gateway.toStdString()))),
          "checked");
}

void PartsTest::keepsAddressing()
{
    const Object<NMConnection> profile = newProfile(Kind::Ethernet, "eth0");
    setMetric(profile.get(), 300);
    QVERIFY(verifies(profile.get()) && usesDhcp(profile.get()));
    setServers(profile.get(), {"", "10.0.0.9"});
    QVERIFY(verifies(profile.get()));
    QCOMPARE(serversOf(profile.get()).preferred, std::string("10.0.0.9"));

    useStatic(profile.get(), os::checkAddress("10.0.0.2", "255.255.0.0", "10.0.0.1"));
    QVERIFY(verifies(profile.get()) && !usesDhcp(profile.get()));
    QCOMPARE(toText(staticAddress(profile.get())), std::string("10.0.0.2/16 10.0.0.1"));
    QCOMPARE(serversOf(profile.get()).preferred, std::string("10.0.0.9"));
    setServers(profile.get(), {"10.0.0.8", "10.0.0.9"});
    useStatic(profile.get(), os::checkAddress("10.1.0.2", "255.255.0.0", ""));
    QVERIFY(verifies(profile.get()));
    QCOMPARE(toText(staticAddress(profile.get())), std::string("10.1.0.2/16 "));
    QCOMPARE(serversOf(profile.get()).alternate, std::string("10.0.0.9"));

    const Object<NMConnection> other = newProfile(Kind::Wifi, "wlan0");
    copyAddressing(profile.get(), other.get());
    QCOMPARE(toText(staticAddress(other.get())), std::string("10.1.0.2/16 "));

    useStatic(profile.get(), std::nullopt);
    QVERIFY(verifies(profile.get()) && !usesDhcp(profile.get()) && !staticAddress(profile.get()));
    setServers(profile.get(), {"10.0.0.7", ""});
    QVERIFY(verifies(profile.get()));
    useStatic(profile.get(), os::checkAddress("10.1.0.2", "255.255.0.0", ""));
    QVERIFY(verifies(profile.get()));
    QCOMPARE(serversOf(profile.get()).preferred, std::string("10.0.0.7"));
    useDhcp(profile.get());
    QVERIFY(verifies(profile.get()) && usesDhcp(profile.get()));
    QCOMPARE(serversOf(profile.get()).preferred, std::string());
    QCOMPARE(metricOf(profile.get()), 300);
}

void PartsTest::makesOneProfileADevice()
{
    const auto uuid = [](Kind kind, const char *device) {
        return std::string(nm_connection_get_uuid(newProfile(kind, device).get()));
    };
    QCOMPARE(uuid(Kind::Ethernet, "eth0"), uuid(Kind::Ethernet, "eth0"));
    QVERIFY(uuid(Kind::Ethernet, "eth0") != uuid(Kind::Ethernet, "eth1"));
    QVERIFY(uuid(Kind::Wifi, "wlan0") != uuid(Kind::Wifi, "wlan0")); // joined, and being tried
}

void PartsTest::knowsARefusal()
{
    const auto isRefusal = [](const char *properties) {
        return network::isRefusal(
            Variant(g_variant_parse(nullptr, properties, nullptr, nullptr, nullptr)).get());
    };
    for (const char *code : {"1", "15"})
        QVERIFY(isRefusal(("{'AuthStatusCode': <" + std::string(code) + ">}").c_str()));
    for (const char *code : {"0", "76", "77", "126", "'1'"})
        QVERIFY(!isRefusal(("{'AuthStatusCode': <" + std::string(code) + ">}").c_str()));
    QVERIFY(!isRefusal("{'State': <'scanning'>}"));
}

void PartsTest::listsEachNetworkOnce()
{
    const std::vector<WifiNetwork> networks = networksOf({{"a", 20, NM_802_11_AP_FLAGS_NONE, NONE},
                                                          {"", 90, NM_802_11_AP_FLAGS_NONE, PSK},
                                                          {std::string(8, '\0'), 90},
                                                          {"b", 0, NM_802_11_AP_FLAGS_NONE, NONE},
                                                          {"a", 70, NM_802_11_AP_FLAGS_NONE, PSK},
                                                          {"a", 60, NM_802_11_AP_FLAGS_NONE, NONE},
                                                          {std::string("a\0", 2), 130}});
    QCOMPARE(networks.size(), std::size_t(3));
    QCOMPARE(networks[0].name, std::string("a"));
    QCOMPARE(networks[0].level, 70);
    QCOMPARE(networks[0].security, WPA);
    QCOMPARE(networks[1].name, std::string("a\0", 2));
    QCOMPARE(networks[1].level, 100);
    QCOMPARE(networks[2].level, 0);
    QVERIFY(!findNetwork(networks, "c"));
}

void PartsTest::tellsSecurity_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("keys");
    QTest::addColumn<int>("security");
    const int privacy = NM_802_11_AP_FLAGS_PRIVACY;
    QTest::newRow("open") << 0 << int(NONE) << int(OPEN);
    QTest::newRow("OWE") << 0 << int(NM_802_11_AP_SEC_KEY_MGMT_OWE) << int(OPEN_ENCRYPTED);
    QTest::newRow("OWE beside open") << 0 << int(NM_802_11_AP_SEC_KEY_MGMT_OWE_TM) << int(OPEN);
    QTest::newRow("WEP") << privacy << int(NONE) << int(WEP);
    QTest::newRow("WPA") << privacy << int(PSK) << int(WPA);
    QTest::newRow("WPA2 or WPA3") << privacy << int(PSK | SAE) << int(WPA);
    QTest::newRow("WPA3") << privacy << int(SAE) << int(WPA3);
    QTest::newRow("enterprise") << privacy << int(NM_802_11_AP_SEC_KEY_MGMT_802_1X)
                                << int(ENTERPRISE);
    QTest::newRow("suite B") << privacy << int(NM_802_11_AP_SEC_KEY_MGMT_EAP_SUITE_B_192)
                             << int(ENTERPRISE);
}

void PartsTest::tellsSecurity()
{
    QFETCH(int, flags);
    QFETCH(int, keys);
    const Station station{"a", 50, static_cast<NM80211ApFlags>(flags),
                          static_cast<NM80211ApSecurityFlags>(keys)};
    QTEST(int(securityOf(station)), "security");
}

void PartsTest::joinsNetworks_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("password");
    QTest::addColumn<int>("security");
    QTest::addColumn<bool>("isPossible");
    const QByteArray right = "12345678";
    QTest::newRow("open") << QByteArray("a") << QByteArray() << int(OPEN) << true;
    QTest::newRow("bytes") << QByteArray("\xff\0\n<b>", 6) << right << int(WPA) << true;
    QTest::newRow("longest") << QByteArray(32, 'n') << QByteArray(63, 'p') << int(WPA) << true;
    QTest::newRow("short passphrase") << QByteArray("a") << right.left(7) << int(WPA) << false;
    QTest::newRow("long passphrase") << QByteArray("a") << QByteArray(65, 'p') << int(WPA) << false;
    QTest::newRow("no passphrase") << QByteArray("a") << QByteArray() << int(WPA) << false;
    QTest::newRow("short of WPA3") << QByteArray("a") << QByteArray("p") << int(WPA3) << true;
    QTest::newRow("WEP") << QByteArray("a") << QByteArray("abcde") << int(WEP) << true;
    QTest::newRow("no text") << QByteArray("a") << QByteArray("12345678\xff") << int(WPA) << false;
    QTest::newRow("enterprise") << QByteArray("a") << right << int(ENTERPRISE) << false;
}

void PartsTest::joinsNetworks()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, password);
    QFETCH(int, security);
    const WifiLogin login{name.toStdString(), password.toStdString(),
                          static_cast<Security>(security), false};
    const Object<NMConnection> profile = newProfile(Kind::Wifi, "wlan0");
    const bool isTaken = setNetwork(profile.get(), login);
    QTEST(isTaken, "isPossible");
    if (!isTaken)
        return;
    QCOMPARE(networkName(profile.get()), login.name);
    QCOMPARE(networkPassword(profile.get()), login.password);
    QCOMPARE(securityOf(profile.get()), login.security);
}

void PartsTest::keepsSettings()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("settings.conf"_s);
    Settings settings(path.toStdString());
    QVERIFY(settings.isOn("wlan0") && settings.preferred() == Kind::Ethernet);
    QVERIFY(settings.setOn("wlan0", false) && settings.setPreferred(Kind::Modem));
    QVERIFY(settings.setOn("a;b\n=[c]", false));
    const Settings again(path.toStdString());
    QVERIFY(!again.isOn("wlan0") && !again.isOn("a;b\n=[c]") && again.isOn("a"));
    QVERIFY(again.preferred() == Kind::Modem);

    QFile file(path);
    QVERIFY(file.open(QFile::WriteOnly) && file.write("[network]\npreferred=\xff\noff") > 0);
    file.close();
    Settings broken(path.toStdString());
    QVERIFY(broken.isLost() && broken.isOn("wlan0") && broken.preferred() == Kind::Ethernet);
    broken.learn("eth0", false);
    broken.learn(Kind::Wifi);
    QVERIFY(!broken.isOn("eth0") && broken.preferred() == Kind::Wifi);
    QVERIFY(broken.setOn("eth0", true));
    broken.learn("eth0", false); // of a profile that has not followed yet
    QVERIFY(broken.isOn("eth0"));
    QVERIFY(QFile::remove(path) && QDir().mkdir(path)); // cannot be written
    QVERIFY(!broken.setOn("wlan0", false) && broken.isOn("wlan0"));
}

QTEST_GUILESS_MAIN(PartsTest)
#include "PartsTest.moc"
