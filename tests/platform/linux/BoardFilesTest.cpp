// What the kernel, the board and its maker say in files.
#include "platform/board.h"
#include "platform/linux/Backlight.h"
#include "platform/linux/HotPlug.h"
#include "platform/linux/Mounts.h"
#include "platform/linux/PanelConf.h"
#include "platform/linux/Versions.h"
#include "platform/machine.h"
#include "platform/posix/Facts.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

using board::PanelConf;

namespace {

std::string unescaped(const QString &text)
{
    return text.toUtf8()
        .replace("\\n", "\n")
        .replace("\\r", "\r")
        .replace("\\0", QByteArray(1, '\0'))
        .toStdString();
}

} // namespace

class BoardFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_root.clear(); }

    // text | what is said of it
    void faultsOfPanelConf_data()
    {
        rows({"# nothing", "[machine]\\nmodel=\\n; empty is silent", "[machine]\\r\\nmodel=A\\r\\n",
              "model=A | no such key: [] model",
              "[machine]\\nmodl=A\\nx=1 | no such key: [machine] modl, and 1 more",
              "[machine\\nmodel=A | no such key: [] model, and 1 more",
              "[machine]\\nmodel=A\\nnonsense | line 3 is no [section] and no key=value",
              "[display]\\nsize=1024 | no value for [display] size",
              "[display]\\nsize=0x600 | no value for [display] size",
              "[display]\\nsize=1024x600x3 | no value for [display] size",
              "[display]\\nbacklight=../../etc | no value for [display] backlight",
              "[buzzer]\\ntones=100 200 300 400 | no value for [buzzer] tones",
              "[buzzer]\\ntones=100 200 300 400 500 600 | no value for [buzzer] tones",
              "[buzzer]\\ntones=100 200 300 400 99999 | no value for [buzzer] tones",
              "[machine]\\nremote=maybe | no value for [machine] remote",
              "[machine]\\nserial=a\\0b | no text",
              "[words]\\nclock=no\\nport=65536 | no value for [words] port",
              "[words]\\nport=99999999999999999999 | no value for [words] port"});
    }
    void faultsOfPanelConf()
    {
        std::string fault;
        const PanelConf conf = board::parsePanelConf(unescaped(cell(0)), fault);
        QCOMPARE(QString::fromStdString(fault), cellOrEmpty(1));
        QVERIFY(conf.width == 0 && conf.wordsPort == 1502 && conf.tones[4] == 4000);
    }

    void soundLinesHoldBesideBrokenOnes()
    {
        std::string fault;
        const PanelConf conf =
            board::parsePanelConf("[display]\nsize=800x480\nsize=wide\n[restart]\n"
                                  "hardware-reset = yes\n[buzzer]\ntones= 1 2 3 4 5\n"
                                  "[machine]\nproduct = P 1 = 2 ",
                                  fault);
        QVERIFY(conf.width == 800 && conf.height == 480 && conf.hardwareReset);
        QVERIFY(conf.tones[0] == 1000 && conf.product == "P 1 = 2" && !fault.empty());
    }

    // percent of most | value
    void backlightIsNeverDark_data()
    {
        rows({"1 | 7 | 1", "7 | 7 | 1", "50 | 255 | 128", "100 | 255 | 255", "1 | 1 | 1",
              "100 | 2147483647 | 2147483647"});
    }
    void backlightIsNeverDark()
    {
        QCOMPARE(board::backlightValue(number(0), number(1)), number(2));
    }

    void setsTheBacklightOfTheBestKind()
    {
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(50), -1); // none yet
        for (const QString &name : {"raw"_s, "firmware"_s, "platform"_s}) {
            m_root.write("/sys/class/backlight/%1/type"_s.arg(name), name.toLatin1());
            m_root.write("/sys/class/backlight/%1/max_brightness"_s.arg(name), "1000\n");
            m_root.write("/sys/class/backlight/%1/brightness"_s.arg(name), "\n");
        }
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(50), 0);
        QFile file(m_root.path() + "/sys/class/backlight/firmware/brightness"_s);
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == "500");
        for (const int percent : {0, 101})
            QCOMPARE(PLATFORM::CPlatLcd::setBrightness(percent), -1);
        m_root.write("/sys/class/backlight/firmware/max_brightness"_s, "none");
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(50), -1);
    }

    // The device tree ends its texts with a zero byte.
    void factsOfTheBoard()
    {
        const KVCORE::TMachine machine;
        std::string text = "untouched";
        QVERIFY(machine.GetSN(text) == 0 && machine.GetMac(text) == 0);
        QVERIFY(PLATFORM::CPlatCpu::getCpuId(text) < 0 && text == "untouched");
        m_root.write("/sys/class/dmi/id/product_serial"_s, "Not Specified\n");
        m_root.write("/sys/class/dmi/id/product_uuid"_s, "00000000-0000-0000-0000-000000000000\n");
        m_root.write("/proc/cpuinfo"_s, "processor\t: 0\nSerial\t\t: 00000000abcdef01\n");
        QVERIFY(machine.GetSN(text) == 0);
        QVERIFY(PLATFORM::CPlatCpu::getCpuId(text) == 0 && text == "00000000abcdef01");
        m_root.write("/proc/device-tree/model"_s, QByteArray("KV070T\0", 7));
        QVERIFY(machine.GetHMIType(text) == 1 && text == "KV070T");
        m_root.write("/sys/class/net/bridge/address"_s, "02:00:00:00:00:01\n");
        m_root.write("/sys/class/net/bridge/type"_s, "1\n");
        QVERIFY(machine.GetMac(text) == 0);
        m_root.write("/sys/class/net/eth0/device/x"_s, "");
        m_root.write("/sys/class/net/eth0/type"_s, "1\n");
        m_root.write("/sys/class/net/eth0/address"_s, "02:00:00:00:00:02\n");
        QVERIFY(machine.GetMac(text) == 1 && text == "02:00:00:00:00:02");
    }

    void versionsOfWhatIsInstalled()
    {
        m_root.write("/etc/os-release"_s, "ID=debian\nPRETTY_NAME=\"Debian 12\"\n");
        m_root.write("/usr/share/sysset/versions.d/a.conf"_s, "# comment\nA=1\nno version\n=2\n");
        m_root.write("/usr/share/sysset/versions.d/b.conf"_s, "B=1\n");
        m_root.write("/usr/share/sysset/versions.d/b.conf~"_s, "C=1\n");
        m_root.write("/mnt/data/sysset/versions.d/b.conf"_s, "B=2\n");
        m_root.write("/mnt/data/sysset/versions.d/c.conf"_s, QByteArray(70000, 'x') + "=1\n");
        QString all;
        for (const dsl::VersionEntry_T &entry : board::installedVersions())
            if (entry.name != "Kernel")
                all += QString::fromStdString(entry.name + "=" + entry.version + " ");
        QCOMPARE(all, "System=Debian 12 A=1 B=2 "_s);
    }

    // The fifth field of a line | the folders that are U-disks
    void udisksAmongTheMounts_data()
    {
        rows({"/run/sysset/usb/sda1 | /run/sysset/usb/sda1", "/run/sysset/usb",
              "/run/sysset/usb/ | ", "/run/sysset/usbx/sda1", "/mnt/run/sysset/usb/sda1",
              R"(/run/sysset/usb/a\040b\134c | /run/sysset/usb/a b\c)",
              R"(/run/sysset/usb/\0 | /run/sysset/usb/\0)",
              R"(/run/sysset/usb/\04 | /run/sysset/usb/\04)",
              R"(/run/sysset/usb/\999 | /run/sysset/usb/\999)"});
    }
    void udisksAmongTheMounts()
    {
        qunsetenv("SYSSET_ROOT");
        const std::string line =
            "36 35 98:0 / " + cell(0).toStdString() + " rw,noatime shared:1 - vfat /dev/sda1 ro\n";
        QString found;
        for (const board::Plugged &disk : board::udisksIn("\n12 3\n" + line + "garbage"))
            found += QString::fromStdString(disk.info.sMountPath);
        qputenv("SYSSET_ROOT", m_root.path().toLocal8Bit());
        QCOMPARE(found, cellOrEmpty(1));
    }

    // A stick that takes another's place between two looks has its path, but not its number.
    void aReplacedStickIsNew()
    {
        const auto look = [](const char *id) {
            return std::vector<board::Plugged>{{{PLATFORM::DEV_UDISK, "/run/a"}, id},
                                               {{PLATFORM::DEV_ETH, ""}, "2"}};
        };
        QCOMPARE(board::newIn(look("40"), look("40")).size(), std::size_t(0));
        QCOMPARE(board::newIn(look("41"), look("40")).size(), std::size_t(1));
    }

private:
    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(BoardFilesTest)
#include "BoardFilesTest.moc"
