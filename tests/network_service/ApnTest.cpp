// The operator's access point settings in a NetworkManager profile.
// Qt's "signals" is a field of GLib's.
#define QT_NO_KEYWORDS
#include "services/network/Apn.h"

#include "services/network/GLib.h"
#include "tests/support/Text.h"

#include <QtTest>

using namespace network;
using Profile = Object<NMConnection>;

namespace {

Profile newProfile()
{
    Profile profile(nm_simple_connection_new());
    NMSetting *connection = nm_setting_connection_new();
    g_object_set(connection, NM_SETTING_CONNECTION_ID, "panel-wwan0", NM_SETTING_CONNECTION_UUID,
                 "12ae7bfb-4a51-4c2c-9b7e-5d3ad4a2e9ab", NM_SETTING_CONNECTION_TYPE,
                 NM_SETTING_GSM_SETTING_NAME, nullptr);
    nm_connection_add_setting(profile.get(), connection);
    return profile;
}

QByteArray toText(const Apn &apn)
{
    const auto bytes = [](const std::string &text) { return QByteArray::fromStdString(text); };
    return bytes(apn.name) + '|' + bytes(apn.auth) + '|' + bytes(apn.user) + '|' +
           bytes(apn.password) + '|' + (apn.own ? "own" : "default");
}

Apn fromText(const QByteArray &text)
{
    const auto parts = text.split('|');
    const auto part = [&](int at) { return parts[at].toStdString(); };
    return {part(0), part(1), part(2), part(3), parts[4] == "own"};
}

// As NetworkManager dials: name, user, password and what PPP refuses.
QByteArray dialled(NMConnection *profile)
{
    NMSettingGsm *gsm = nm_connection_get_setting_gsm(profile);
    NMSettingPpp *ppp = nm_connection_get_setting_ppp(profile);
    const auto text = [](const char *value) { return QByteArray(value == nullptr ? "-" : value); };
    return text(nm_setting_gsm_get_apn(gsm)) + '|' + text(nm_setting_gsm_get_username(gsm)) + '|' +
           text(nm_setting_gsm_get_password(gsm)) + '|' +
           (nm_setting_ppp_get_refuse_pap(ppp) ? "p" : "") +
           (nm_setting_ppp_get_refuse_chap(ppp) ? "c" : "") +
           (nm_setting_ppp_get_refuse_mschap(ppp) ? "m" : "") +
           (nm_setting_ppp_get_refuse_mschapv2(ppp) ? "2" : "") +
           (nm_setting_ppp_get_refuse_eap(ppp) ? "e" : "");
}

const QByteArray LONGEST = QByteArray(64, 'x') + "|pap|u|p|own";

} // namespace

class ApnTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void whatIsTypedIsDialledOrKept_data()
    {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QByteArray>("dials");
        QTest::newRow("pap") << QByteArray("m2m.net|pap|u|p|own") << QByteArray("m2m.net|u|p|cm2e");
        QTest::newRow("chap") << QByteArray("m2m.net|chap|u|p|own")
                              << QByteArray("m2m.net|u|p|pm2e");
        QTest::newRow("any") << QByteArray("m2m.net||u|p|own") << QByteArray("m2m.net|u|p|");
        QTest::newRow("none") << QByteArray("m2m.net|none|u|p|own") << QByteArray("m2m.net|-|-|");
        QTest::newRow("default") << QByteArray("m2m.net|pap|u|p|default") << QByteArray("-|-|-|");
        QTest::newRow("kept, not fit") << QByteArray("m2m net|||p|default") << QByteArray("-|-|-|");
        QTest::newRow("no name") << QByteArray("|pap|u|p|own") << QByteArray("-|u|p|cm2e");
        QTest::newRow("no texts") << QByteArray("||||default") << QByteArray("-|-|-|");
        QTest::newRow("no user") << QByteArray("a|chap||p|own") << QByteArray("a|-|p|pm2e");
        QTest::newRow("blanks, UTF-8")
            << QByteArray("a|pap| ü u|p \"|own") << QByteArray("a| ü u|p \"|cm2e");
        QTest::newRow("longest") << LONGEST << QByteArray(64, 'x') + "|u|p|cm2e";
    }
    // Over a D-Bus of the services', without secrets but those that are asked for.
    void whatIsTypedIsDialledOrKept()
    {
        QFETCH(QByteArray, typed);
        const Profile profile = newProfile();
        for (const char *before : {"old|chap|me|secret|own", "old|pap|me|secret|default"})
            QVERIFY(applyApn(profile.get(), fromText(before)));
        QVERIFY(applyApn(profile.get(), fromText(typed)));
        QVERIFY(nm_connection_verify(profile.get(), nullptr));
        QTEST(dialled(profile.get()), "dials");

        const auto sent = [&](NMConnectionSerializationFlags flags) {
            return Variant(g_variant_ref_sink(nm_connection_to_dbus(profile.get(), flags)));
        };
        const auto open = sent(NM_CONNECTION_SERIALIZE_WITH_NON_SECRET);
        const auto secrets = sent(NM_CONNECTION_SERIALIZE_WITH_SECRETS);
        const Profile read(nm_simple_connection_new_from_dbus(open.get(), nullptr));
        QVERIFY(read);
        QCOMPARE(QByteArray::fromStdString(readApn(read.get()).password), QByteArray());
        nm_connection_update_secrets(read.get(), apnSecretSetting(read.get()), secrets.get(),
                                     nullptr);
        QCOMPARE(toText(readApn(read.get())), typed);
    }

    void aProfileOfAnotherOriginIsRead()
    {
        const Profile profile = newProfile();
        QCOMPARE(toText(readApn(profile.get())), QByteArray("||||default"));
        QVERIFY(applyApn(profile.get(), fromText("m2m.net|pap|u|p|own")));
        nm_connection_remove_setting(profile.get(), NM_TYPE_SETTING_USER);
        QCOMPARE(toText(readApn(profile.get())), QByteArray("m2m.net|pap|u|p|own"));
    }

    void whatNetworkManagerWouldRefuseChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("typed");
        for (const char *typed :
             {"a b|pap|u|p|own", "a/b|pap|u|p|own", "\xc3\xa9|pap|u|p|own", "a|eap|u|p|own",
              "a|PAP|u|p|default", "a\n|pap|u|p|own", "a|pap|u\x7f|p|own", "a|pap|u|p\r|default",
              "a|pap|\xff|p|own", "a|pap|u|\xc3|default"})
            QTest::newRow(QByteArray(typed).toPercentEncoding(" |/")) << QByteArray(typed);
        QTest::newRow("65 characters") << 'x' + LONGEST;
        QTest::newRow("a long user") << "a|pap|" + QByteArray(256, 'u') + "|p|own";
        QTest::newRow("NUL") << QByteArray("a|pap|u\0u|p|own", 15);
    }
    void whatNetworkManagerWouldRefuseChangesNothing()
    {
        QFETCH(QByteArray, typed);
        const Profile profile = newProfile();
        QVERIFY(applyApn(profile.get(), fromText("m2m.net|pap|u|p|own")));
        QVERIFY(!applyApn(profile.get(), fromText(typed)));
        QCOMPARE(toText(readApn(profile.get())), QByteArray("m2m.net|pap|u|p|own"));
    }

    void blanksAroundTheNameAreCutOff()
    {
        const Profile profile = newProfile();
        QVERIFY(applyApn(profile.get(), fromText(" m2m.net |none|||own")));
        QCOMPARE(toText(readApn(profile.get())), QByteArray("m2m.net|none|||own"));
    }
};

QTEST_GUILESS_MAIN(ApnTest)
#include "ApnTest.moc"
