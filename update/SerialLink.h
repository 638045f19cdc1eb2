// The panel's serial ports as the download of older PLC programs uses them: choice of the port,
// the line's settings (termios(3)), and what an older program file begins with. One port at a
// time, on the download worker's thread.
#pragma once

#include <string>

// Where a program file wants to be sent.
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
// share a node, whose driver is told which of them it is. Reads and writes do not block, so that
// an unplugged line holds nobody up: poll(2) tells when they can go on.
// Returns the descriptor, which the caller closes; -1 if there is no such port or it cannot be
// opened or switched, told on standard error.
int openDev(const std::string &portName);

// Sets both directions of the open line `fd` to `baud`, and drops what waits in its queues.
// Returns 0; -1 if it is none of the eight rates above or the line refuses.
int setSpeed(int fd, int baud);

// Sets the framing of the open line `fd`, values as in SerialSettings, and makes it raw; a read
// that blocks returns after at most 4 seconds. Drops what waits to be read.
// Returns 0; -1 if a value is none of those above or the line refuses; a refusal to apply the
// settings is told on standard error.
int setParity(int fd, int dataBits, int stopBits, int parity);

// Opens and sets up a port. Returns 0 with its descriptor in `fd`, which the caller closes. If a
// step fails: its value, -1; `closeOnFailure` (-1 is none) and the port are closed then, and `fd`
// is -1.
int openPort(int closeOnFailure, int &fd, const SerialSettings &settings);

// Whether the deciphered file `fd` begins as a program file does; it is then read up to behind
// that mark. Its length goes to g_Progress.nTotal (cut to 31 bits). Returns 0; -1 if it does not
// or cannot be read.
int checkHeader(int fd);
