// The on/off switch of a network device, as the device's page shows it.
#pragma once

#include "app/look/PendingMark.h"

#include <QString>

#include <optional>
#include <string>

class QLabel;
class QPushButton;

// What differs between the devices that are switched.
struct SwitchPolicy
{
    bool flag; // of netDeviceUp and netDeviceDown
    // Lines on standard output, the device's name at "%s".
    const char *upOk;
    const char *upError;
    const char *downOk;
    const char *downError;
};

// Ethernet and 4G.
extern const SwitchPolicy PLAIN_SWITCH;

// Shows what the service's records say of a device: there or not, on or off. A press is answered by
// the record that says that the device has changed, never by the call's own result: until then the
// animation runs and the switch stays disabled. GUI thread.
class DeviceSwitch
{
public:
    struct Widgets
    {
        QPushButton *button;
        QLabel *moving; // the animation, while a press waits for its answer
        QLabel *blank;  // in its place otherwise
        QLabel *status; // "Enable" or "Unplugged"; hidden while the device is on
    };

    // The widgets must outlive the switch. The device starts absent and off.
    DeviceSwitch(const Widgets &widgets, const SwitchPolicy &policy);

    // The status of a device that is there, and of one that is not.
    void setTexts(const QString &enable, const QString &unplugged);

    // A device that is gone also ends the wait for its answer.
    void setPresent(bool present);
    // Also ends the wait.
    void setOn(bool on);

    // A press: sounds the key click and waits from now on.
    void press();
    // Asks the service to turn `device` over; blocks up to the time-out of 5 s.
    void request(const std::string &device) const;

    // Whether setPresent() has been called.
    bool isKnown() const { return m_bKnown; }
    bool isPresent() const { return m_bPresent; }
    bool isOn() const { return m_bOn; }
    // Whether the device is there, and not about to change.
    bool isReady() const { return m_bPresent && !m_bPending; }

private:
    void endWait();
    void refresh();

    Widgets m_widgets;
    const SwitchPolicy &m_policy;
    std::optional<PendingMark> m_mark; // made at the first press
    QString m_enable;
    QString m_unplugged;
    bool m_bKnown = false;
    bool m_bPresent = false;
    bool m_bOn = false;
    bool m_bPending = false;
};
