// RAUC, which rules the slots of the firmware, over the system bus: de.pengutronix.rauc.Installer
// of RAUC 1.8. All of it waits for answers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

namespace updates {

struct Slot
{
    std::string name; // "rootfs.0", its class before the point
    std::string device;
    bool isBooted = false;
    bool mayBoot = false; // the boot loader takes it
};

enum class RaucOutcome {
    Installed,
    Failed,  // as RAUC says
    Refused, // RAUC has not begun
    Unknown  // RAUC has begun, and nothing more was heard of it
};

struct BusDeleter
{
    void operator()(sd_bus *bus) const { sd_bus_flush_close_unref(bus); }
};

// Used by the thread that makes it.
class Rauc
{
public:
    Rauc();

    // Empty if RAUC is not there or knows none.
    std::vector<Slot> slots();
    // Has a bundle installed; `why` is untouched if it is, else what is wrong. `turn` is called
    // several times a second; false leaves RAUC alone with it.
    RaucOutcome install(const std::string &path, const std::function<bool()> &turn,
                        std::string &why);
    // Has the boot loader leave the running slot out. False if that does not work.
    bool markBad();
    // Has systemd start the board anew.
    bool restartBoard();

private:
    struct MatchDeleter
    {
        void operator()(sd_bus_slot *slot) const { sd_bus_slot_unref(slot); }
    };
    using Match = std::unique_ptr<sd_bus_slot, MatchDeleter>;

    std::string lastError();
    Match match(const char *rule, sd_bus_message_handler_t handler, void *data);
    static int onCompleted(sd_bus_message *message, void *result, sd_bus_error *);
    static int onOwner(sd_bus_message *message, void *result, sd_bus_error *);

    std::unique_ptr<sd_bus, BusDeleter> m_bus; // null without a bus
};

} // namespace updates
