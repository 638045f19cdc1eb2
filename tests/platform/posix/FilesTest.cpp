#include "platform/cos_file.h"
#include "platform/paths.h"

#include <QTemporaryDir>
#include <QtTest>

#include <clocale>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using COS::CosDir;
using COS::CosFile;

class FilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QCOMPARE(CosDir::MakeDir(at("directory")), 0);
        write("file", "old");
        write("source", "new");
        QCOMPARE(::mkfifo(at("pipe").c_str(), 0600), 0);
        QCOMPARE(::symlink("nowhere", at("dangling").c_str()), 0);
        QCOMPARE(::symlink("file", at("link").c_str()), 0);
    }

    void copiesWholeOrNotAtAll_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<int>("result");
        const QByteArray longest(255, 'n');
        QTest::newRow("new") << QByteArray("source") << QByteArray("copy") << 0;
        QTest::newRow("in new directories") << QByteArray("source") << QByteArray("a/b/c") << 0;
        QTest::newRow("over a file") << QByteArray("source") << QByteArray("file") << 0;
        QTest::newRow("over a link") << QByteArray("source") << QByteArray("link") << 0;
        QTest::newRow("over itself") << QByteArray("source") << QByteArray("source") << 0;
        QTest::newRow("longest name") << QByteArray("source") << longest << 0;
        QTest::newRow("hostile name") << QByteArray("source") << QByteArray("\xff\n*'$") << 0;
        QTest::newRow("nothing") << QByteArray("missing") << QByteArray("file") << -1;
        QTest::newRow("a directory") << QByteArray("directory") << QByteArray("file") << -1;
        QTest::newRow("a pipe") << QByteArray("pipe") << QByteArray("file") << -1;
        QTest::newRow("unreadable bytes")
            << QByteArray("/proc/self/mem") << QByteArray("file") << -1;
        QTest::newRow("below a file") << QByteArray("source") << QByteArray("file/x") << -2;
        QTest::newRow("over a directory") << QByteArray("source") << QByteArray("directory") << -3;
        QTest::newRow("name too long") << QByteArray("source") << longest + 'n' << -3;
        QTest::newRow("no name") << QByteArray("source") << QByteArray("directory/") << -3;
    }
    void copiesWholeOrNotAtAll()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(int, result);
        const std::string source = from.startsWith('/') ? from.toStdString() : at(from);
        QCOMPARE(CosFile::CopyWithMakeDir(source, at(to)), result);
        QCOMPARE(read("file"), result == 0 && to == "file" ? "new" : "old");
        if (result == 0)
            QCOMPARE(read(to), "new");
        std::vector<std::string> left;
        QCOMPARE(CosDir::ListDir(at(""), ".copy-*", left), 0);
        QCOMPARE(CosDir::ListDir(at("directory"), "*", left), 0);
    }

    void copiesBytesAndPermissions()
    {
        std::string bytes(200001, '\0');
        std::generate(bytes.begin(), bytes.end(), [n = 0]() mutable { return char(n++ % 251); });
        write("source", bytes);
        ::chmod(at("source").c_str(), 0444);
        QCOMPARE(CosFile::CopyWithMakeDir(at("source"), at("copy")), 0);
        QVERIFY(read("copy") == bytes);
        struct stat info
        {
        };
        QCOMPARE(::stat(at("copy").c_str(), &info), 0);
        QCOMPARE(info.st_mode & ACCESSPERMS, mode_t{0644});
    }

    void listsNamesAsBytes_data()
    {
        QTest::addColumn<QByteArray>("locale");
        QTest::addColumn<QByteArray>("pattern");
        QTest::addColumn<QByteArrayList>("names");
        const QByteArray longest = QByteArray(250, 'n') + ".long";
        for (const char *locale : {"C", "C.UTF-8"}) {
            const auto row = [&](const char *pattern, const QByteArrayList &names) {
                QTest::addRow("%s in %s", pattern, locale)
                    << QByteArray(locale) << QByteArray(pattern) << names;
            };
            row("*.*", {".hidden", "a\n.b", longest, "\xc3\xa9.txt", "\xff\xfe.txt"});
            row("*.txt", {"\xc3\xa9.txt", "\xff\xfe.txt"});
            row("[a-c]*", {"a\n.b", "b"});
            row("*.none", {});
            row("[", {});
        }
    }
    void listsNamesAsBytes()
    {
        QFETCH(QByteArray, locale);
        QFETCH(QByteArray, pattern);
        std::setlocale(LC_ALL, locale); // NOLINT(concurrency-mt-unsafe): one thread
        QCOMPARE(CosDir::MakeDir(at("list")), 0);
        for (const char *name : {"b", "\xff\xfe.txt", "a\n.b", ".hidden", "\xc3\xa9.txt"})
            write(QByteArray("list/") + name, "");
        write("list/" + QByteArray(250, 'n') + ".long", "");
        std::vector<std::string> names{"old"};
        const int count = CosDir::ListDir(at("list"), pattern.toStdString(), names);
        QByteArrayList got;
        std::transform(names.begin(), names.end(), std::back_inserter(got),
                       QByteArray::fromStdString);
        QTEST(got, "names");
        QCOMPARE(count, got.size());
    }

    void listsOnlyDirectories()
    {
        std::vector<std::string> names{"old"};
        QCOMPARE(CosDir::ListDir(at("file"), "*", names), -1);
        QCOMPARE(CosDir::ListDir(at("missing"), "*", names), -1);
        QVERIFY(names.empty());
    }

    void makesDirectories_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("result");
        QTest::newRow("several") << QByteArray("a/b/c") << 0;
        QTest::newRow("slashes") << QByteArray("a//b///") << 0;
        QTest::newRow("there already") << QByteArray("directory") << 0;
        QTest::newRow("a file is there") << QByteArray("file") << -1;
        QTest::newRow("a file is above") << QByteArray("file/a") << -1;
        QTest::newRow("a link to nothing") << QByteArray("dangling") << -1;
        QTest::newRow("name too long") << QByteArray(256, 'n') << -1;
    }
    void makesDirectories()
    {
        QFETCH(QByteArray, path);
        QFETCH(int, result);
        QCOMPARE(CosDir::MakeDir(at(path)), result);
        QCOMPARE(QFileInfo(QString::fromStdString(at(path))).isDir(), result == 0);
    }

    void noPathIsNoDirectory() { QCOMPARE(CosDir::MakeDir(std::string()), -1); }

    void severalMakeTheSameDirectory()
    {
        std::atomic<int> failures{0};
        std::array<std::thread, 4> threads;
        for (std::thread &thread : threads) {
            thread = std::thread([&] {
                for (int n = 0; n < 50; ++n)
                    failures += CosDir::MakeDir(at("race" + QByteArray::number(n) + "/a/b")) != 0;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(failures.load(), 0);
    }

    void knowsWhatExists()
    {
        for (const char *name : {"file", "directory", "pipe", "link"})
            QVERIFY2(CosFile::ExistFile(at(name)), name);
        for (const char *name : {"dangling", "missing", "file/x"})
            QVERIFY2(!CosFile::ExistFile(at(name)), name);
    }

    void rootStandsBeforeThePanelsPaths()
    {
        qunsetenv("SYSSET_ROOT");
        QCOMPARE(panelPath("/mnt/data"), std::string("/mnt/data"));
        qputenv("SYSSET_ROOT", "/some/where");
        QCOMPARE(panelPath("/mnt/data"), std::string("/some/where/mnt/data"));
    }

private:
    std::string at(const QByteArray &name) const
    {
        return m_folder->path().toStdString() + "/" + name.toStdString();
    }
    void write(const QByteArray &name, const std::string &bytes) const
    {
        std::ofstream(at(name), std::ios::binary) << bytes;
    }
    std::string read(const QByteArray &name) const
    {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(FilesTest)
#include "FilesTest.moc"
