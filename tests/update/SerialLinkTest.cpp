// Choice and setting-up of a serial port, on the pseudo-terminals of the simulated panel. What a
// pseudo-terminal does not keep (framing) or has not (the mode switch) is watched at the call.
#include "update/SerialLink.h"

#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "update/Progress.h"

#include <QFileInfo>
#include <QTemporaryFile>
#include <QTest>

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace {

constexpr unsigned long MODE_REQUEST = 0x40047701;

struct Watched
{
    QList<int> modes; // asked for
    int modeError = ENOTTY;
    int flushes = 0;
    termios line = {}; // last applied
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

extern "C" int tcsetattr(int fd, int when, const termios *line) noexcept
{
    watched.line = *line;
    if (watched.applyError != 0 || when != TCSANOW)
        return failWith(EIO);
    return next<int(int, int, const termios *)>("tcsetattr")(fd, when, line);
}

class SerialLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        watched = Watched();
        sim::panel().serialPlc().start();
    }
    void cleanup() { sim::panel().reset(); }

    void opensTheNodeOfAName_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QList<int>>("modes");

        QTest::newRow("RS232_1") << "com1-232" << QList<int>();
        QTest::newRow("RS422_1") << "com1-422" << QList<int>{1};
        QTest::newRow("RS485_1") << "com1-422" << QList<int>{0};
        QTest::newRow("RS232_2") << "com2-232" << QList<int>();
        QTest::newRow("RS485_2") << "com2-485" << QList<int>();
    }
    void opensTheNodeOfAName()
    {
        QFETCH(QString, node);
        const int fd = openDev(QTest::currentDataTag());
        QVERIFY(fd >= 0);
        QCOMPARE(QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(fd)).canonicalFilePath(),
                 QFileInfo(nodePath(node)).canonicalFilePath());
        QTEST(watched.modes, "modes");
        close(fd);
    }

    void tellsWhyAPortDoesNotOpen_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("modeError");
        QTest::addColumn<QByteArray>("reason");

        QTest::newRow("unknown") << QByteArray("RS422_2") << 0 << QByteArray("No such device");
        QTest::newRow("missing") << QByteArray("RS232_2") << 0
                                 << QByteArray("No such file or directory");
        QTest::newRow("not switched")
            << QByteArray("RS485_1") << EIO << QByteArray("Input/output error");
    }
    void tellsWhyAPortDoesNotOpen()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, reason);
        QFETCH(int, modeError);
        watched.modeError = modeError;
        QFile::remove(nodePath(QStringLiteral("com2-232")));
        int fd = 0;
        const QByteArray told = printedBy([&] { fd = openDev(name.toStdString()); }, stderr);
        QCOMPARE(fd, -1);
        QCOMPARE(told, "{OpenDev} Err:Can't Open Serial Port\tErrStr:" + reason + ".\n");
    }

    void setsTheSpeed_data()
    {
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("flushes");
        QTest::addColumn<quint32>("speed");

        QTest::newRow("115200") << 0 << 1 << quint32(B115200);
        QTest::newRow("38400") << 0 << 2 << quint32(B38400);
        QTest::newRow("19200") << 0 << 3 << quint32(B19200);
        QTest::newRow("9600") << 0 << 4 << quint32(B9600);
        QTest::newRow("4800") << 0 << 5 << quint32(B4800);
        QTest::newRow("2400") << 0 << 6 << quint32(B2400);
        QTest::newRow("1200") << 0 << 7 << quint32(B1200);
        QTest::newRow("300") << 0 << 8 << quint32(B300);
        QTest::newRow("57600") << -1 << 8 << quint32(B50);
    }
    void setsTheSpeed()
    {
        const int fd = openDev("RS232_1");
        termios line = {};
        tcgetattr(fd, &line);
        cfsetspeed(&line, B50);
        tcsetattr(fd, TCSANOW, &line);
        QTEST(setSpeed(fd, QByteArray(QTest::currentDataTag()).toInt()), "result");
        QTEST(watched.flushes, "flushes");
        tcgetattr(fd, &line);
        QTEST(quint32(cfgetispeed(&line)), "speed");
        QTEST(quint32(cfgetospeed(&line)), "speed");
        close(fd);
    }

    void setsTheFraming_data()
    {
        QTest::addColumn<int>("dataBits");
        QTest::addColumn<int>("stopBits");
        QTest::addColumn<int>("parity");
        QTest::addColumn<quint32>("control"); // size, parity and stop bits
        QTest::addColumn<bool>("checks");     // input parity

        const auto row = [](const char *name, int data, int stop, int parity, quint32 control,
                            bool checks) {
            QTest::newRow(name) << data << stop << parity << control << checks;
        };
        const auto stays = PARODD; // where no parity is sent, its kind stays as it was
        row("8N1", 8, 0, 0, CS8 | stays, false);
        row("7n2", 7, 2, 'n', CS7 | CSTOPB | stays, false);
        row("8N2", 8, 2, 'N', CS8 | CSTOPB | stays, false);
        row("7O1", 7, 0, 1, CS7 | PARENB | PARODD, true);
        row("8O1", 8, 0, 'O', CS8 | PARENB | PARODD, true);
        row("8o2", 8, 2, 'o', CS8 | PARENB | PARODD | CSTOPB, true);
        row("7E1", 7, 0, 2, CS7 | PARENB, true);
        row("8E1", 8, 0, 'E', CS8 | PARENB, true);
        row("8e2", 8, 2, 'e', CS8 | PARENB | CSTOPB, true);
        row("8S1", 8, 0, 'S', CS8 | stays, true);
        row("7s2", 7, 2, 's', CS7 | CSTOPB | stays, true);
    }
    void setsTheFraming()
    {
        QFETCH(int, dataBits);
        QFETCH(int, stopBits);
        QFETCH(int, parity);
        const int fd = openDev("RS232_1");
        termios line = {};
        tcgetattr(fd, &line);
        line.c_cflag |= PARODD | CSTOPB | CRTSCTS;
        line.c_iflag |= INPCK | ICRNL | IGNCR | INLCR | IXON | IXOFF | IXANY;
        line.c_lflag |= ICANON | ECHO | ECHOE | ISIG;
        line.c_oflag |= OPOST | ONLCR | OCRNL;
        tcsetattr(fd, TCSANOW, &line);
        QCOMPARE(setParity(fd, dataBits, stopBits, parity), 0);
        close(fd);
        const termios &set = watched.line;
        QTEST(quint32(set.c_cflag & (CSIZE | PARENB | PARODD | CSTOPB)), "control");
        QTEST((set.c_iflag & INPCK) != 0, "checks");
        QCOMPARE(set.c_cflag & (CLOCAL | CREAD | CRTSCTS), tcflag_t(CLOCAL | CREAD));
        QCOMPARE(set.c_iflag & (ICRNL | IGNCR | INLCR | IXON | IXOFF | IXANY), 0U);
        QCOMPARE(set.c_lflag & (ICANON | ECHO | ECHOE | ISIG), 0U);
        QCOMPARE(set.c_oflag & (OPOST | ONLCR | OCRNL), 0U);
        QCOMPARE(int(set.c_cc[VTIME]), 40);
        QCOMPARE(int(set.c_cc[VMIN]), 0);
    }

    void tellsThatTheFramingIsRefused()
    {
        const int fd = openDev("RS232_1");
        watched.applyError = EIO;
        const QByteArray told = printedBy([&] { QCOMPARE(setParity(fd, 8, 0, 0), -1); }, stderr);
        QCOMPARE(told, QByteArray("{set_Parity} Err:SetupSerial 3\tErrStr:Input/output error.\n"));
        close(fd);
    }

    void closesBothIfAPortCannotBeSetUp_data()
    {
        QTest::addColumn<QVector<int>>("line"); // port, mode, baud, data bits, stop bits, parity
        QTest::addColumn<int>("result");

        QTest::newRow("fits") << QVector<int>{0, 2, 9600, 7, 2, 'E'} << 0;
        QTest::newRow("second port RS-422") << QVector<int>{1, 1, 9600, 8, 0, 0} << -1;
        QTest::newRow("third port") << QVector<int>{2, 0, 9600, 8, 0, 0} << -1;
        QTest::newRow("57600") << QVector<int>{0, 0, 57600, 8, 0, 0} << -1;
        QTest::newRow("nine data bits") << QVector<int>{0, 0, 9600, 9, 0, 0} << -1;
        QTest::newRow("stop bits 1") << QVector<int>{0, 0, 9600, 8, 1, 0} << -1;
        QTest::newRow("parity 3") << QVector<int>{0, 0, 9600, 8, 0, 3} << -1;
        QTest::newRow("parity M") << QVector<int>{0, 0, 9600, 8, 0, 'M'} << -1;
    }
    void closesBothIfAPortCannotBeSetUp()
    {
        QFETCH(QVector<int>, line);
        const int given = open("/dev/null", O_RDONLY);
        const int opened = openFiles();
        int fd = given;
        QTEST(openPort(given, fd, {line[0], line[1], line[2], line[3], line[4], line[5]}),
              "result");
        QCOMPARE(fd >= 0, QTest::currentDataTag() == QByteArray("fits"));
        QCOMPARE(openFiles(), opened + (fd >= 0 ? 1 : -1));
        QCOMPARE(fcntl(given, F_GETFD) >= 0, fd >= 0);
        if (fd >= 0) {
            close(fd);
            close(given);
        }
    }

    void knowsAProgramFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("printed");
        QTest::addColumn<int>("result");

        QTest::newRow("program") << QByteArray("\x57\xA2\x33\x01 and more", 13)
                                 << QByteArray("ntotalpos = 13\r\n20161111** = 20161111\r\n") << 0;
        QTest::newRow("other") << QByteArray("\x57\xA2\x33\x02", 4)
                               << QByteArray("ntotalpos = 4\r\n20161111** = 36938327\r\n") << -1;
        QTest::newRow("short") << QByteArray("\x57\xA2\x33", 3) << QByteArray("ntotalpos = 3\r\n")
                               << -1;
    }
    void knowsAProgramFile()
    {
        QFETCH(QByteArray, content);
        QTemporaryFile file;
        file.open();
        file.write(content);
        file.flush();
        int result = 1;
        const QByteArray printed = printedBy([&] { result = checkHeader(file.handle()); });
        QTEST(result, "result");
        QTEST(printed, "printed");
        QCOMPARE(g_Progress.nTotal.load(), content.size());
    }

private:
    static QString nodePath(const QString &node)
    {
        return QString::fromStdString(panelPath("/dev/THAL/tty/")) + node;
    }
    static int openFiles()
    {
        return QDir(QStringLiteral("/proc/self/fd"))
            .entryList(QDir::NoDotAndDotDot | QDir::System)
            .size();
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(SerialLinkTest)
#include "SerialLinkTest.moc"
