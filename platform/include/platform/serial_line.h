// The panel's serial ports, as the download of older PLC programs uses them: a terminal each
// (termios(3)). All functions: any thread, one port at a time. Failures are told on standard error
// where it is said, as lines of the form "{function} Err:what\tErrStr:reason.".
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace PLATFORM {

struct SerialSettings
{
    int port = 0;     // 0 or 1
    int mode = 0;     // 0 RS-232, 1 RS-422, 2 RS-485; the second port has no RS-422
    int baud = 0;     // bits a second: 115200, 38400, 19200, 9600, 4800, 2400, 1200 or 300
    int dataBits = 0; // 7 or 8
    int stopBits = 0; // 0 is one stop bit, 2 is two
    int parity = 0;   // 0 'N' 'n' none, 1 'O' 'o' odd, 2 'E' 'e' even, 'S' 's' space (none is sent)
};

// Opens the port of that name ("RS232_1", "RS422_1", "RS485_1", "RS232_2", "RS485_2") for reading
// and writing; it does not become the controlling terminal. RS-422 and RS-485 of the first port
// share a node, whose driver is told which of them it is.
// Returns its descriptor, for closePort(); -1 if there is no such port or it cannot be opened or
// switched, told on standard error.
int openDev(const std::string &portName);

// Sets both directions of the open port `fd` to `baud`, and drops what waits in its queues.
// Returns 0; -1 if it is none of the eight rates above or the port refuses.
int setSpeed(int fd, int baud);

// Sets the framing of the open port `fd`, values as in SerialSettings, and makes it raw; a read
// that blocks returns after at most 4 seconds. Drops what waits to be read.
// Returns 0; -1 if a value is none of those above or the port refuses; a refusal to apply the
// settings is told on standard error.
int setParity(int fd, int dataBits, int stopBits, int parity);

// Opens and sets up a port. Returns 0 with its descriptor in `fd`, for closePort(). If a step
// fails: its value, -1; `closeOnFailure` (any open file; -1 is none) and the port are closed then,
// and `fd` is -1.
int openPort(int closeOnFailure, int &fd, const SerialSettings &settings);

void closePort(int fd);

// --- Reading and writing: never block, so that an unplugged line holds nobody up ----------------

enum class PortEvent { Readable, Writable };

// Sleeps at most `timeout` until bytes have come, or can go. Returns whether they can; true also
// when the line is broken, which the next call of the two below tells.
bool awaitPort(int fd, PortEvent event, std::chrono::milliseconds timeout);

// Takes up to `size` bytes that have come. Returns how many; 0 if there are none yet, -1 if the
// line is broken.
int readPort(int fd, char *buffer, std::size_t size);

// Hands over what the port takes of `size` bytes at once. Returns how many; 0 if none for now, -1
// if the line is broken.
int writePort(int fd, const char *bytes, std::size_t size);

// Drops what has come and has not been read.
void dropReceived(int fd);

} // namespace PLATFORM
