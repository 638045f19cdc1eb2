// What the panel's maker says about the panel: /etc/sysset/panel.conf. The file itself documents
// its keys.
#pragma once

#include <array>
#include <string>

namespace board {

constexpr std::size_t TONES = 5;

// The values of the file, each with what holds where the file is silent. An empty text says that
// the board is to be asked.
struct PanelConf
{
    // [display]
    int width = 0; // 0: none is named
    int height = 0;
    std::string backlight; // a name in /sys/class/backlight
    // [buzzer], in hertz, from tone 1 to tone 5
    std::array<int, TONES> tones{1000, 1500, 2000, 2700, 4000};
    // [machine]
    std::string model;
    std::string board;
    std::string serial;
    std::string mac;
    std::string product;
    std::string deviceId;
    bool remote = false;
    // [restart]
    bool hardwareReset = false;
    // [words]
    int wordsPort = 1502;
};

// Reads the file's text. What is wrong in it is skipped; `fault` then says what is wrong first and
// how much more there is, and is empty if the file is sound.
PanelConf parsePanelConf(const std::string &text, std::string &fault);

// The file of this panel, read at the first call; a missing or a broken one is told to the journal
// once. Any thread.
const PanelConf &panelConf();

} // namespace board
