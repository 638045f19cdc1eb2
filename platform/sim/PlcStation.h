#pragma once

#include "platform/sim/Json.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace sim {

// An older PLC at the end of a serial line: takes a program in frames, checks it and keeps it as
// plc/program.bin in the panel's folder. docs/decisions/0008-legacy-plc-download.md has the frames.
// plc.line in the state says how it misbehaves. One thread; locks the panel.
class PlcStation
{
public:
    struct Answer
    {
        std::string text;
        std::chrono::milliseconds delay; // before it is sent
    };

    // Takes the bytes that arrive next, and returns its answers to the frames that they complete.
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
    std::uint32_t m_length = 0; // of the whole program
    bool m_hasBegun = false;
    unsigned char m_number = 0; // of the last frame
    unsigned char m_code = 0;   // of the answer to it
};

} // namespace sim
