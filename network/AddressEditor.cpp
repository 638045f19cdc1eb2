#include "network/AddressEditor.h"

#include "app/look/Screen.h"
#include "input/FieldKeyboard.h"
#include "network/ServiceTimeouts.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <utility>

const AddressPolicy ETHERNET_POLICY = {
    false, false, "startDhcp [%s] ok \n", "startDhcp [%s] error \n", nullptr, nullptr, true,
};

const AddressPolicy WIFI_POLICY = {
    true,
    true,
    "startDhcp [%s]  OK \n",
    "startDhcp [%s]  Err \n",
    "stopDhcp [%s]  OK \n",
    "stopDhcp [%s]  Err \n",
    false,
};

namespace {

OctetGroup groupOf(const QWidget *page, const char *baseName)
{
    OctetGroup::Fields fields{};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i] =
            page->findChild<QLineEdit *>(QString::fromLatin1(baseName) + QString::number(i + 1));
        Q_ASSERT(fields[i] != nullptr);
    }
    return OctetGroup(fields);
}

// The stored text of each group, in the groups' order.
std::array<std::string AddressTexts::*, 5> textMembers()
{
    return {&AddressTexts::sIpAddr, &AddressTexts::sSubnetMask, &AddressTexts::sGateway,
            &AddressTexts::sPrefDns, &AddressTexts::sAlterDns};
}

} // namespace

AddressEditor::AddressEditor(QWidget *page, const AddressPolicy &policy)
    : m_pPage(page),
      m_policy(policy),
      m_groups{groupOf(page, "line_Ip"), groupOf(page, "line_Mask"), groupOf(page, "line_GateWay"),
               groupOf(page, "line_Dns1_"), groupOf(page, "line_Dns2_")}
{
    const QSize largest(2 * touchHeight(), touchHeight());
    for (OctetGroup &group : m_groups) {
        group.watch(page);
        group.limitSize(largest);
    }
}

void AddressEditor::update(const AddressTexts &texts)
{
    const auto members = textMembers();
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        const std::string &received = texts.*members[i];
        if (m_stored.*members[i] == received)
            continue;
        m_stored.*members[i] = received;
        m_groups[i].fill(received);
    }
}

void AddressEditor::showAddress(const std::string &ip, const std::string &mask,
                                const std::string &gateway)
{
    m_stored.sIpAddr = ip;
    m_stored.sSubnetMask = mask;
    m_stored.sGateway = gateway;
    fill(IP, GATEWAY);
}

void AddressEditor::showDns(const std::string &preferred, const std::string &alternate)
{
    m_stored.sPrefDns = preferred;
    m_stored.sAlterDns = alternate;
    fill(PREF_DNS, ALTER_DNS);
}

void AddressEditor::fill(Group first, Group last)
{
    const auto members = textMembers();
    for (std::size_t i = first; i <= last; ++i)
        m_groups[i].fill(m_stored.*members[i]);
}

void AddressEditor::setEditable(bool editable)
{
    m_bEditable = editable;
    m_bSending = m_bSending && editable;
    for (OctetGroup &group : m_groups)
        group.setEnabled(editable);
}

void AddressEditor::startDhcp()
{
    const int result = netT::startDhcp(m_sDevice, m_policy.dhcpFlag, NET_SERVICE_TIMEOUT_MS);
    printDevice(result < 0 ? m_policy.startDhcpError : m_policy.startDhcpOk);
}

void AddressEditor::stopDhcp()
{
    const int result = netT::stopDhcp(m_sDevice, m_policy.dhcpFlag, NET_SERVICE_TIMEOUT_MS);
    printDevice(result < 0 ? m_policy.stopDhcpError : m_policy.stopDhcpOk);
}

QLineEdit *AddressEditor::fieldOf(QObject *object) const
{
    const bool isField =
        std::any_of(m_groups.begin(), m_groups.end(),
                    [object](const OctetGroup &group) { return group.contains(object); });
    return isField ? static_cast<QLineEdit *>(object) : nullptr;
}

void AddressEditor::edit(QLineEdit *field)
{
    m_pNext = field;
    while (!m_bSending && m_bEditable && m_pNext != nullptr)
        editOne(std::exchange(m_pNext, nullptr));
}

void AddressEditor::editOne(QLineEdit *field)
{
    const auto group =
        std::find_if(m_groups.begin(), m_groups.end(),
                     [field](const OctetGroup &octets) { return octets.contains(field); });
    KeyboardRequest request = numberRequest(m_pPage, field, 0, LARGEST_OCTET);
    request.caption = captionOf(group->first()); // four fields have one label
    if (!editWithKeyboard(request))
        return;
    if (!m_bEditable) {
        // A record has come while the keyboard was open.
        fill(IP, ALTER_DNS);
        return;
    }
    if (m_groups[PREF_DNS].contains(field) || m_groups[ALTER_DNS].contains(field))
        applyDns();
    else
        applyAddress();
}

bool AddressEditor::areComplete(Group first, Group last) const
{
    return std::all_of(m_groups.begin() + first, m_groups.begin() + last + 1,
                       [](const OctetGroup &group) { return group.isComplete(); });
}

// The texts that the operator has entered, stored; nothing if a group lacks an octet, or if the
// right to edit was lost meanwhile.
std::optional<AddressTexts> AddressEditor::entry(Group first, Group last)
{
    if (!areComplete(first, last))
        return std::nullopt;
    const auto members = textMembers();
    const AddressTexts former = m_stored;
    for (std::size_t i = first; i <= last; ++i)
        m_stored.*members[i] = m_groups[i].join();
    AddressTexts typed = m_stored;
    m_bSending = true;
    QCoreApplication::processEvents();
    if (std::exchange(m_bSending, false))
        return typed;
    for (std::size_t i = first; i <= last; ++i) {
        if (m_stored.*members[i] == typed.*members[i]) // no record has told another one
            m_stored.*members[i] = former.*members[i];
    }
    fill(IP, ALTER_DNS);
    return std::nullopt;
}

void AddressEditor::applyAddress()
{
    const auto typed = entry(IP, GATEWAY);
    if (!typed)
        return;
    const int result = netT::setIp(m_sDevice, typed->sIpAddr, typed->sSubnetMask, typed->sGateway,
                                   m_policy.ipFlag, NET_SERVICE_TIMEOUT_MS);
    if (result == 0)
        printDevice("setIp [%s] ok\n");
    else if (!m_policy.printsRefusedAddress)
        printDevice("setIp [%s] error\n");
    else
        std::printf("setIp [%s] error IP [%s] sub [%s] gate [%s]\n", m_sDevice.c_str(),
                    typed->sIpAddr.c_str(), typed->sSubnetMask.c_str(), typed->sGateway.c_str());
}

void AddressEditor::applyDns()
{
    const auto typed = entry(PREF_DNS, ALTER_DNS);
    if (!typed)
        return;
    const int result =
        netT::setDns(m_sDevice, typed->sPrefDns, typed->sAlterDns, false, NET_SERVICE_TIMEOUT_MS);
    printDevice(result == 0 ? "setDns [%s] ok\n" : "setDns [%s] error\n");
}

void AddressEditor::printDevice(const char *format) const
{
    if (format != nullptr)
        std::printf(format, m_sDevice.c_str());
}
