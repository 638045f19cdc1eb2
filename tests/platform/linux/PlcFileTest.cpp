#include "platform/linux/PlcFile.h"

#include "tests/support/PanelRoot.h"
#include "tests/support/PlcSums.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <sys/stat.h>

using board::PlcFile;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// Files come from the maker's tool: what it makes is what a panel reads.
class PlcFileTest : public QObject
{
    Q_OBJECT

private slots:
    void holdsWhatTheToolWasGiven()
    {
        m_root.write("/a"_s, "a program");
        m_root.write("/b"_s, QByteArray("\1\2\0\4", 4));
        PlcFile file;
        QCOMPARE(file.read(made("--from a --parameters b --cam a --extension b --memory 5=1,65535 "
                                "--memory 65276=@b --password abc --upload-password @a --type 5 "
                                "--hide-subprograms --version 65535 --port 1 --mode 485 "
                                "--baud 9600 --parity E --stop-bits 2")),
                 0);
        const Plc5VDownLoadInfo &info = file.info();
        const SERIALCOMSET &line = info.serial;
        QVERIFY(line.nPort == 1 && line.nMode == 2 && line.nBaud == 9600);
        QVERIFY(line.nDataBits == 8 && line.nStopBits == 2 && line.nParity == 2);
        QVERIFY(info.bProgram && info.bPara && info.bMask && info.bMemory && info.bCam);
        QVERIFY(info.bDownLoadPasswd && info.bUpLoadProtect);
        const std::vector<std::uint8_t> bytes{1, 2, 0, 4};
        const std::string text = "a program";
        QVERIFY(info.program.size() == 1 && info.para.data == bytes);
        QVERIFY(info.program.front().data == std::vector<std::uint8_t>(text.begin(), text.end()));
        QVERIFY(info.cam.data == info.program.front().data && file.extension().data == bytes);
        QVERIFY(info.downLoadPasswd.sData == "abc" && info.upLoadPasswd.sData == text);
        const board::PlcModel model = board::plcModel(info.nVersion);
        QVERIFY(model.type == 5 && model.version == 65535);
        const devmemorydataitem_t &first = info.memory.front();
        const devmemorydataitem_t &last = info.memory.back();
        QVERIFY(info.memory.size() == 2 && first.nAddress == 5 && last.nAddress == 65276);
        QVERIFY(first.values == std::vector<std::uint16_t>({1, 65535}));
        QVERIFY(last.values == std::vector<std::uint16_t>({0x0201, 0x0400}));
    }

    // Bytes from an offset on, or the length left; "+" with checksums made right | result | fault.
    // Sections begin at 32 (password), 47 (program of 300 bytes) and 359 (memory).
    void tellsWhatIsWrong_data()
    {
        rows({"+ | 0",
              "size=7 | -3",
              "size=0 | -3",
              "3=4d | -3",
              "size=31 | -2 | in its header",
              "8=02+ | -2 | version 2",
              "20=ff | -2 | header's checksum",
              "16=02+ | -2 | value of the header",
              "25=80+ | -2 | value of the header",
              "23=ff+ | -2 | value of the header",
              "15=04+ | -2 | section 4 is cut off",
              "15=02+ | -2 | goes on",
              "size=378+ | -2 | section 3 is cut off",
              "size=365+ | -2 | section 3 is cut off",
              "54=ff+ | -2 | section 2 is cut off",
              "100=ff | -2 | checksum of section 2",
              "47=04 | -2 | checksum of section 2",
              "47=01+ | -2 | kind 1 is",
              "47=63+ | -2 | kind 99 is",
              "49=01+ | -2 | kind 3 is",
              "36=00+ | -2 | kind 1 is",
              "371=fdfe+ | 0",
              "371=fefe+ | -2 | kind 5 is"});
    }
    void tellsWhatIsWrong()
    {
        QByteArray content =
            contentOf(QString::fromStdString(made("--size 300 --password abc --memory 5=1,2,3")));
        QCOMPARE(content.size(), 379);
        const QString change = cell(0).section(u'+', 0, 0);
        const QString value = change.section(u'=', 1);
        if (change.startsWith("size"_s))
            content.truncate(value.toInt());
        else if (!change.isEmpty())
            content.replace(change.section(u'=', 0, 0).toInt(), value.size() / 2,
                            QByteArray::fromHex(value.toLatin1()));
        std::vector<std::uint8_t> bytes(content.begin(), content.end());
        if (cell(0).endsWith(u'+'))
            plc_sums::mend(bytes);
        PlcFile file;
        QCOMPARE(file.parse(bytes), number(1));
        QVERIFY2(file.fault().find(cellOrEmpty(2).toStdString()) != std::string::npos,
                 file.fault().c_str());
    }

    void refusesWhatIsNoFile()
    {
        mkfifo((m_root.path() + "/fifo"_s).toLocal8Bit(), 0600);
        for (const QString &name : {"/nothing"_s, "/fifo"_s, ""_s}) {
            PlcFile file;
            QCOMPARE(file.read((m_root.path() + name).toStdString()), -1);
        }
        m_root.write("/large"_s, contentOf(QString::fromStdString(made("--size 1048576"))) +
                                     QByteArray(2 << 20, '\0'));
        PlcFile file;
        QCOMPARE(file.read((m_root.path() + "/large"_s).toStdString()), -2);
    }

    // What the tool refuses to make: a panel would refuse it too.
    void toolKeepsTheLimits_data()
    {
        rows({"--size 1048577", "--size 0", "--memory 65279=1,2",
              "--memory 1=", "--port 1 --mode 422", "--parity S", "--data-bits 7", "--baud 14400",
              "--password 123456789012345678901234567890123", "--older --size 5 --type 1",
              "--older"});
    }
    void toolKeepsTheLimits() { QVERIFY(make(cell(0)) != 0); }

private:
    int make(const QString &options) const
    {
        QProcess tool;
        tool.setWorkingDirectory(m_root.path());
        tool.start("/usr/bin/python3"_s, QStringList(TOOLS_FOLDER "/make-plc-program"_s) +
                                             options.split(u' ') + QStringList("plc.bin"_s));
        return tool.waitForFinished() ? tool.exitCode() : -1;
    }
    std::string made(const char *options) const
    {
        return make(QString::fromLatin1(options)) == 0
                   ? (m_root.path() + "/plc.bin"_s).toStdString()
                   : std::string();
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(PlcFileTest)
#include "PlcFileTest.moc"
