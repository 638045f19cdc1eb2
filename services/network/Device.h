// A network device that the panel has, or had: one that is unplugged is remembered.
#pragma once

#include "services/network/GLib.h"
#include "services/network/Record.h"
#include "services/network/Settings.h"

#include <NetworkManager.h>
#include <optional>

namespace network {

// What netServer takes care of: Ethernet, Wi-Fi and modems. Nothing for any other device.
std::optional<Kind> kindOf(NMDevice *device);

class Device
{
public:
    Device(Kind kind, std::string name, bool on) : m_kind(kind), m_name(std::move(name)), m_on(on)
    {
    }

    Kind kind() const { return m_kind; }
    const std::string &name() const { return m_name; }

    // Plugged in; `changed` is called after what the record tells may have changed.
    void attach(NMDevice *device, const std::function<void()> &changed);
    // Unplugged; with a record that is told instead where that is not certain.
    void detach(std::optional<Record> told = std::nullopt);
    bool isPresent() const { return m_device != nullptr; }
    // Null while it is unplugged.
    NMDevice *get() const { return m_device.get(); }

    bool isOn() const { return m_on; }
    void setOn(bool on) { m_on = on; }

    NMDeviceState state() const;
    bool isActive() const { return state() == NM_DEVICE_STATE_ACTIVATED; }
    bool isLinked() const;
    // Where packets leave: for a modem another interface than the device's own; "" without one.
    std::string ipInterface() const;

    // With the addressing of its profile, which may be null.
    Record record(NMConnection *profile) const;

private:
    void watchLease(const std::function<void()> &changed);
    std::string ownAddress() const;
    void fillAddress(Record &record, NMConnection *profile) const;

    Kind m_kind;
    std::string m_name;
    bool m_on;
    Object<NMDevice> m_device;
    std::optional<Record> m_told; // in the place of a device that is not there
    Handlers m_handlers;
    Handlers m_lease; // of the address in force
};

} // namespace network
