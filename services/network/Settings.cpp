#include "services/network/Settings.h"

#include "services/network/GLib.h"

#include <utility>

namespace network {
namespace {

constexpr const char *GROUP = "network";
constexpr const char *PREFERRED = "preferred";
constexpr const char *OFF = "off";

struct KeyFileDeleter
{
    void operator()(GKeyFile *file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

} // namespace

const char *nameOf(Kind kind)
{
    switch (kind) {
    case Kind::Ethernet:
        return "ETH";
    case Kind::Wifi:
        return "WIFI";
    case Kind::Modem:
        return "4G";
    }
    return "";
}

bool kindOf(const std::string &name, Kind &kind)
{
    for (const Kind each : KINDS) {
        if (name == nameOf(each)) {
            kind = each;
            return true;
        }
    }
    return false;
}

std::string keyOf(Kind kind, const std::string &device)
{
    return kind == Kind::Modem ? "modem" : device;
}

Settings::Settings(std::string path) : m_path(std::move(path))
{
    read();
}

void Settings::read()
{
    const KeyFile file(g_key_file_new());
    Error error;
    if (!g_key_file_load_from_file(file.get(), m_path.c_str(), G_KEY_FILE_NONE, &error)) {
        m_isLost = !error.is(G_FILE_ERROR, G_FILE_ERROR_NOENT);
        if (m_isLost)
            service::warn(m_path + " is not read: " + error.text());
        return;
    }
    const std::unique_ptr<char, decltype(&g_free)> preferred(
        g_key_file_get_string(file.get(), GROUP, PREFERRED, nullptr), g_free);
    if (preferred && !kindOf(preferred.get(), m_preferred))
        service::warn(m_path + ": the preferred kind is none");
    const std::unique_ptr<char *, decltype(&g_strfreev)> off(
        g_key_file_get_string_list(file.get(), GROUP, OFF, nullptr, nullptr), g_strfreev);
    for (char **name = off.get(); name != nullptr && *name != nullptr; ++name)
        m_off.insert(*name);
}

bool Settings::write() const
{
    const KeyFile file(g_key_file_new());
    g_key_file_set_string(file.get(), GROUP, PREFERRED, nameOf(m_preferred));
    std::vector<const char *> off;
    off.reserve(m_off.size());
    for (const std::string &name : m_off)
        off.push_back(name.c_str());
    g_key_file_set_string_list(file.get(), GROUP, OFF, off.data(), off.size());
    gsize size = 0;
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_key_file_to_data(file.get(), &size, nullptr), g_free);
    const auto flags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                          G_FILE_SET_CONTENTS_DURABLE);
    Error error;
    if (g_file_set_contents_full(m_path.c_str(), text.get(), static_cast<gssize>(size), flags, 0600,
                                 &error))
        return true;
    service::warn(m_path + " is not written: " + error.text());
    return false;
}

void Settings::learn(const std::string &device, bool on)
{
    if (m_known.insert(device).second && !on)
        m_off.insert(device);
}

void Settings::learn(Kind preferred)
{
    if (!std::exchange(m_isPreferenceKnown, true))
        m_preferred = preferred;
}

bool Settings::setPreferred(Kind kind)
{
    // The program writes back at its start what it has read.
    m_isPreferenceKnown = m_isPreferenceKnown || kind != m_preferred;
    return keep(kind, m_off);
}

bool Settings::setOn(const std::string &device, bool on)
{
    m_known.insert(device);
    std::set<std::string> off = m_off;
    if (on)
        off.erase(device);
    else
        off.insert(device);
    return keep(m_preferred, std::move(off));
}

bool Settings::keep(Kind preferred, std::set<std::string> off)
{
    if (preferred == m_preferred && off == m_off)
        return true;
    std::swap(m_preferred, preferred);
    m_off.swap(off);
    if (write())
        return true;
    m_preferred = preferred;
    m_off.swap(off);
    return false;
}

} // namespace network
