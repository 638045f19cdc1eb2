#include "platform/sim/KeptSettings.h"

#include "platform/sim/Root.h"
#include "platform/sim/StateDefaults.h"
#include "platform/sim/StateTree.h"
#include "platform/sim/WholeFile.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace sim {
namespace {

constexpr int VERSION = 1;
constexpr std::chrono::milliseconds WRITE_DELAY(20); // one write takes all changes within it

Json fieldsOf(const Json &record, std::initializer_list<const char *> names)
{
    Json part = Json::object();
    for (const char *name : names)
        part[name] = record.at(name);
    return part;
}

Json parsed(const std::string &text)
{
    Json kept = parseJson(text);
    if (!kept.is_object() || kept.value("version", Json()) != VERSION)
        throw BadRequest("it is not of version " + std::to_string(VERSION));
    kept.erase("version");
    Json state = defaultState();
    overlay(state, kept); // throws if it does not fit
    Json part = keptPart(state);
    if (part.size() != kept.size())
        throw BadRequest("it holds more than settings");
    return part;
}

} // namespace

std::string keptFile()
{
    return runFolder() + "/kept.json";
}

Json keptPart(const Json &state)
{
    Json words = Json::object();
    for (const auto &[address, word] : state.at("words").items()) {
        if (!word.is_null())
            words[address] = word;
    }
    return {{"words", words},
            {"lcd", fieldsOf(state.at("lcd"), {"brightness"})},
            {"buzzer", fieldsOf(state.at("buzzer"), {"enabled", "tone", "time"})},
            {"clock", fieldsOf(state.at("clock"), {"offset"})}};
}

Json loadKept(const std::string &file)
{
    std::error_code unknown;
    if (!std::filesystem::exists(file, unknown))
        return Json::object();
    try {
        if (!std::filesystem::is_regular_file(file, unknown))
            throw BadRequest("it is no file");
        std::ifstream stream(file);
        return parsed({std::istreambuf_iterator<char>(stream), {}});
    } catch (const BadRequest &error) {
        std::cerr << "sysset-sim: the kept settings " << file << " are ignored: " << error.what()
                  << "\n";
        return Json::object();
    }
}

void KeptSettings::start(std::string file, std::function<Json()> state)
{
    m_file = std::move(file);
    m_state = std::move(state);
}

void KeptSettings::changed()
{
    if (m_state && !m_unwritten.exchange(true))
        m_thread.post(WRITE_DELAY, [this] { write(); });
}

void KeptSettings::stop(std::chrono::milliseconds timeout)
{
    m_thread.stop(timeout);
    if (m_unwritten)
        write();
}

void KeptSettings::write()
{
    const std::lock_guard lock(m_writing);
    m_unwritten = false; // before the state is read: a later change needs another write
    Json kept = keptPart(m_state());
    kept["version"] = VERSION;
    if (!writeWholeFile(m_file, kept.dump(2) + '\n'))
        std::cerr << "sysset-sim: cannot write " << m_file << "\n";
}

} // namespace sim
