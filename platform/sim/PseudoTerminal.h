#pragma once

#include <string>

namespace sim {

// A serial line without a wire: a pseudo-terminal (pty(7)) and a link to its far end.
class PseudoTerminal
{
public:
    // Opens one, raw from the start, and puts a link to it at `node`, in place of an old one; the
    // folders above are made. Throws std::system_error if that fails.
    explicit PseudoTerminal(std::string node);
    // Takes the link away: the number behind it may soon be another terminal's.
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
    // The far end stays open here too, so that the near one lives on when the program closes it.
    int m_slave = -1;
};

} // namespace sim
