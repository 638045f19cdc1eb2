#include "app/StatusStrip.h"

#include "app/look/WidgetLook.h"
#include "platform/board.h"

StatusStrip::StatusStrip(const Labels &labels) : m_labels(labels)
{
    setUsb(false);
    setLink(PLATFORM::DEV_ETH, false);
    setLink(PLATFORM::DEV_WIFI, false);
    setLink(PLATFORM::DEV_4G, false);
    setCloud(false);
}

void StatusStrip::setUsb(bool present)
{
    showIcon(m_labels.usb,
             present ? QStringLiteral("UsbInPut.png") : QStringLiteral("UsbOutPut.png"));
}

void StatusStrip::setCloud(bool up)
{
    showIcon(m_labels.cloud, up ? QStringLiteral("cloudok.png") : QStringLiteral("clouderr.png"));
}

void StatusStrip::setLink(int type, bool online)
{
    switch (type) {
    case PLATFORM::DEV_ETH:
        showIcon(m_labels.ethernet,
                 online ? QStringLiteral("EthInPut.png") : QStringLiteral("EthOutPut.png"));
        break;
    case PLATFORM::DEV_WIFI:
        showIcon(m_labels.wifi,
                 online ? QStringLiteral("WiFiInPut.png") : QStringLiteral("WifiOutPut.png"));
        break;
    case PLATFORM::DEV_4G:
        showIcon(m_labels.modem,
                 online ? QStringLiteral("4gInPut.png") : QStringLiteral("4gOutPut.png"));
        break;
    default:
        break;
    }
}
