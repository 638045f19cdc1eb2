#include "services/network/Apn.h"

#include "services/network/GLib.h"
#include "services/network/Profile.h"

#include <algorithm>

namespace network {
namespace {

constexpr const char *MODE_KEY = "panel-apn.mode";
constexpr const char *NAME_KEY = "panel-apn.name";
constexpr const char *AUTH_KEY = "panel-apn.auth";
constexpr const char *USER_KEY = "panel-apn.user";
constexpr const char *OWN_MODE = "own";
constexpr const char *DEFAULT_MODE = "default";
constexpr const char *KEPT_IDENTITY = "kept"; // a setting 802-1x must have one
constexpr std::size_t MAX_TEXT = 255;
constexpr std::size_t MAX_NAME = 64;
constexpr int RETRIES = 2;

bool isText(const std::string &text)
{
    const auto isControl = [](char c) { return g_ascii_iscntrl(c); };
    return text.size() <= MAX_TEXT && std::none_of(text.begin(), text.end(), isControl) &&
           g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr);
}

bool isAuth(const std::string &auth)
{
    return auth.empty() || auth == "none" || auth == "pap" || auth == "chap";
}

bool isName(const std::string &name)
{
    const auto isAllowed = [](char c) {
        return g_ascii_isalnum(c) || c == '.' || c == '_' || c == '-';
    };
    return name.size() <= MAX_NAME && std::all_of(name.begin(), name.end(), isAllowed);
}

std::string trimmed(const std::string &text)
{
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

bool usesLogin(const Apn &apn)
{
    return apn.own && apn.auth != "none";
}

const char *orNull(const std::string &text)
{
    return text.empty() ? nullptr : text.c_str();
}

// The setting of the profile, made if it has none.
template <typename Setting>
Setting *need(NMConnection *profile, Setting *setting, NMSetting *(*make)())
{
    if (setting != nullptr)
        return setting;
    NMSetting *made = make();
    nm_connection_add_setting(profile, made);
    return reinterpret_cast<Setting *>(made);
}

std::string kept(NMConnection *profile, const char *key)
{
    NMSettingUser *user = userSetting(profile);
    return user == nullptr ? "" : toString(nm_setting_user_get_data(user, key));
}

void keep(NMConnection *profile, const Apn &apn)
{
    NMSettingUser *user = need(profile, userSetting(profile), nm_setting_user_new);
    const auto set = [&](const char *key, const char *value) {
        nm_setting_user_set_data(user, key, value, nullptr);
    };
    set(MODE_KEY, apn.own ? OWN_MODE : DEFAULT_MODE);
    set(NAME_KEY, apn.own ? nullptr : orNull(apn.name));
    set(AUTH_KEY, orNull(apn.auth));
    set(USER_KEY, usesLogin(apn) ? nullptr : orNull(apn.user));
}

void keepPassword(NMConnection *profile, const Apn &apn)
{
    nm_connection_remove_setting(profile, NM_TYPE_SETTING_802_1X);
    if (usesLogin(apn) || apn.password.empty())
        return;
    NMSetting *setting = nm_setting_802_1x_new();
    nm_setting_802_1x_add_eap_method(NM_SETTING_802_1X(setting), "pwd");
    g_object_set(setting, NM_SETTING_802_1X_IDENTITY, KEPT_IDENTITY, NM_SETTING_802_1X_PASSWORD,
                 apn.password.c_str(), nullptr);
    nm_connection_add_setting(profile, setting);
}

void dialWith(NMConnection *profile, const Apn &apn)
{
    auto *gsm = need(profile, nm_connection_get_setting_gsm(profile), nm_setting_gsm_new);
    const bool login = usesLogin(apn);
    // Without a password NetworkManager would ask for one, unless it need not be.
    const NMSettingSecretFlags flags =
        apn.password.empty() ? NM_SETTING_SECRET_FLAG_NOT_REQUIRED : NM_SETTING_SECRET_FLAG_NONE;
    g_object_set(gsm, NM_SETTING_GSM_AUTO_CONFIG, FALSE,                          //
                 NM_SETTING_GSM_APN, apn.own ? orNull(apn.name) : nullptr,        //
                 NM_SETTING_GSM_USERNAME, login ? orNull(apn.user) : nullptr,     //
                 NM_SETTING_GSM_PASSWORD, login ? orNull(apn.password) : nullptr, //
                 NM_SETTING_GSM_PASSWORD_FLAGS, flags, nullptr);
}

void authenticateBy(NMConnection *profile, const std::string &auth)
{
    auto *ppp = need(profile, nm_connection_get_setting_ppp(profile), nm_setting_ppp_new);
    const bool one = auth == "pap" || auth == "chap";
    g_object_set(ppp, NM_SETTING_PPP_REFUSE_PAP, auth == "chap", //
                 NM_SETTING_PPP_REFUSE_CHAP, auth == "pap",      //
                 NM_SETTING_PPP_REFUSE_MSCHAP, one,              //
                 NM_SETTING_PPP_REFUSE_MSCHAPV2, one,            //
                 NM_SETTING_PPP_REFUSE_EAP, one, nullptr);
}

std::string authOf(NMConnection *profile)
{
    NMSettingPpp *ppp = nm_connection_get_setting_ppp(profile);
    if (ppp == nullptr || nm_setting_ppp_get_refuse_pap(ppp) == nm_setting_ppp_get_refuse_chap(ppp))
        return "";
    return nm_setting_ppp_get_refuse_pap(ppp) ? "chap" : "pap";
}

// What is dialled with if there is such a thing, or else what is kept.
std::string either(const char *dialled, const std::string &keptText)
{
    return dialled == nullptr ? keptText : std::string(dialled);
}

std::string keptPassword(NMConnection *profile)
{
    NMSetting8021x *setting = nm_connection_get_setting_802_1x(profile);
    return setting == nullptr ? "" : toString(nm_setting_802_1x_get_password(setting));
}

} // namespace

bool applyApn(NMConnection *profile, const Apn &wanted)
{
    Apn apn = wanted;
    apn.name = trimmed(apn.name);
    const auto texts = {apn.name, apn.user, apn.password};
    if (!isAuth(apn.auth) || !std::all_of(texts.begin(), texts.end(), isText) ||
        (apn.own && !isName(apn.name)))
        return false;
    keep(profile, apn);
    keepPassword(profile, apn);
    dialWith(profile, apn);
    authenticateBy(profile, apn.own ? apn.auth : "");
    if (NMSettingConnection *connection = nm_connection_get_setting_connection(profile))
        g_object_set(connection, NM_SETTING_CONNECTION_AUTOCONNECT_RETRIES, RETRIES, nullptr);
    return true;
}

const char *apnSecretSetting(NMConnection *profile)
{
    if (nm_connection_get_setting_802_1x(profile) != nullptr)
        return NM_SETTING_802_1X_SETTING_NAME;
    NMSettingGsm *gsm = nm_connection_get_setting_gsm(profile);
    const bool none = gsm == nullptr || (nm_setting_gsm_get_password_flags(gsm) &
                                         NM_SETTING_SECRET_FLAG_NOT_REQUIRED) != 0;
    return none ? nullptr : NM_SETTING_GSM_SETTING_NAME;
}

Apn readApn(NMConnection *profile)
{
    NMSettingGsm *gsm = nm_connection_get_setting_gsm(profile);
    if (gsm == nullptr)
        return {};
    const std::string mode = kept(profile, MODE_KEY);
    Apn apn;
    apn.own = mode.empty() ? nm_setting_gsm_get_apn(gsm) != nullptr : mode == OWN_MODE;
    apn.name = either(nm_setting_gsm_get_apn(gsm), kept(profile, NAME_KEY));
    apn.user = either(nm_setting_gsm_get_username(gsm), kept(profile, USER_KEY));
    apn.password = either(nm_setting_gsm_get_password(gsm), keptPassword(profile));
    apn.auth = mode.empty() ? authOf(profile) : kept(profile, AUTH_KEY);
    return apn;
}

} // namespace network
