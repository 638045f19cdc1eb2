#include "platform/linux/PlcLine.h"

#include "platform/paths.h"
#include "platform/posix/SerialNodes.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace board {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr int STATION = 1;
constexpr int RS485 = 2;
constexpr int ATTEMPTS = 2;
constexpr microseconds PATIENCE = 1s;

// Modbus over Serial Line V1.02, 2.5.1.1: 3.5 characters between two frames, fixed for fast lines.
constexpr int FAST_BAUD = 19200;
constexpr microseconds FAST_SILENCE = 1750us;

// As long as a USB adapter may keep back what has come.
constexpr microseconds QUIET_AT_LEAST = 20ms;
constexpr std::size_t LONGEST_FRAME = 256; // 2.5.1

// Frames of function codes 3 and 16 without their words, request and answer together.
constexpr std::size_t AROUND_READ = 8 + 5;
constexpr std::size_t AROUND_WRITE = 9 + 8;

// Function code 21: station, function code, length; then one group's header.
constexpr std::uint8_t WRITE_FILE = 0x15;
constexpr std::uint8_t REFERENCE = 6;
constexpr std::size_t GROUP_HEADER = 7;
constexpr std::size_t SUM = 2;
constexpr std::uint8_t EXCEPTION = 0x80;
constexpr std::size_t EXCEPTION_SIZE = 5;
constexpr std::uint8_t LAST_EXCEPTION = MODBUS_EXCEPTION_GATEWAY_TARGET;

constexpr int BAUDS[] = {300, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
constexpr char PARITIES[] = {'N', 'O', 'E'};

void append(std::vector<std::uint8_t> &bytes, int word)
{
    bytes.push_back(static_cast<std::uint8_t>(word >> 8));
    bytes.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

// Modbus over Serial Line V1.02, 6.2.2; libmodbus keeps its own to itself.
std::uint16_t sumOf(const std::uint8_t *bytes, std::size_t size)
{
    std::uint32_t sum = 0xFFFF;
    for (std::size_t i = 0; i < size; ++i) {
        sum ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xA001U : sum >> 1U;
    }
    return static_cast<std::uint16_t>(sum);
}

// The sum follows, low byte first: over both it comes to 0.
bool isWhole(const std::vector<std::uint8_t> &frame)
{
    return sumOf(frame.data(), frame.size()) == 0;
}

bool isException(int error)
{
    return error > MODBUS_ENOBASE && error <= MODBUS_ENOBASE + LAST_EXCEPTION;
}

PlcFault faultOf(int error)
{
    if (isException(error))
        return PlcFault::Refused;
    return error > MODBUS_ENOBASE ? PlcFault::Nonsense : PlcFault::Silent;
}

// RTU needs all eight bits of a byte; libmodbus would take 9600 for a rate that it does not know.
bool isPossible(const SERIALCOMSET &line)
{
    return std::find(std::begin(BAUDS), std::end(BAUDS), line.nBaud) != std::end(BAUDS) &&
           line.nDataBits == 8 && (line.nStopBits == 1 || line.nStopBits == 2) &&
           line.nParity >= 0 && line.nParity <= 2;
}

// Where the port switches a driver of its own; many do it in hardware.
bool switchToRs485(modbus_t *modbus)
{
    return modbus_rtu_set_serial_mode(modbus, MODBUS_RTU_RS485) == 0 || errno == ENOTTY;
}

} // namespace

void PlcLine::Close::operator()(modbus_t *modbus) const
{
    modbus_close(modbus);
    modbus_free(modbus);
}

PlcFault PlcLine::open(const SERIALCOMSET &line)
{
    close();
    const os::SerialNode *node = os::serialNode(line.nPort, line.nMode);
    if (node == nullptr || !isPossible(line))
        return fail(PlcFault::NoPort, "no such port, or a line that Modbus RTU cannot use");
    const char parity = PARITIES[line.nParity];
    m_modbus.reset(modbus_new_rtu(panelPath(node->path).c_str(), line.nBaud, parity, line.nDataBits,
                                  line.nStopBits));
    modbus_t *modbus = m_modbus.get();
    if (modbus == nullptr || modbus_set_slave(modbus, STATION) != 0 ||
        // Without a time-out for the single byte the other one holds for the whole answer.
        modbus_set_byte_timeout(modbus, 0, 0) != 0 || modbus_connect(modbus) != 0 ||
        !os::switchSerialMode(modbus_get_socket(modbus), *node) ||
        (line.nMode == RS485 && !switchToRs485(modbus))) {
        const int error = errno;
        close();
        return fail(PlcFault::NoPort, std::string(node->name) + ": " + modbus_strerror(error));
    }
    m_baud = line.nBaud;
    m_bitsOfByte = 1 + line.nDataBits + (line.nParity == 0 ? 0 : 1) + line.nStopBits;
    m_lastFrame = Clock::now();
    return PlcFault::None;
}

void PlcLine::close()
{
    m_modbus.reset();
}

PlcFault PlcLine::read(int address, Words &words)
{
    const int count = static_cast<int>(words.size());
    return request(AROUND_READ + 2 * words.size(), [&] {
        return modbus_read_registers(m_modbus.get(), address, count, words.data()) == count;
    });
}

PlcFault PlcLine::write(int address, const Words &words)
{
    const int count = static_cast<int>(words.size());
    return request(AROUND_WRITE + 2 * words.size(), [&] {
        return modbus_write_registers(m_modbus.get(), address, count, words.data()) == count;
    });
}

// libmodbus sends the frame; it does not know how long the answer is, which repeats the request.
PlcFault PlcLine::writeFile(int file, int first, const Words &words)
{
    Bytes frame{STATION, WRITE_FILE, static_cast<std::uint8_t>(GROUP_HEADER + 2 * words.size()),
                REFERENCE};
    append(frame, file);
    append(frame, first);
    append(frame, static_cast<int>(words.size()));
    for (const std::uint16_t word : words)
        append(frame, word);
    const std::size_t bytes = 2 * (frame.size() + SUM);
    return request(bytes, [&] {
        const auto deadline = Clock::now() + PATIENCE + timeOf(bytes);
        return modbus_send_raw_request(m_modbus.get(), frame.data(),
                                       static_cast<int>(frame.size())) > 0 &&
               receiveEcho(frame, deadline);
    });
}

// `bytes` pass on the line, there and back. `exchange` returns whether the answer is right, else
// errno says what is wrong.
PlcFault PlcLine::request(std::size_t bytes, const std::function<bool()> &exchange)
{
    if (!isOpen())
        return fail(PlcFault::Silent, "no port is open");
    int error = 0;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        keepSilence();
        modbus_flush(m_modbus.get()); // an answer that came too late
        errno = 0;
        const bool done = setTimeout(bytes) && exchange();
        error = errno;
        m_lastFrame = Clock::now();
        if (done)
            return PlcFault::None;
        if (faultOf(error) == PlcFault::Nonsense)
            awaitSilence();
        else if (error != ETIMEDOUT)
            break;
    }
    return fail(faultOf(error), error == ETIMEDOUT ? "no answer" : modbus_strerror(error));
}

