// The operator's access point settings in a NetworkManager profile.
#define QT_NO_KEYWORDS // GLib has a field named "signals"
#include "services/network/Apn.h"

#include "services/network/GLib.h"

#include <QtTest>

using namespace network;
using Profile = Object<NMConnection>;

namespace {

Profile newProfile()
{
    Profile profile(nm_simple_connection_new());
    NMSetting *connection = nm_setting_connection_new();
    g_object_set(connection, "id", "panel-wwan0", "uuid", "12ae7bfb-4a51-4c2c-9b7e-5d3ad4a2e9ab",
                 "type", "gsm", nullptr);
    nm_connection_add_setting(profile.get(), connection);
    return profile;
}

QByteArray toText(const Apn &apn)
{
    const std::string texts = apn.name + '|' + apn.auth + '|' + apn.user + '|' + apn.password;
    return QByteArray::fromStdString(texts + (apn.own ? "|own" : "|default"));
}

bool enter(const Profile &profile, const QByteArray &typed)
{
    const auto parts = typed.split('|');
    const auto part = [&](int at) { return parts[at].toStdString(); };
    return applyApn(profile.get(), {part(0), part(1), part(2), part(3), parts[4] == "own"});
}

// Name, user, password, and what PPP refuses.
QByteArray dialled(const Profile &profile)
{
    NMSettingGsm *gsm = nm_connection_get_setting_gsm(profile.get());
    NMSettingPpp *ppp = nm_connection_get_setting_ppp(profile.get());
    const auto text = [](const char *value) { return QByteArray(value == nullptr ? "-" : value); };
    return text(nm_setting_gsm_get_apn(gsm)) + '|' + text(nm_setting_gsm_get_username(gsm)) + '|' +
           text(nm_setting_gsm_get_password(gsm)) +
           (nm_setting_ppp_get_refuse_pap(ppp) ? "|pap" : "") +
           (nm_setting_ppp_get_refuse_chap(ppp) ? "|chap" : "") +
           (nm_setting_ppp_get_refuse_mschapv2(ppp) && nm_setting_ppp_get_refuse_eap(ppp) ? "+"
                                                                                          : "");
}

} // namespace

class ApnTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void whatIsTypedIsDialledOrKept_data()
    {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QByteArray>("dials");
        const auto row = [](const char *typed, const char *dials) {
            QTest::newRow(typed) << QByteArray(typed) << QByteArray(dials);
        };
        row("m2m.net|pap|u|p|own", "m2m.net|u|p|chap+");
        row("m2m.net|chap|u|p|own", "m2m.net|u|p|pap+");
        row("m2m.net||u|p|own", "m2m.net|u|p");
        row("m2m.net|none|u|p|own", "m2m.net|-|-");
        row("m2m net|pap|u|p|default", "-|-|-");
        row("||||default", "-|-|-");
        row("|pap|u|p|own", "-|u|p|chap+");
        row("a|chap|u||own", "a|u|-|pap+");
        row("a|pap| \u00fc u|p \"|own", "a| \u00fc u|p \"|chap+");
        const QByteArray longest(64, 'x');
        row(longest + "|pap|u|p|own", longest + "|u|p|chap+");
    }
    // Read as NetworkManager hands a profile out: without secrets but those that are asked for.
    void whatIsTypedIsDialledOrKept()
    {
        QFETCH(QByteArray, typed);
        const Profile profile = newProfile();
        for (const char *text :
             {"old|chap|me|secret|own", "old|pap|me|secret|default", typed.constData()})
            QVERIFY(enter(profile, text));
        QVERIFY(nm_connection_verify(profile.get(), nullptr));
        QTEST(dialled(profile), "dials");
        const auto sent = [&](NMConnectionSerializationFlags flags) {
            return Variant(g_variant_ref_sink(nm_connection_to_dbus(profile.get(), flags)));
        };
        const auto open = sent(NM_CONNECTION_SERIALIZE_WITH_NON_SECRET);
        const auto secrets = sent(NM_CONNECTION_SERIALIZE_WITH_SECRETS);
        const Profile read(nm_simple_connection_new_from_dbus(open.get(), nullptr));
        QVERIFY(readApn(read.get()).password.empty());
        if (const char *setting = apnSecretSetting(read.get()))
            nm_connection_update_secrets(read.get(), setting, secrets.get(), nullptr);
        QCOMPARE(toText(readApn(read.get())), typed);
    }

    void aProfileOfAnotherOriginIsRead()
    {
        const Profile profile = newProfile();
        QCOMPARE(toText(readApn(profile.get())), QByteArray("||||default"));
        QVERIFY(enter(profile, " m2m.net |pap|u|p|own"));
        nm_connection_remove_setting(profile.get(), NM_TYPE_SETTING_USER);
        QCOMPARE(toText(readApn(profile.get())), QByteArray("m2m.net|pap|u|p|own"));
    }

    void whatNetworkManagerWouldRefuseChangesNothing()
    {
        const Profile profile = newProfile();
        QVERIFY(enter(profile, "m2m.net|pap|u|p|own"));
        for (const QByteArray &typed :
             {QByteArray("a b|pap|u|p|own"), QByteArray("a/b|pap|u|p|own"),
              QByteArray("\xc3\xa9|pap|u|p|own"), QByteArray("a|eap|u|p|own"),
              QByteArray("a|pap|u\x7f|p|own"), QByteArray("a|pap|u|p\r|default"),
              QByteArray("a|pap|\xff|p|own"), QByteArray("a|pap|u\0u|p|own", 15),
              QByteArray(65, 'x') + "|pap|u|p|own", "a|pap|" + QByteArray(256, 'u') + "|p|own"})
            QVERIFY2(!enter(profile, typed), typed);
        QCOMPARE(toText(readApn(profile.get())), QByteArray("m2m.net|pap|u|p|own"));
    }
};

QTEST_GUILESS_MAIN(ApnTest)
#include "ApnTest.moc"
