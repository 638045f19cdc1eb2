#pragma once

#include <string>

namespace sim {

// A simulated serial line: a pseudo-terminal (pty(7)) and a link to its far end.
class PseudoTerminal
{
public:
    // Opens one, raw from the start, and puts a link to it at `node`, in place of an old one; the
    // folders above are made. Throws std::system_error if that fails.
    explicit PseudoTerminal(std::string node);
    // Removes the link: the kernel may give its target to another terminal.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    // The near end; does not block.
    int fd() const { return m_master; }

    // Bits a second that the program has set.
    unsigned int baud() const;

private:
    void open();
    void close() const;

    const std::string m_node;
    int m_master = -1;
    // Kept open here too: the near end would hang up when the program closes the far one.
    int m_slave = -1;
};

} // namespace sim
