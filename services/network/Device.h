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
    // What the operator's choice and the profile are kept under.
    std::string key() const { return keyOf(m_kind, m_name); }

    // Plugged in; `changed` is called after what the record tells may have changed.
    void attach(NMDevice *device, const std::function<void()> &changed);
    // Who knows the device is away for a moment: the record that was told last stands for at most
    // that time. Then, or if none was told, it is unplugged, and `ended` is called.
    void hold(std::chrono::milliseconds time, std::function<void()> ended);
    void detach();
    bool isPresent() const { return m_device != nullptr; }
    bool isHeld() const { return m_hold.isRunning(); }
    // Not unplugged, as far as can be told.
    bool isKnown() const { return isPresent() || isHeld(); }
    // Null unless it is present.
    NMDevice *get() const { return m_device.get(); }

    bool isOn() const { return m_on; }
    void setOn(bool on) { m_on = on; }

    NMDeviceState state() const;
    bool isActive() const { return state() == NM_DEVICE_STATE_ACTIVATED; }
    bool isLinked() const;
    // It leads somewhere, and its way out has NetworkManager's penalty for one that does not.
    bool isPenalised() const;
    // Where packets leave: for a modem another interface than the device's own; "" without one.
    std::string ipInterface() const;
    // What it is connected by, or is about to be; null without.
    NMActiveConnection *connection() const;

    // With the addressing of its profile, which may be null.
    Record record(NMConnection *profile) const;
    // The record that was told.
    void remember(const Record &told) { m_told = told; }

private:
    void watchLease(const std::function<void()> &changed);
    void letGo();
    Record heldRecord() const;
    std::string ownAddress() const;
    void fillAddress(Record &record, NMConnection *profile) const;

    Kind m_kind;
    std::string m_name;
    bool m_on;
    Object<NMDevice> m_device;
    std::optional<Record> m_told; // last
    Timer m_hold;
    Handlers m_handlers;
    Handlers m_lease; // of the address in force
};

} // namespace network
