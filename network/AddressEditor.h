// The five addresses of one device: shows those of the records, and sends an entry of the operator
// as soon as the keyboard closes.
#pragma once

#include "network/NetRecord.h"
#include "network/OctetGroup.h"

#include <array>
#include <optional>
#include <string>

class QLineEdit;
class QWidget;

// What differs between the devices whose addresses are edited.
struct AddressPolicy
{
    bool dhcpFlag; // flag of startDhcp and stopDhcp
    bool ipFlag;   // flag of setIp; setDns always takes false
    // Lines on standard output, the device's name at "%s"; null prints nothing.
    const char *startDhcpOk;
    const char *startDhcpError;
    const char *stopDhcpOk;
    const char *stopDhcpError;
    bool printsRefusedAddress; // a refused setIp is printed with the texts that were sent
};

extern const AddressPolicy ETHERNET_POLICY;
extern const AddressPolicy WIFI_POLICY;

// Works on the twenty line edits of a form named line_Ip1.., line_Mask1.., line_GateWay1..,
// line_Dns1_1.. and line_Dns2_1... GUI thread; the network calls block it up to their time-out.
class AddressEditor
{
public:
    // The form of `page` must be built. The fields must outlive the editor.
    AddressEditor(QWidget *page, const AddressPolicy &policy);

    void setDevice(const std::string &device) { m_sDevice = device; }

    // The texts last received or sent.
    const AddressTexts &stored() const { return m_stored; }
    // Fills each group whose text differs from the stored one; the others keep what they show.
    void update(const AddressTexts &texts);
    // Fill their groups, whatever was stored.
    void showAddress(const std::string &ip, const std::string &mask, const std::string &gateway);
    void showDns(const std::string &preferred, const std::string &alternate);
    // Forgets the stored texts, so that the next update fills every group.
    void forget() { m_stored = {}; }

    // Whether the operator may edit; also enables or disables the fields.
    void setEditable(bool editable);
    bool isEditable() const { return m_bEditable; }

    // Ask the service for DHCP, or to stop it.
    void startDhcp();
    void stopDhcp();

    // The field that `object` is, null if it is none of the twenty.
    QLineEdit *fieldOf(QObject *object) const;
    // Opens the keyboard on `field`, if editing is allowed; a value that is accepted sends its
    // group or groups, unless editing is refused by then. A call while an entry is being sent is
    // carried out behind it.
    void edit(QLineEdit *field);

private:
    enum Group { IP, MASK, GATEWAY, PREF_DNS, ALTER_DNS, GROUP_COUNT };

    void fill(Group first, Group last);
    bool areComplete(Group first, Group last) const;
    void editOne(QLineEdit *field);
    std::optional<AddressTexts> entry(Group first, Group last);
    void applyAddress();
    void applyDns();
    void printDevice(const char *format) const;

    QWidget *m_pPage;
    const AddressPolicy &m_policy;
    std::array<OctetGroup, GROUP_COUNT> m_groups;
    std::string m_sDevice;
    AddressTexts m_stored;
    bool m_bEditable = false;
    bool m_bSending = false;      // an entry has been typed, and no record has refused it yet
    QLineEdit *m_pNext = nullptr; // to be edited once that is sent
};
