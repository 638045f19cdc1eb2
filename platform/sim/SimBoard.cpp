// PLATFORM and the board's free functions.
#include "platform/board.h"
#include "platform/sim/MachineText.h"
#include "platform/sim/Panel.h"

using sim::Json;
using sim::panel;

namespace {

constexpr int FAILED = -1;
constexpr int BITS_PER_PIXEL = 32;

void add(Json &number, int change)
{
    number = number.get<int>() + change;
}

void playTone(Json &state, const Json &milliseconds)
{
    sim::appendLatest(state["buzzer"]["beeps"], milliseconds);
}

bool isTone(int tone)
{
    return tone >= 1 && tone <= 5;
}
bool isClickLength(int milliseconds)
{
    return milliseconds <= 1000;
}

int setBuzzer(const char *op, const char *field, int value, bool valid)
{
    return panel().call(op, Json::array({value}), [&](Json &state) {
        if (!valid)
            return FAILED;
        panel().keep(state["buzzer"][field], value);
        return 0;
    });
}

} // namespace

namespace PLATFORM {

int CPlatLcd::open()
{
    return panel().call("PLATFORM.CPlatLcd.open", Json(), [](Json &) { return 0; });
}

int CPlatLcd::getResolution(int &width, int &height, int &depth)
{
    return panel().call("PLATFORM.CPlatLcd.getResolution", Json(), [&](Json &state) {
        width = state["lcd"]["width"].get<int>();
        height = state["lcd"]["height"].get<int>();
        depth = BITS_PER_PIXEL;
        return 0;
    });
}

int CPlatLcd::setBrightness(int percent)
{
    return panel().call("PLATFORM.CPlatLcd.setBrightness", Json::array({percent}),
                        [&](Json &state) {
                            if (percent < 1 || percent > 100)
                                return FAILED;
                            panel().keep(state["lcd"]["brightness"], percent);
                            return 0;
                        });
}

int CPlatBuzzer::open()
{
    return panel().call("PLATFORM.CPlatBuzzer.open", Json(), [](Json &state) {
        Json &buzzer = state["buzzer"];
        add(buzzer["opens"], 1);
        if (buzzer["enabled"] == 1)
            add(buzzer["waiting"], 1);
        return 0;
    });
}

int CPlatBuzzer::init(int enabled, unsigned short pwmType, unsigned short beepTime)
{
    return panel().call("PLATFORM.CPlatBuzzer.init", Json::array({enabled, pwmType, beepTime}),
                        [&](Json &state) {
                            if (!isTone(pwmType) || !isClickLength(beepTime))
                                return FAILED;
                            Json &buzzer = state["buzzer"];
                            panel().keep(buzzer["enabled"], enabled != 0 ? 1 : 0);
                            panel().keep(buzzer["tone"], pwmType);
                            panel().keep(buzzer["time"], beepTime);
                            return 0;
                        });
}

int CPlatBuzzer::setEnable(int enabled)
{
    return setBuzzer("PLATFORM.CPlatBuzzer.setEnable", "enabled", enabled != 0 ? 1 : 0, true);
}

int CPlatBuzzer::getEnable()
{
    return panel().call("PLATFORM.CPlatBuzzer.getEnable", Json(),
                        [](Json &state) { return state["buzzer"]["enabled"].get<int>(); });
}

int CPlatBuzzer::setBeepTime(unsigned short milliseconds)
{
    return setBuzzer("PLATFORM.CPlatBuzzer.setBeepTime", "time", milliseconds,
                     isClickLength(milliseconds));
}

int CPlatBuzzer::setPwmType(unsigned short tone)
{
    return setBuzzer("PLATFORM.CPlatBuzzer.setPwmType", "tone", tone, isTone(tone));
}

int CPlatBuzzer::runBeep()
{
    return panel().call("PLATFORM.CPlatBuzzer.runBeep", Json(), [](Json &state) {
        Json &waiting = state["buzzer"]["waiting"];
        if (waiting == 0)
            return 0;
        add(waiting, -1);
        playTone(state, state["buzzer"]["time"]);
        return 0;
    });
}

int CPlatCpu::enableReboot()
{
    return panel().call("PLATFORM.CPlatCpu.enableReboot", Json(),
                        [](Json &state) { return state["machine"]["hardwareReset"].get<int>(); });
}

int CPlatCpu::getCpuId(std::string &id)
{
    return sim::readMachineText("PLATFORM.CPlatCpu.getCpuId", "cpuId", 0, FAILED, id);
}

int CPlatBoard::getKVxxx(std::string &model)
{
    return sim::readMachineText("PLATFORM.CPlatBoard.getKVxxx", "boardModel", 0, FAILED, model);
}

int CPlatMedia::addDev(const std::vector<DEV_TYPE_T> &types, const MediaCallbacks &callbacks,
                       void *context)
{
    return panel().call("PLATFORM.CPlatMedia.addDev", Json::array({Json(types)}), [&](Json &) {
        panel().media().addDev(types, callbacks, context);
        return 0;
    });
}

} // namespace PLATFORM

int Beep(int milliseconds)
{
    return panel().call("Beep", Json::array({milliseconds}), [&](Json &state) {
        if (milliseconds < 0)
            return FAILED;
        playTone(state, milliseconds);
        return 0;
    });
}

int my_reboot(int hardware)
{
    return panel().call("my_reboot", Json::array({hardware}), [&](Json &state) {
        state["reboots"].push_back(hardware);
        return 0;
    });
}

int remountPartion(int mode, const std::string &partition)
{
    return panel().call("remountPartion", Json::array({mode, partition}), [&](Json &state) {
        if (mode != 0 && mode != 1)
            return FAILED;
        state["partition"]["remounts"].push_back(mode);
        if (partition.empty())
            state["partition"]["writable"] = mode == 1;
        return 0;
    });
}
