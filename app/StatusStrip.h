// The icons at the bottom of the main window: which picture stands for which state. Whether a link
// is online is worked out in app/LinkMonitor. GUI thread.
#pragma once

class QLabel;

class StatusStrip
{
public:
    // The labels, which must outlive the strip.
    struct Labels
    {
        QLabel *usb;
        QLabel *ethernet;
        QLabel *wifi;
        QLabel *modem;
        QLabel *cloud;
    };

    // Shows everything as absent.
    explicit StatusStrip(const Labels &labels);

    void setUsb(bool present);
    void setCloud(bool up);
    // `type` is the device type code of a link, 301 to 303; other codes are ignored.
    void setLink(int type, bool online);

private:
    Labels m_labels;
};
