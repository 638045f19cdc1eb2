// Choice and setting-up of a serial port: files stand for the nodes, and the calls that set a
// terminal up are watched, as no pseudo-terminal keeps its framing or has the mode switch.
#include "platform/paths.h"
#include "platform/serial_line.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

using namespace PLATFORM;

namespace {

// What a raw line has not.
constexpr tcflag_t INPUT = ICRNL | IGNCR | INLCR | IXON | IXOFF | IXANY;
constexpr tcflag_t LOCAL = ICANON | ECHO | ECHOE | ISIG;
constexpr tcflag_t OUTPUT = OPOST | ONLCR | OCRNL;

struct
{
    QStringList calls;
    termios line = {};
    QString failing; // the call that fails
    int error = EIO;
} terminal;

int called(const QString &call)
{
    terminal.calls << call;
    errno = terminal.error;
    return call.startsWith(terminal.failing) && !terminal.failing.isEmpty() ? -1 : 0;
}

// The cell as a number, or the letter in it.
int value(int index)
{
    return cell(index)[0].isLetter() ? cell(index)[0].unicode() : number(index);
}

} // namespace

extern "C" int ioctl(int, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    const int value = *va_arg(arguments, int *);
    va_end(arguments);
    return called("%1 %2"_s.arg(request, 0, 16).arg(value));
}
extern "C" int tcflush(int, int queue) noexcept
{
    return called(queue == TCIOFLUSH ? "both"_s : queue == TCIFLUSH ? "input"_s : "output"_s);
}
extern "C" int tcgetattr(int, termios *line) noexcept
{
    *line = terminal.line;
    return called("get"_s);
}
extern "C" int tcsetattr(int, int when, const termios *line) noexcept
{
    terminal.line = *line;
    return called(when == TCSANOW ? "set"_s : "later"_s);
}

class SerialLineTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        terminal = {};
        for (const QString &node : {"com1-232"_s, "com1-422"_s, "com2-232"_s, "com2-485"_s})
            m_root.write("/dev/THAL/tty/"_s + node, "");
    }

    // port | node | mode that is asked for | error of the switch | why it does not open
    void opensTheNodeOfAName_data()
    {
        rows({"RS232_1 | com1-232", "RS232_2 | com2-232", "RS422_1 | com1-422 | 40047701 1",
              "RS485_1 | com1-422 | 40047701 0", "RS485_2 | com2-485",
              "RS422_1 | com1-422 | 40047701 1 | 25", "RS422_2 | | | | No such device",
              "RS232_2 | | | | No such file or directory",
              "RS485_1 | | 40047701 0 | 5 | Input/output error"});
    }
    void opensTheNodeOfAName()
    {
        const QByteArray why = cellOrEmpty(4).toLatin1();
        const bool opens = why.isEmpty();
        terminal.failing = cellOrEmpty(3).isEmpty() ? QString() : cellOrEmpty(2);
        terminal.error = cellOrEmpty(3).toInt();
        if (!opens)
            QFile::remove(QString::fromStdString(panelPath("/dev/THAL/tty/com2-232")));
        int fd = -1;
        const QByteArray told = printedBy([&] { fd = openDev(cell(0).toStdString()); }, stderr);
        QCOMPARE(told, opens ? "" : "{OpenDev} Err:Can't Open Serial Port\tErrStr:" + why + ".\n");
        QCOMPARE(terminal.calls.join(u','), cellOrEmpty(2));
        QCOMPARE(fd >= 0, opens);
        if (opens)
            QCOMPARE(fcntl(fd, F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_RDWR | O_NONBLOCK);
        const QFileInfo opened("/proc/self/fd/%1"_s.arg(fd));
        QCOMPARE(QFileInfo(opened.canonicalFilePath()).fileName(), cell(1));
        closePort(fd);
    }

    // baud | how many of the table are looked at
    void setsTheSpeed_data()
    {
        rows({"115200 | 1", "38400 | 2", "19200 | 3", "9600 | 4", "4800 | 5", "2400 | 6",
              "1200 | 7", "300 | 8", "57600 | 8"});
    }
    void setsTheSpeed()
    {
        const speed_t speeds[] = {B115200, B38400, B19200, B9600, B4800, B2400, B1200, B300, 0};
        const bool known = number(0) != 57600;
        QCOMPARE(setSpeed(1, number(0)), known ? 0 : -1);
        QCOMPARE(terminal.calls.join(u' '),
                 "get"_s + " both"_s.repeated(number(1)) + (known ? " set"_s : QString()));
        QCOMPARE(cfgetospeed(&terminal.line), speeds[known ? number(1) - 1 : 8]);
        QCOMPARE(cfgetispeed(&terminal.line), cfgetospeed(&terminal.line));
    }

    // sent | data bits | stop bits | parity | whether input parity is checked, as it was before
    void setsTheFraming_data()
    {
        rows({"8N1 | 8 | 0 | 0 | 0", "7N2 | 7 | 2 | n | 0", "8N2 | 8 | 2 | N | 0",
              "7O1 | 7 | 0 | 1 | 1", "8O1 | 8 | 0 | O | 1", "8O2 | 8 | 2 | o | 1",
              "7E1 | 7 | 0 | 2 | 1", "8E1 | 8 | 0 | E | 1", "8E2 | 8 | 2 | e | 1",
              "8N1 | 8 | 0 | S | 1", "7N2 | 7 | 2 | s | 1"});
    }
    void setsTheFraming()
    {
        const QString sent = cell(0);
        const tcflag_t none = sent[1] == u'N' ? PARODD : 0; // what has no meaning without parity
        termios &line = terminal.line;
        line.c_cflag = CSTOPB | CRTSCTS | PARENB | CSIZE | (sent[1] == u'O' ? 0 : PARODD);
        line.c_iflag = INPCK | INPUT;
        line.c_lflag = LOCAL;
        line.c_oflag = OUTPUT;
        QCOMPARE(setParity(1, value(1), value(2), value(3)), 0);
        QCOMPARE(terminal.calls.join(u' '), "get input set"_s);
        QCOMPARE(line.c_cflag | none, none | CLOCAL | CREAD | (sent[0] == u'8' ? CS8 : CS7) |
                                          (sent[1] == u'N' ? 0 : PARENB) |
                                          (sent[1] == u'O' ? PARODD : 0) |
                                          (sent[2] == u'2' ? CSTOPB : 0));
        QCOMPARE((line.c_iflag & INPCK) != 0, number(4) == 1);
        QCOMPARE((line.c_iflag & INPUT) | (line.c_lflag & LOCAL) | (line.c_oflag & OUTPUT), 0U);
        QVERIFY(line.c_cc[VTIME] == 40 && line.c_cc[VMIN] == 0);
        terminal.failing = "set"_s;
        const QByteArray told = printedBy([] { QCOMPARE(setParity(1, 8, 0, 0), -1); }, stderr);
        QCOMPARE(told, QByteArray("{set_Parity} Err:SetupSerial 3\tErrStr:Input/output error.\n"));
    }

    // port, mode, baud, data bits, stop bits, parity | call that fails; the first alone fits
    void closesBothIfAPortCannotBeSetUp_data()
    {
        rows({"0 | 2 | 9600 | 7 | 2 | E", "1 | 1 | 9600 | 8 | 0 | 0", "2 | 0 | 9600 | 8 | 0 | 0",
              "0 | 0 | 57600 | 8 | 0 | 0", "0 | 0 | 9600 | 9 | 0 | 0", "0 | 0 | 9600 | 8 | 1 | 0",
              "0 | 0 | 9600 | 8 | 0 | 3", "0 | 0 | 9600 | 8 | 0 | M",
              "0 | 0 | 9600 | 8 | 0 | 0 | get", "0 | 0 | 9600 | 8 | 0 | 0 | set"});
    }
    void closesBothIfAPortCannotBeSetUp()
    {
        const bool fits = value(5) == 'E';
        terminal.failing = cellOrEmpty(6);
        const int given = open("/dev/null", O_RDONLY);
        const int opened = openFiles();
        int fd = given;
        QCOMPARE(openPort(given, fd, {value(0), value(1), value(2), value(3), value(4), value(5)}),
                 fits ? 0 : -1);
        QCOMPARE(fd >= 0, fits);
        QCOMPARE(openFiles(), opened + (fits ? 1 : -1));
        QCOMPARE(fcntl(given, F_GETFD) >= 0, fits);
        closePort(fd);
        closePort(fits ? given : -1);
        QCOMPARE(openFiles(), opened - 1);
    }

private:
    static int openFiles()
    {
        return QDir("/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(SerialLineTest)
#include "SerialLineTest.moc"
