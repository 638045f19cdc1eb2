// Owners of what libsystemd's event loop and bus hand out.
#pragma once

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <systemd/sd-event.h>

namespace service {

struct EventDeleter
{
    void operator()(sd_event *event) const { sd_event_unref(event); }
};
using Event = std::unique_ptr<sd_event, EventDeleter>;

struct SourceDeleter
{
    void operator()(sd_event_source *source) const { sd_event_source_disable_unref(source); }
};
// A source that is taken out of the loop when it is destroyed, also from within its own callback.
using Source = std::unique_ptr<sd_event_source, SourceDeleter>;

// For results of libsystemd without which there is no service: throws what a negative one says.
inline void require(int result, const char *what)
{
    if (result < 0)
        throw std::system_error(-result, std::generic_category(), what);
}

} // namespace service
