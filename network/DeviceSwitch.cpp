#include "network/DeviceSwitch.h"

#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"
#include "network/ServiceTimeouts.h"
#include "platform/net.h"

#include <QLabel>
#include <QPushButton>

#include <cstdio>

const SwitchPolicy PLAIN_SWITCH = {
    false,
    "netDeviceUp [%s] ok\n",
    "netDeviceUp [%s] Err\n",
    "netDeviceDown [%s] ok\n",
    "netDeviceDown [%s] Err\n",
};

DeviceSwitch::DeviceSwitch(const Widgets &widgets, const SwitchPolicy &policy)
    : m_widgets(widgets), m_policy(policy)
{
    m_widgets.button->setFixedSize(2 * touchHeight(), touchHeight());
    m_widgets.moving->hide();
    refresh();
}

void DeviceSwitch::setTexts(const QString &enable, const QString &unplugged)
{
    m_enable = enable;
    m_unplugged = unplugged;
    refresh();
}

void DeviceSwitch::setPresent(bool present)
{
    m_bKnown = true;
    m_bPresent = present;
    if (!present)
        endWait(); // no record will answer
    refresh();
}

void DeviceSwitch::setOn(bool on)
{
    m_bOn = on;
    endWait();
    refresh();
}

void DeviceSwitch::endWait()
{
    m_bPending = false;
    if (m_mark)
        m_mark->stop();
}

void DeviceSwitch::press()
{
    keyClick();
    m_bPending = true;
    if (!m_mark)
        m_mark.emplace(m_widgets.moving, m_widgets.blank);
    m_mark->start();
    refresh();
}

void DeviceSwitch::request(const std::string &device) const
{
    const char *line = nullptr;
    if (m_bOn)
        line = netT::netDeviceDown(device, m_policy.flag, NET_SERVICE_TIMEOUT_MS) < 0
                   ? m_policy.downError
                   : m_policy.downOk;
    else
        line = netT::netDeviceUp(device, m_policy.flag, NET_SERVICE_TIMEOUT_MS) < 0
                   ? m_policy.upError
                   : m_policy.upOk;
    std::printf(line, device.c_str());
}

void DeviceSwitch::refresh()
{
    m_widgets.button->setEnabled(isReady());
    showSwitch(m_widgets.button, m_bOn);
    m_widgets.status->setText(m_bPresent ? m_enable : m_unplugged);
    m_widgets.status->setVisible(!m_bPresent || !m_bOn);
}
