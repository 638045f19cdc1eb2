// Choice and setting-up of a serial port, on the pseudo-terminals of the simulated panel. What a
// pseudo-terminal does not keep (framing) or has not (the mode switch) is watched at the call.
#include "platform/paths.h"
#include "platform/serial_line.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QFileInfo>

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

using namespace PLATFORM;

namespace {

constexpr unsigned long MODE_REQUEST = 0x40047701;

struct Watched
{
    QList<int> modes; // asked for
    int modeError = ENOTTY;
    int flushes = 0;
    termios line = {}; // last applied
    tcflag_t read = 0; // control flags that a pseudo-terminal would not keep
    int applyError = 0;
};
Watched watched;

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

int failWith(int error)
{
    errno = error;
    return error == 0 ? 0 : -1;
}

// Of "0 1 9600 8 0 E": port, mode, baud, data bits, stop bits, parity as a number or a letter.
std::array<int, 6> lineOf(const QString &text)
{
    std::array<int, 6> line{};
    const QStringList parts = text.split(u' ');
    std::transform(parts.begin(), parts.end(), line.begin(), [](const QString &part) {
        return part[0].isLetter() ? part[0].unicode() : part.toInt();
    });
    return line;
}

} // namespace

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request != MODE_REQUEST)
        return next<int(int, unsigned long, ...)>("ioctl")(fd, request, argument);
    watched.modes << *static_cast<int *>(argument);
    return failWith(watched.modeError);
}

extern "C" int tcflush(int fd, int queue) noexcept
{
    watched.flushes += queue == TCIOFLUSH ? 1 : 0;
    return next<int(int, int)>("tcflush")(fd, queue);
}

extern "C" int tcgetattr(int fd, termios *line) noexcept
{
    const int result = next<int(int, termios *)>("tcgetattr")(fd, line);
    line->c_cflag |= watched.read;
    return result;
}

extern "C" int tcsetattr(int fd, int when, const termios *line) noexcept
{
    watched.line = *line;
    if (watched.applyError != 0 || when != TCSANOW)
        return failWith(EIO);
    return next<int(int, int, const termios *)>("tcsetattr")(fd, when, line);
}

class SerialLineTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        watched = Watched();
        sim::panel().serialPlc().start();
    }
    void cleanup() { sim::panel().reset(); }

    // port | node | the modes asked for
    void opensTheNodeOfAName_data()
    {
        rows({"RS232_1 | com1-232 | []", "RS422_1 | com1-422 | [1]", "RS485_1 | com1-422 | [0]",
              "RS232_2 | com2-232 | []", "RS485_2 | com2-485 | []"});
    }
    void opensTheNodeOfAName()
    {
        const int fd = openDev(cell(0).toStdString());
        QVERIFY(fd >= 0);
        QCOMPARE(QFileInfo("/proc/self/fd/%1"_s.arg(fd)).canonicalFilePath(),
                 QFileInfo(nodePath(cell(1))).canonicalFilePath());
        QCOMPARE(sim::Json(watched.modes).dump(), cell(2).toStdString());
        close(fd);
    }

    void tellsWhyAPortDoesNotOpen_data()
    {
        rows({"RS422_2 | No such device", "RS232_2 | No such file or directory",
              "RS485_1 | Input/output error"}); // unknown, missing, not switched
    }
    void tellsWhyAPortDoesNotOpen()
    {
        watched.modeError = EIO;
        QFile::remove(nodePath("com2-232"_s));
        int fd = 0;
        const QByteArray told = printedBy([&] { fd = openDev(cell(0).toStdString()); }, stderr);
        QCOMPARE(fd, -1);
        QCOMPARE(told,
                 "{OpenDev} Err:Can't Open Serial Port\tErrStr:" + cell(1).toLatin1() + ".\n");
    }

    void setsTheSpeed()
    {
        const std::pair<int, speed_t> speeds[] = {
            {115200, B115200}, {38400, B38400}, {19200, B19200}, {9600, B9600}, {4800, B4800},
            {2400, B2400},     {1200, B1200},   {300, B300},     {57600, B50}};
        const int fd = openDev("RS232_1");
        int flushes = 0; // one for each that is looked at
        for (const auto &[baud, speed] : speeds) {
            termios line = {};
            tcgetattr(fd, &line);
            cfsetspeed(&line, B50);
            tcsetattr(fd, TCSANOW, &line);
            watched.flushes = 0;
            QCOMPARE(setSpeed(fd, baud), baud == 57600 ? -1 : 0);
            QCOMPARE(watched.flushes, std::min(++flushes, 8));
            tcgetattr(fd, &line);
            QVERIFY(cfgetispeed(&line) == speed && cfgetospeed(&line) == speed);
        }
        close(fd);
    }

    // data bits, stop bits, parity | sent | whether input parity is checked, as it was before
    void setsTheFraming_data()
    {
        rows({"8 0 0 | 8N1 | 0", "7 2 n | 7N2 | 0", "8 2 N | 8N2 | 0", "7 0 1 | 7O1 | 1",
              "8 0 O | 8O1 | 1", "8 2 o | 8O2 | 1", "7 0 2 | 7E1 | 1", "8 0 E | 8E1 | 1",
              "8 2 e | 8E2 | 1", "8 0 S | 8N1 | 1", "7 2 s | 7N2 | 1"});
    }
    void setsTheFraming()
    {
        const auto wanted = lineOf(cell(0));
        const int fd = openDev("RS232_1");
        termios line = {};
        tcgetattr(fd, &line);
        line.c_cflag |= CSTOPB | CRTSCTS | (cell(1)[1] == u'O' ? 0 : PARODD);
        line.c_iflag |= INPCK | ICRNL | IGNCR | INLCR | IXON | IXOFF | IXANY;
        line.c_lflag |= ICANON | ECHO | ECHOE | ISIG;
        line.c_oflag |= OPOST | ONLCR | OCRNL;
        tcsetattr(fd, TCSANOW, &line);
        watched.read = PARENB;
        QCOMPARE(setParity(fd, wanted[0], wanted[1], wanted[2]), 0);
        close(fd);
        const termios &set = watched.line;
        const char parity = (set.c_cflag & PARENB) == 0   ? 'N'
                            : (set.c_cflag & PARODD) != 0 ? 'O'
                                                          : 'E';
        QCOMPARE("%1%2%3"_s.arg((set.c_cflag & CSIZE) == CS8 ? 8 : 7)
                     .arg(QLatin1Char(parity))
                     .arg((set.c_cflag & CSTOPB) != 0 ? 2 : 1),
                 cell(1));
        QCOMPARE((set.c_iflag & INPCK) != 0, cell(2) == "1"_s);
        QCOMPARE(set.c_cflag & (CLOCAL | CREAD | CRTSCTS), tcflag_t(CLOCAL | CREAD));
        QCOMPARE(set.c_iflag & (ICRNL | IGNCR | INLCR | IXON | IXOFF | IXANY), 0U);
        QCOMPARE(set.c_lflag & (ICANON | ECHO | ECHOE | ISIG), 0U);
        QCOMPARE(set.c_oflag & (OPOST | ONLCR | OCRNL), 0U);
        QVERIFY(set.c_cc[VTIME] == 40 && set.c_cc[VMIN] == 0);
    }

    void tellsThatTheFramingIsRefused()
    {
        const int fd = openDev("RS232_1");
        watched.applyError = EIO;
        const QByteArray told = printedBy([&] { QCOMPARE(setParity(fd, 8, 0, 0), -1); }, stderr);
        QCOMPARE(told, QByteArray("{set_Parity} Err:SetupSerial 3\tErrStr:Input/output error.\n"));
        close(fd);
    }

    // The first alone fits.
    void closesBothIfAPortCannotBeSetUp_data()
    {
        rows({"0 2 9600 7 2 E", "1 1 9600 8 0 0", "2 0 9600 8 0 0", "0 0 57600 8 0 0",
              "0 0 9600 9 0 0", "0 0 9600 8 1 0", "0 0 9600 8 0 3", "0 0 9600 8 0 M"});
    }
    void closesBothIfAPortCannotBeSetUp()
    {
        const auto line = lineOf(cell(0));
        const bool fits = line[0] == 0 && line[1] == 2;
        const int given = open("/dev/null", O_RDONLY);
        const int opened = openFiles();
        int fd = given;
        QCOMPARE(openPort(given, fd, {line[0], line[1], line[2], line[3], line[4], line[5]}),
                 fits ? 0 : -1);
        QCOMPARE(fd >= 0, fits);
        QCOMPARE(openFiles(), opened + (fits ? 1 : -1));
        QCOMPARE(fcntl(given, F_GETFD) >= 0, fits);
        if (fits) {
            close(fd);
            close(given);
        }
    }

private:
    static QString nodePath(const QString &node)
    {
        return QString::fromStdString(panelPath("/dev/THAL/tty/")) + node;
    }
    static int openFiles()
    {
        return QDir("/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::System).size();
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(SerialLineTest)
#include "SerialLineTest.moc"
