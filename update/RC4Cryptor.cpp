#include "update/RC4Cryptor.h"

#include <QScopeGuard>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t BLOCK = 1024;       // the key stream restarts at each
constexpr std::size_t CHUNK = 64 * BLOCK; // read and written at once
constexpr std::size_t KEY_DIGITS = 10;
constexpr std::uint8_t KEY_MASK = 0xA5;

constexpr std::array<std::uint8_t, KEY_DIGITS> masked(const char (&key)[KEY_DIGITS + 1])
{
    std::array<std::uint8_t, KEY_DIGITS> digits{};
    for (std::size_t i = 0; i < KEY_DIGITS; ++i)
        digits[i] = static_cast<std::uint8_t>(key[i] ^ KEY_MASK);
    return digits;
}

constexpr std::array<std::uint8_t, KEY_DIGITS> MASKED_KEY = masked(SYSSET_PLC_KEY);

// The deciphered file lies in the panel's memory: at most a program of 16 MiB and its header.
constexpr off_t LARGEST_FILE = (off_t(16) << 20) + 20;

// Returns -1 also for a larger file.
int openRegular(const std::string &path, int flags)
{
    // Without O_NONBLOCK a FIFO would hold the caller up.
    const int file = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return -1;
    auto closer = qScopeGuard([file] { close(file); });
    struct stat status = {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > LARGEST_FILE)
        return -1;
    closer.dismiss();
    return file;
}

// Reads until `buffer` is full or the file ends. Returns how much; -1 on failure.
ssize_t readFully(int file, std::vector<unsigned char> &buffer)
{
    std::size_t size = 0;
    while (size < buffer.size()) {
        const ssize_t count = read(file, buffer.data() + size, buffer.size() - size);
        if (count < 0 && errno != EINTR)
            return -1;
        if (count == 0)
            break;
        size += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return static_cast<ssize_t>(size);
}

bool writeFully(int file, const unsigned char *data, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = write(file, data, size);
        if (count < 0 && errno != EINTR)
            return false;
        const auto written = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        data += written;
        size -= written;
    }
    return true;
}

void cryptBlocks(RC4Cryptor &cryptor, unsigned char *data, std::size_t size)
{
    for (std::size_t done = 0; done < size; done += BLOCK)
        cryptor.cryptBlock(data + done, std::min(BLOCK, size - done));
}

} // namespace

RC4Cryptor::RC4Cryptor(const std::string &key)
{
    for (std::size_t i = 0; i < m_key.size(); ++i)
        m_key[i] = static_cast<std::uint8_t>(key[i % key.size()]);
}

void RC4Cryptor::scheduleKey()
{
    for (std::size_t i = 0; i < m_state.size(); ++i)
        m_state[i] = static_cast<std::uint8_t>(i);
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < m_state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + m_state[i] + m_key[i]);
        swapBytes(m_state[i], m_state[j]);
    }
}

void RC4Cryptor::cryptBlock(unsigned char *data, std::size_t size)
{
    scheduleKey();
    std::uint8_t i = 0;
    std::uint8_t j = 0;
    for (std::size_t at = 0; at < size; ++at) {
        ++i;
        j = static_cast<std::uint8_t>(j + m_state[i]);
        swapBytes(m_state[i], m_state[j]);
        data[at] ^= m_state[static_cast<std::uint8_t>(m_state[i] + m_state[j])];
    }
}

std::string legacyProgramKey()
{
    // The mask, and reading it as volatile, keep the digits out of the program's image.
    const volatile std::uint8_t *digits = MASKED_KEY.data();
    std::string key;
    for (std::size_t i = 0; i < KEY_DIGITS; ++i)
        key += static_cast<char>(digits[i] ^ KEY_MASK);
    return key;
}

int decipherFile(const std::string &source, const std::string &target)
{
    const int from = openRegular(source, O_RDONLY);
    if (from < 0)
        return -1;
    const auto fromCloser = qScopeGuard([from] { close(from); });
    const int to = openRegular(target, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    if (to < 0)
        return -1;
    const auto toCloser = qScopeGuard([to] { close(to); });
    RC4Cryptor cryptor(legacyProgramKey());
    std::vector<unsigned char> chunk(CHUNK);
    ssize_t size = 0;
    do {
        size = readFully(from, chunk);
        if (size < 0)
            return -1;
        cryptBlocks(cryptor, chunk.data(), static_cast<std::size_t>(size));
        if (!writeFully(to, chunk.data(), static_cast<std::size_t>(size)))
            return -1;
    } while (static_cast<std::size_t>(size) == chunk.size());
    return 0;
}
