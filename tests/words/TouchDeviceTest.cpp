#include "services/words/TouchDevice.h"

#include <QtTest>

#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>

using words::TouchDevice;

namespace {

struct UinputDeleter
{
    void operator()(libevdev_uinput *device) const { libevdev_uinput_destroy(device); }
};

// A touch screen that the kernel takes for real.
class Finger
{
public:
    Finger()
    {
        const std::unique_ptr<libevdev, words::EvdevDeleter> shape(libevdev_new());
        libevdev_set_name(shape.get(), "finger");
        input_absinfo axis{};
        axis.maximum = 4095;
        libevdev_enable_event_code(shape.get(), EV_KEY, BTN_TOUCH, nullptr);
        for (const unsigned code : {ABS_X, ABS_Y})
            libevdev_enable_event_code(shape.get(), EV_ABS, code, &axis);
        libevdev_uinput *device = nullptr;
        libevdev_uinput_create_from_device(shape.get(), LIBEVDEV_UINPUT_OPEN_MANAGED, &device);
        m_device.reset(device);
    }
    const char *path() const
    {
        return m_device ? libevdev_uinput_get_devnode(m_device.get()) : nullptr;
    }
    void press(int x, int y) const { say(1, x, y); }
    void lift(int x, int y) const { say(0, x, y); }

private:
    void say(int down, int x, int y) const
    {
        libevdev_uinput_write_event(m_device.get(), EV_ABS, ABS_X, x);
        libevdev_uinput_write_event(m_device.get(), EV_ABS, ABS_Y, y);
        libevdev_uinput_write_event(m_device.get(), EV_KEY, BTN_TOUCH, down);
        libevdev_uinput_write_event(m_device.get(), EV_SYN, SYN_REPORT, 0);
    }
    std::unique_ptr<libevdev_uinput, UinputDeleter> m_device;
};

} // namespace

class TouchDeviceTest : public QObject
{
    Q_OBJECT

private slots:
    // Another reader hears nothing of a touch that was kept from it, and yet knows where a next one
    // at the same place is.
    void keepsOneTouchFromOthers()
    {
        const Finger finger;
        if (finger.path() == nullptr)
            QSKIP("there is no /dev/uinput");
        int error = 0;
        const auto device = TouchDevice::open(finger.path(), error);
        const auto other = TouchDevice::open(finger.path(), error);
        const os::FileDescriptor plain(::open(finger.path(), O_RDONLY | O_NONBLOCK));
        QVERIFY(device && other && plain.isOpen());
        finger.press(10, 20);
        finger.lift(10, 20);
        QVERIFY(device->read() && device->takePressed() && !device->isDown());
        QVERIFY(other->read() && other->takePressed());

        device->grab(true);
        finger.press(1000, 2000);
        QVERIFY(device->read() && device->takePressed() && device->isDown());
        finger.lift(1000, 2000);
        QVERIFY(device->read() && !device->isDown());
        device->grab(false);
        QVERIFY(other->read() && !other->takePressed());

        int x = 0;
        int y = 0;
        input_event event{};
        finger.press(1000, 2000);
        while (::read(plain.get(), &event, sizeof event) == sizeof event) {
            x = event.type == EV_ABS && event.code == ABS_X ? event.value : x;
            y = event.type == EV_ABS && event.code == ABS_Y ? event.value : y;
        }
        QCOMPARE(x, 1000);
        QCOMPARE(y, 2000);
        QVERIFY(other->read() && other->takePressed());
    }

    void leavesOthersAlone()
    {
        int error = 0;
        QVERIFY(!TouchDevice::open("/dev/null", error));
        QCOMPARE(error, 0);
        QVERIFY(!TouchDevice::open("/no/such/device", error));
        QCOMPARE(error, ENOENT);
    }
};

QTEST_GUILESS_MAIN(TouchDeviceTest)
#include "TouchDeviceTest.moc"
