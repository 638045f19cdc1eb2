// The cipher against RFC 6229, and whole files through it.
#include "update/RC4Cryptor.h"

#include "tests/support/Text.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

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
    void keyStreamIsThePublishedOne_data()
    {
        QTest::addColumn<QByteArray>("at0");
        QTest::addColumn<QByteArray>("at1520");
        QTest::addColumn<QByteArray>("at4096");

        const auto row = [](const char *bits, const char *at0, const char *at1520,
                            const char *at4096) {
            QTest::newRow(bits) << QByteArray(at0) << QByteArray(at1520) << QByteArray(at4096);
        };
        row("40", "b2396305f03dc027ccc3524a0a1118a8", "3294f744d8f9790507e70f62e5bbceea",
            "ff25b58995996707e51fbdf08b34d875");
        row("56", "293f02d47f37c9b633f2af5285feb46b", "d2aa902bd42d0d7cfd340cd45810529f",
            "e74b0b9731227fd37c0ec08a47ddd8b8");
        row("64", "97ab8a1bf0afb96132f2f67258da15a8", "1fe8986713f07c3d9ae1c163ff8cf9d3",
            "3fb46e2c8f0f068edce8cdcd7dfc5862");
        row("80", "ede3b04643e586cc907dc21851709902", "bdae85924b3cb1d0a2e33a30c6d79599",
            "08b6be45124a43e2eb77953f84dc8553");
        row("128", "9ac7cc9a609d1ef7b2932899cde41b97", "b40110c4190b5622a96116b0017ed297",
            "a36a4c301ae8ac13610ccbc12256cacc");
        row("192", "0595e57fe5f0bb3c706edac8a4b2db11", "96c248610aadedfeaf8978c03de8205a",
            "3cb0f3b5020a98b82af9fe154484a168");
        row("256", "eaa6bd25880bf93d3f5d1e4ca2611d91", "40f250b26d1f096a4afd4c340a588815",
            "f3e4c0a2e02d1d01f7f0a74618af2b48");
    }
    void keyStreamIsThePublishedOne()
    {
        QByteArray key; // 01 02 03 ...
        for (int i = 1; i <= QByteArray(QTest::currentDataTag()).toInt() / 8; ++i)
            key += static_cast<char>(i);
        const QByteArray stream = keyStream(key, 4112);
        QTEST(stream.mid(0, 16).toHex(), "at0");
        QTEST(stream.mid(1520, 16).toHex(), "at1520");
        QTEST(stream.mid(4096, 16).toHex(), "at4096");
    }

    void eachBlockOfAFileStartsAgain_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 1023, 1024, 1025, 2048, 65536, 65537, 131072 + 500})
            QTest::addRow("%d", size) << size;
    }
    void eachBlockOfAFileStartsAgain()
    {
        QFETCH(int, size);
        writeFile(at("source"), QByteArray(size, '\0'));
        writeFile(at("target"), QByteArray(200000, 'x'));
        QCOMPARE(decipherFile(bytesAt("source"), bytesAt("target")), 0);
        const QByteArray block = keyStream(QByteArray::fromStdString(legacyProgramKey()), 1024);
        QCOMPARE(contentOf(at("target")), block.repeated(size / 1024 + 1).left(size));
    }

    void refusesWhatIsNoFile_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");

        QTest::newRow("missing") << "nothing"
                                 << "target";
        QTest::newRow("directory") << "folder"
                                   << "target";
        QTest::newRow("FIFO") << "fifo"
                              << "target";
        QTest::newRow("into a directory") << "source"
                                          << "folder";
        QTest::newRow("into a FIFO") << "source"
                                     << "fifo";
        QTest::newRow("into a link") << "source"
                                     << "link";
        QTest::newRow("into no directory") << "source"
                                           << "nothing/target";
    }
    void refusesWhatIsNoFile()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        writeFile(at("source"), "text");
        writeFile(at("linked"), "text");
        QDir(m_folder.path()).mkdir("folder"_s);
        mkfifo(bytesAt("fifo").c_str(), 0600);
        QFile::link(at("linked"), at("link"));
        QCOMPARE(decipherFile(bytesAt(source), bytesAt(target)), -1);
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
