// Sends a program to an older PLC over an open serial line, frame by frame, each answered before
// the next goes out. docs/decisions/0008-legacy-plc-download.md has the exchange.
#pragma once

#include "platform/serial_line.h"

#include <QByteArray>

#include <chrono>

class LegacyExchange
{
public:
    // `line` is a port that is open and set up; it stays the caller's. An answer may take
    // `patience` longer than its frame is on the line at `baud` bits a second.
    LegacyExchange(int line, int baud, std::chrono::milliseconds patience = std::chrono::seconds(4))
        : m_line(line), m_baud(baud), m_patience(patience)
    {
    }

    // Sends `program`; g_Progress.nPercent follows. Returns 0 once the PLC has confirmed the whole;
    // -25 if it does not answer, -13 if its answers stay wrong, -5 if the line breaks; -16 if it is
    // of another type, -32 if the program is too long for it, -24 if it is locked by a password,
    // -9 if it received something else, -20 if it refuses for another reason; -1 if the calling
    // QThread is asked to end (requestInterruption). An answer is asked for at most three times.
    int send(const QByteArray &program);

private:
    using Clock = std::chrono::steady_clock;

    enum class Outcome { Answered, Silent, Wrong, Broken };
    struct Reply
    {
        Outcome outcome = Outcome::Silent;
        int code = 0;   // of an answer
        int length = 0; // of an answer, in characters
    };

    int sendData(const QByteArray &program);
    int exchange(char function, const QByteArray &data);
    Reply ask(char function, const QByteArray &frame);
    bool transmit(const QByteArray &frame, Clock::time_point deadline) const;
    Reply receive(char function, Clock::time_point deadline);
    Outcome readMore(Clock::time_point deadline);
    bool awaitLine(PLATFORM::PortEvent event, Clock::time_point deadline) const;
    bool isAnswer(char function, const QByteArray &bytes) const;

    const int m_line;
    const int m_baud;
    const std::chrono::milliseconds m_patience;
    char m_number = 0; // of the frame, wraps
    bool m_isFirst = true;
    QByteArray m_received;
};
