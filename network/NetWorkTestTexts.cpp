#include "network/NetWorkTestTexts.h"

#include "platform/paths.h"

#include <cjson/cJSON.h>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace {

constexpr const char *FOLDER = "/mnt/tarni/app/hmiapp/bin/";
constexpr std::array FILES = {"NetWorkTest/NetWorkTest_ch.json", "NetWorkTest/NetWorkTest_en.json"};
constexpr std::size_t MAX_BYTES = 1 << 20;
constexpr int MAX_TEXT = 500;   // characters; a longer one is no advice, and slow to lay out
constexpr int LAST_NUMBER = 31; // the file format's; has no key

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

struct DeleteJson
{
    void operator()(cJSON *json) const { cJSON_Delete(json); }
};

// The file's bytes; empty if it cannot be read or is too long.
std::string readFile(const std::string &path)
{
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(path, unknown)) // opening a pipe would wait
        return {};
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rbe"));
    if (file == nullptr)
        return {};
    std::string bytes(MAX_BYTES + 1, '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    const bool whole = std::ferror(file.get()) == 0 && bytes.size() <= MAX_BYTES;
    return whole ? bytes : std::string();
}

QString textOf(const cJSON *object, const char *field)
{
    const cJSON *value = cJSON_GetObjectItem(object, field);
    return cJSON_IsString(value) ? QString::fromUtf8(value->valuestring).left(MAX_TEXT) : QString();
}

std::optional<NetWorkTestText> readItem(const cJSON *file, const char *key)
{
    const cJSON *object = cJSON_GetObjectItem(file, key);
    if (!cJSON_IsObject(object))
        return std::nullopt;
    return NetWorkTestText{textOf(object, "ItemString"), textOf(object, "success"),
                           textOf(object, "failure"), textOf(object, "Solution")};
}

} // namespace

bool NetWorkTestTexts::load(int language)
{
    m_bLoaded = false;
    m_texts.fill(std::nullopt);
    if (language < 0 || language >= static_cast<int>(FILES.size()))
        return false;
    const std::string path = FOLDER + std::string(FILES[static_cast<std::size_t>(language)]);
    const std::unique_ptr<cJSON, DeleteJson> json(cJSON_Parse(readFile(panelPath(path)).c_str()));
    if (!cJSON_IsObject(json.get()))
        return false;
    for (std::size_t i = 0; i < m_texts.size(); ++i)
        m_texts[i] = readItem(json.get(), NETWORK_TEST_KEYS[i]);
    m_bLoaded = true;
    return true;
}

int NetWorkTestTexts::find(int item, NetWorkTestText &text) const
{
    if (!m_bLoaded)
        return LOOKUP_NO_FILE;
    if (item > LAST_NUMBER)
        return LOOKUP_TOO_LARGE;
    if (item < 0 || item >= NETWORK_TEST_KEY_COUNT)
        return LOOKUP_NO_KEY;
    const auto &found = m_texts[static_cast<std::size_t>(item)];
    if (!found)
        return LOOKUP_NO_OBJECT;
    text = *found;
    return 0;
}
