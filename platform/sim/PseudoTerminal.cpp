#include "platform/sim/PseudoTerminal.h"

#include <asm/termbits.h> // termios2 tells the speed as a number; excludes <termios.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace sim {
namespace {

void require(bool done, const char *what)
{
    if (!done)
        throw std::system_error(errno, std::generic_category(), what);
}

void makeRaw(int fd)
{
    termios2 line = {};
    require(ioctl(fd, TCGETS2, &line) == 0, "TCGETS2");
    line.c_iflag = 0;
    line.c_oflag = 0;
    line.c_lflag = 0;
    require(ioctl(fd, TCSETS2, &line) == 0, "TCSETS2");
}

} // namespace

PseudoTerminal::PseudoTerminal(std::string node) : m_node(std::move(node))
{
    namespace fs = std::filesystem;
    try {
        open();
        fs::create_directories(fs::path(m_node).parent_path());
        fs::remove(m_node);
        char name[64] = "";
        require(ptsname_r(m_master, name, sizeof name) == 0, "ptsname");
        fs::create_symlink(name, m_node);
    } catch (...) {
        close();
        throw;
    }
}

PseudoTerminal::~PseudoTerminal()
{
    std::error_code ignored;
    std::filesystem::remove(m_node, ignored);
    close();
}

void PseudoTerminal::open()
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    require(m_master >= 0, "posix_openpt");
    require(grantpt(m_master) == 0 && unlockpt(m_master) == 0, "unlockpt");
    m_slave = ioctl(m_master, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
    require(m_slave >= 0, "TIOCGPTPEER");
    makeRaw(m_slave);
}

void PseudoTerminal::close() const
{
    for (const int fd : {m_slave, m_master})
        if (fd >= 0)
            ::close(fd);
}

unsigned int PseudoTerminal::baud() const
{
    termios2 line = {};
    require(ioctl(m_slave, TCGETS2, &line) == 0, "TCGETS2");
    return line.c_ospeed;
}

} // namespace sim
