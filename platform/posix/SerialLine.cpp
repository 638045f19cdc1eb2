#include "platform/paths.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/SerialNodes.h"
#include "platform/serial_line.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <system_error>
#include <termios.h>

namespace PLATFORM {
namespace {

using os::FileDescriptor;

constexpr cc_t READ_TENTHS = 40;

struct Rate
{
    int baud;
    speed_t speed;
};

constexpr Rate RATES[] = {
    {115200, B115200}, {38400, B38400}, {19200, B19200}, {9600, B9600},
    {4800, B4800},     {2400, B2400},   {1200, B1200},   {300, B300},
};

int reportFailure(const char *function, const char *what, int error)
{
    std::fprintf(stderr, "{%s} Err:%s\tErrStr:%s.\n", function, what,
                 std::generic_category().message(error).c_str());
    return -1;
}

int reportOpenFailure(int error)
{
    return reportFailure("OpenDev", "Can't Open Serial Port", error);
}

int openNode(const os::SerialNode *node)
{
    if (node == nullptr)
        return reportOpenFailure(ENODEV);
    // Without O_NONBLOCK a port with modem lines would wait here for a carrier.
    const int flags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    FileDescriptor line(open(panelPath(node->path).c_str(), flags));
    if (!line.isOpen() || !os::switchSerialMode(line.get(), *node))
        return reportOpenFailure(errno);
    return line.release();
}

bool setDataBits(termios &line, int dataBits)
{
    line.c_cflag &= ~static_cast<tcflag_t>(CSIZE);
    if (dataBits != 7 && dataBits != 8)
        return false;
    line.c_cflag |= dataBits == 7 ? CS7 : CS8;
    return true;
}

void setNoParity(termios &line)
{
    line.c_cflag &= ~static_cast<tcflag_t>(PARENB);
    line.c_iflag &= ~static_cast<tcflag_t>(INPCK | ICRNL | IGNCR);
}

void setOddParity(termios &line)
{
    line.c_cflag |= PARENB | PARODD;
    line.c_iflag |= INPCK;
}

void setEvenParity(termios &line)
{
    line.c_cflag |= PARENB;
    line.c_cflag &= ~static_cast<tcflag_t>(PARODD);
    line.c_iflag |= INPCK;
}

void setSpaceParity(termios &line)
{
    line.c_cflag &= ~static_cast<tcflag_t>(PARENB | CSTOPB);
}

struct Parity
{
    int number; // the letter again where there is no number
    int upper;
    int lower;
    void (*set)(termios &line);
};

constexpr Parity PARITIES[] = {
    {0, 'N', 'n', setNoParity},
    {1, 'O', 'o', setOddParity},
    {2, 'E', 'e', setEvenParity},
    {'S', 'S', 's', setSpaceParity},
};

bool setParityBit(termios &line, int parity)
{
    const auto *found =
        std::find_if(std::begin(PARITIES), std::end(PARITIES), [parity](const Parity &known) {
            return parity == known.number || parity == known.upper || parity == known.lower;
        });
    if (found == std::end(PARITIES))
        return false;
    found->set(line);
    return true;
}

bool setStopBits(termios &line, int stopBits)
{
    if (stopBits != 0 && stopBits != 2)
        return false;
    line.c_cflag &= ~static_cast<tcflag_t>(CSTOPB);
    if (stopBits == 2)
        line.c_cflag |= CSTOPB;
    return true;
}

void makeRaw(termios &line)
{
    line.c_cflag |= CLOCAL | CREAD;
    line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
    line.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHOE | ECHOK | ECHONL | ISIG);
    line.c_oflag &= ~static_cast<tcflag_t>(OPOST | ONLCR | OCRNL);
    line.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY | INLCR | ICRNL | IGNCR);
    line.c_cc[VTIME] = READ_TENTHS;
    line.c_cc[VMIN] = 0;
}

int setUp(int fd, const SerialSettings &settings)
{
    const int result = setSpeed(fd, settings.baud);
    return result != 0 ? result
                       : setParity(fd, settings.dataBits, settings.stopBits, settings.parity);
}

bool isForNow(int error)
{
    return error == EAGAIN || error == EINTR;
}

} // namespace

int openDev(const std::string &portName)
{
    return openNode(os::serialNode(portName));
}

int setSpeed(int fd, int baud)
{
    termios line = {};
    if (tcgetattr(fd, &line) != 0)
        return -1;
    for (const Rate &rate : RATES) {
        tcflush(fd, TCIOFLUSH);
        if (rate.baud != baud)
            continue;
        cfsetispeed(&line, rate.speed);
        cfsetospeed(&line, rate.speed);
        return tcsetattr(fd, TCSANOW, &line) == 0 ? 0 : -1;
    }
    return -1;
}

int setParity(int fd, int dataBits, int stopBits, int parity)
{
    termios line = {};
    if (tcgetattr(fd, &line) != 0)
        return -1;
    if (!setDataBits(line, dataBits) || !setParityBit(line, parity) || !setStopBits(line, stopBits))
        return -1;
    makeRaw(line);
    tcflush(fd, TCIFLUSH);
    if (tcsetattr(fd, TCSANOW, &line) != 0)
        return reportFailure("set_Parity", "SetupSerial 3", errno);
    return 0;
}

int openPort(int closeOnFailure, int &fd, const SerialSettings &settings)
{
    FileDescriptor given(closeOnFailure);
    FileDescriptor line(openNode(os::serialNode(settings.port, settings.mode)));
    const int result = line.isOpen() ? setUp(line.get(), settings) : -1;
    fd = result == 0 ? line.release() : -1;
    if (result == 0)
        given.release();
    return result;
}

void closePort(int fd)
{
    ::close(fd);
}

bool awaitPort(int fd, PortEvent event, std::chrono::milliseconds timeout)
{
    pollfd poll{fd, static_cast<short>(event == PortEvent::Readable ? POLLIN : POLLOUT), 0};
    return ::poll(&poll, 1, static_cast<int>(timeout.count())) > 0;
}

int readPort(int fd, char *buffer, std::size_t size)
{
    const ssize_t count = ::read(fd, buffer, size);
    if (count > 0)
        return static_cast<int>(count);
    return count < 0 && isForNow(errno) ? 0 : -1;
}

int writePort(int fd, const char *bytes, std::size_t size)
{
    const ssize_t count = ::write(fd, bytes, size);
    if (count >= 0)
        return static_cast<int>(count);
    return isForNow(errno) ? 0 : -1;
}

void dropReceived(int fd)
{
    tcflush(fd, TCIFLUSH);
}

} // namespace PLATFORM
