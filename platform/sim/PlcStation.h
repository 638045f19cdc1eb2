#pragma once

#include "platform/sim/Json.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace sim {

// An older PLC at the end of a serial line: takes a program in frames, checks it and keeps it as
// plc/program.bin in the panel's folder. docs/decisions/0008-legacy-plc-download.md has the frames.
// What it does wrong stands in the state under plc.line. One thread; locks the panel.
class PlcStation
{
public:
    struct Answer
    {
        std::string text;
        std::chrono::milliseconds delay; // to send it after
    };

    // What it answers, if anything, once `bytes` have arrived behind those before.
    std::vector<Answer> take(const std::string &bytes);

private:
    using Bytes = std::vector<unsigned char>;

    void takeFrame(const std::string &text, std::vector<Answer> &answers);
    unsigned char process(const Bytes &frame, int refuse);
    unsigned char begin(const Bytes &data, int refuse);
    unsigned char append(const Bytes &data);
    unsigned char finish(const Bytes &data, int refuse) const;

    std::string m_line; // received since the last line end
    Bytes m_program;
    std::uint32_t m_length = 0; // that the program is to have
    bool m_hasBegun = false;
    unsigned char m_number = 0; // of the last frame, and what it was answered with
    unsigned char m_code = 0;
};

} // namespace sim
