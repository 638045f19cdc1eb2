// The control runtime's words.
#include "platform/cos_time.h"
#include "platform/runtime.h"
#include "platform/sim/Panel.h"

#include <ctime>

using sim::Json;
using sim::panel;

namespace {

constexpr int FAILED = -1;
constexpr unsigned int CLOCK_ADDRESS = 28;
constexpr int CLOCK_WORDS = 6;

std::string key(unsigned int address, int offset)
{
    return std::to_string(address + static_cast<unsigned int>(offset));
}

// Year, month, day, hour, minute, second, in the process's time zone. The clock is only ever
// written whole.
int writeClock(Json &state, const unsigned short *words)
{
    if (state["clock"]["allowSet"] == 0)
        return FAILED;
    const COS::SYS_TIME_T time{words[0], words[1], words[2], words[3], words[4], words[5]};
    const auto stamp = COS::CosTime::TimeToTimeStamp(time);
    if (stamp == -1)
        return FAILED;
    panel().keep(state["clock"]["offset"], stamp - static_cast<std::int64_t>(std::time(nullptr)));
    state["clock"]["written"] = Json(std::vector<unsigned short>(words, words + CLOCK_WORDS));
    return 0;
}

bool allKnown(const Json &words, unsigned int address, int count)
{
    for (int i = 0; i < count; ++i)
        if (!words.contains(key(address, i)))
            return false;
    return true;
}

int readWords(const Json &known, unsigned int address, unsigned short *words, int count)
{
    std::vector<unsigned short> read;
    for (int i = 0; i < count; ++i) {
        const auto word = known.find(key(address, i));
        if (word == known.end() || word->is_null())
            return FAILED;
        read.push_back(word->get<unsigned short>());
    }
    std::copy(read.begin(), read.end(), words);
    return 0;
}

} // namespace

int backstage_AddrRead(unsigned int address, unsigned short *words, int count)
{
    return panel().call("backstage.AddrRead", Json::array({address, count}), [&](Json &state) {
        if (words == nullptr || count < 1)
            return FAILED;
        return readWords(state["words"], address, words, count);
    });
}

int backstage_AddrWrite(unsigned int address, const unsigned short *words, int count)
{
    Json values = Json::array();
    for (int i = 0; words != nullptr && i < count; ++i)
        values.push_back(words[i]);
    return panel().call("backstage.AddrWrite", Json::array({address, values, count}),
                        [&](Json &state) {
                            if (values.empty())
                                return FAILED;
                            if (address == CLOCK_ADDRESS && count == CLOCK_WORDS)
                                return writeClock(state, words);
                            if (!allKnown(state["words"], address, count))
                                return FAILED;
                            for (int i = 0; i < count; ++i)
                                panel().keep(state["words"][key(address, i)], words[i]);
                            return 0;
                        });
}

int backstage_AllowSetTime()
{
    return panel().call("backstage.AllowSetTime", Json(),
                        [](Json &state) { return state["clock"]["allowSet"].get<int>(); });
}
