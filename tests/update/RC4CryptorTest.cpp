// The cipher against RFC 6229, and whole files through it.
#include "update/RC4Cryptor.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

QByteArray keyStream(const QByteArray &key, int size)
{
    QByteArray zeros(size, '\0');
    RC4Cryptor(key.toStdString())
        .cryptBlock(reinterpret_cast<unsigned char *>(zeros.data()),
                    static_cast<std::size_t>(size));
    return zeros;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
}

} // namespace

class RC4CryptorTest : public QObject
{
    Q_OBJECT

private slots:
    // bits of the key | the key stream at 0, 1520 and 4096
    void keyStreamIsThePublishedOne_data()
    {
        rows({"40 | b2396305f03dc027ccc3524a0a1118a8 3294f744d8f9790507e70f62e5bbceea "
              "ff25b58995996707e51fbdf08b34d875",
              "80 | ede3b04643e586cc907dc21851709902 bdae85924b3cb1d0a2e33a30c6d79599 "
              "08b6be45124a43e2eb77953f84dc8553",
              "256 | eaa6bd25880bf93d3f5d1e4ca2611d91 40f250b26d1f096a4afd4c340a588815 "
              "f3e4c0a2e02d1d01f7f0a74618af2b48"});
    }
    void keyStreamIsThePublishedOne()
    {
        QByteArray key; // 01 02 03 ...
        for (int i = 1; i <= number(0) / 8; ++i)
            key += static_cast<char>(i);
        const QByteArray stream = keyStream(key, 4112);
        const QByteArrayList parts = {stream.mid(0, 16).toHex(), stream.mid(1520, 16).toHex(),
                                      stream.mid(4096, 16).toHex()};
        QCOMPARE(parts.join(' '), cell(1).toLatin1());
    }

    void eachBlockOfAFileStartsAgain()
    {
        const QByteArray block = keyStream(QByteArray::fromStdString(legacyProgramKey()), 1024);
        for (const int size : {0, 1, 1023, 1024, 1025, 2048, 65536, 65537, 131072 + 500}) {
            writeFile(at("source"), QByteArray(size, '\0'));
            writeFile(at("target"), QByteArray(200000, 'x'));
            QCOMPARE(decipherFile(bytesAt("source"), bytesAt("target")), 0);
            QCOMPARE(contentOf(at("target")), block.repeated(size / 1024 + 1).left(size));
        }
    }

    // source | target
    void refusesWhatIsNoFile_data()
    {
        rows({"nothing | target", "folder | target", "fifo | target", "source | folder",
              "source | fifo", "source | link", "source | nothing/target"});
    }
    void refusesWhatIsNoFile()
    {
        writeFile(at("source"), "text");
        writeFile(at("linked"), "text");
        QDir(m_folder.path()).mkdir("folder"_s);
        mkfifo(bytesAt("fifo").c_str(), 0600);
        QFile::link(at("linked"), at("link"));
        QCOMPARE(decipherFile(bytesAt(cell(0)), bytesAt(cell(1))), -1);
        QCOMPARE(contentOf(at("linked")), QByteArray("text"));
    }

    void theKeyDoesNotStandInTheProgram()
    {
        const std::string key = legacyProgramKey();
        QCOMPARE(key.find_first_not_of("0123456789"), std::string::npos);
        QCOMPARE(key.size(), std::size_t(10));
        QVERIFY(!contentOf("/proc/self/exe"_s).contains(key.c_str()));
    }

private:
    QString at(const QString &name) const { return m_folder.filePath(name); }
    QString at(const char *name) const { return at(QString::fromLatin1(name)); }
    template <typename Name>
    std::string bytesAt(Name name) const
    {
        return at(name).toStdString();
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(RC4CryptorTest)
#include "RC4CryptorTest.moc"
