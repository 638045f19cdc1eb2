#include "platform/sim/Scenario.h"

#include "platform/sim/Root.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace sim {
namespace {

std::string scenarioFile(const std::string &name)
{
    if (name.find('/') != std::string::npos)
        return name;
    const std::string folder = environment("SYSSET_SCENARIO_DIR");
    return (folder.empty() ? SYSSET_SCENARIO_DIR : folder) + "/" + name + ".json";
}

} // namespace

Json loadScenario(const std::string &name)
{
    const std::string file = scenarioFile(name);
    std::error_code unknown;
    std::ifstream stream;
    if (std::filesystem::is_regular_file(file, unknown))
        stream.open(file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || !stream)
        throw BadRequest("cannot read the scenario " + file);
    try {
        return parseJson(text);
    } catch (const BadRequest &error) {
        throw BadRequest("the scenario " + file + ": " + error.what());
    }
}

} // namespace sim