PlcFault PlcLine::fail(PlcFault fault, const std::string &cause)
{
    m_cause = cause;
    return fault;
}

void PlcLine::keepSilence() const
{
    const microseconds silence = m_baud > FAST_BAUD ? FAST_SILENCE : timeOf(7) / 2;
    std::this_thread::sleep_until(m_lastFrame + silence);
}

// What is left of a damaged answer would be taken for the one to the next request.
void PlcLine::awaitSilence() const
{
    const auto quiet = std::max(QUIET_AT_LEAST, timeOf(4));
    const int quietMs =
        static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(quiet).count());
    const auto deadline = Clock::now() + PATIENCE + timeOf(LONGEST_FRAME);
    pollfd line{modbus_get_socket(m_modbus.get()), POLLIN, 0};
    while (modbus_flush(m_modbus.get()) >= 0 && ::poll(&line, 1, quietMs) > 0 &&
           Clock::now() < deadline) {
    }
}

bool PlcLine::setTimeout(std::size_t bytes)
{
    const auto whole = PATIENCE + timeOf(bytes);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(whole);
    return modbus_set_response_timeout(
               m_modbus.get(), static_cast<std::uint32_t>(seconds.count()),
               static_cast<std::uint32_t>(microseconds(whole - seconds).count())) == 0;
}

microseconds PlcLine::timeOf(std::size_t bytes) const
{
    return microseconds(static_cast<std::int64_t>(bytes) * m_bitsOfByte * 1000000 / m_baud);
}

bool PlcLine::receiveEcho(const Bytes &sent, Clock::time_point deadline) const
{
    Bytes answer;
    if (!receive(answer, EXCEPTION_SIZE, deadline))
        return false;
    errno = EMBBADDATA;
    if (answer[0] == STATION && answer[1] == (WRITE_FILE | EXCEPTION)) {
        const bool isKnown = answer[2] > 0 && answer[2] <= LAST_EXCEPTION && isWhole(answer);
        errno = isKnown ? MODBUS_ENOBASE + answer[2] : EMBBADCRC;
        return false;
    }
    if (!std::equal(answer.begin(), answer.end(), sent.begin()) ||
        !receive(answer, sent.size() + SUM, deadline))
        return false;
    const bool isEcho = std::equal(sent.begin(), sent.end(), answer.begin());
    errno = isEcho ? EMBBADCRC : EMBBADDATA;
    return isEcho && isWhole(answer);
}

// Until `answer` has that many bytes.
bool PlcLine::receive(Bytes &answer, std::size_t size, Clock::time_point deadline) const
{
    const int fd = modbus_get_socket(m_modbus.get());
    std::size_t have = answer.size();
    answer.resize(size);
    while (have < size) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd line{fd, POLLIN, 0};
        const int ready = ::poll(&line, 1, static_cast<int>(std::max(left, 0ms).count()));
        if (ready == 0)
            errno = ETIMEDOUT;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        const ssize_t got = ::read(fd, &answer[have], size - have);
        if (got == 0)
            errno = ECONNRESET;
        if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN))
            return false;
        have += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    return true;
}

} // namespace board
