// The first starts of a new firmware: what is noted about them on the data disk, which all slots
// share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace updates {

// The note is /mnt/data/sysset/firmware-trial; what became of the last firmware is told on the page
// HMI Version, by versions.d beside it.
class Trial
{
public:
    // RAUC begins to write a slot.
    void begin(const std::string &slot, std::optional<std::uint64_t> version);
    // The next start is the new firmware's.
    void installed() const;
    // It was not installed. The one before, if the slot still has it, is what the next start tries.
    void undo(bool hasOneBefore) const;
    // Once after each start of the board: tells the operator where another slot runs than the one
    // that was written. Asks RAUC, if there is a note.
    void tellOutcome() const;

private:
    std::string m_before; // the note that begin() has found, "" for none
};

// Has the board started anew if another slot than the running one is left to start; the third time
// the boot loader is to leave the running one out. For a firmware that has not proved itself in
// time. False if there is no other one, or if it cannot be counted: the board would start for ever.
bool giveUpFirmware();

} // namespace updates
