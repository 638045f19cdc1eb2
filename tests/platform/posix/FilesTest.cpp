#include "platform/cos_file.h"

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
using namespace std::string_literals;

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

    void copiesWholeOrNotAtAll()
    {
        const QByteArray longest(255, 'n');
        const struct
        {
            const char *why;
            QByteArray from, to;
            int result;
        } cases[] = {
            {"in new directories", "source", "a/b/c", 0},
            {"over a file", "source", "file", 0},
            {"over a link", "source", "link", 0},
            {"over itself", "source", "source", 0},
            {"longest name", "source", longest, 0},
            {"hostile name", "source", "\xff\n*'$", 0},
            {"nothing", "missing", "file", -1},
            {"a directory", "directory", "file", -1},
            {"a pipe", "pipe", "file", -1},
            {"unreadable bytes", "/proc/self/mem", "file", -1},
            {"below a file", "source", "file/x", -2},
            {"over a directory", "source", "directory", -3},
            {"name too long", "source", longest + 'n', -3},
            {"no name", "source", "directory/", -3},
        };
        for (const auto &[why, from, to, result] : cases) {
            init();
            const std::string source = from.startsWith('/') ? from.toStdString() : at(from);
            QVERIFY2(CosFile::CopyWithMakeDir(source, at(to)) == result, why);
            QVERIFY2(read("file") == (result == 0 && to == "file" ? "new" : "old"), why);
            QVERIFY2(result != 0 || read(to) == "new", why);
            std::vector<std::string> left;
            QVERIFY2(CosDir::ListDir(at(""), ".copy-*", left) == 0, why);
            QVERIFY2(CosDir::ListDir(at("directory"), "*", left) == 0, why);
        }
    }

    void copiesBytesAndPermissions()
    {
        std::string bytes(200001, '\0');
        std::generate(bytes.begin(), bytes.end(), [n = 0]() mutable { return char(n++ % 251); });
        write("source", bytes);
        ::chmod(at("source").c_str(), 0444);
        QCOMPARE(CosFile::CopyWithMakeDir(at("source"), at("copy")), 0);
        QVERIFY(read("copy") == bytes);
        struct stat info = {};
        QCOMPARE(::stat(at("copy").c_str(), &info), 0);
        QCOMPARE(info.st_mode & ACCESSPERMS, mode_t{0644});
    }

    void listsNamesAsBytes()
    {
        const std::string longName = std::string(250, 'n') + ".long";
        const std::pair<const char *, std::vector<std::string>> cases[] = {
            {"*.*", {".hidden", "a\n.b", longName, "\xff\xfe.txt"}},
            {"*.txt", {"\xff\xfe.txt"}},
            {"[a-c]*", {"a\n.b", "b"}},
            {"[", {}},
        };
        QCOMPARE(CosDir::MakeDir(at("list")), 0);
        for (const std::string &name : {"b"s, "\xff\xfe.txt"s, "a\n.b"s, ".hidden"s, longName})
            write("list/" + QByteArray::fromStdString(name), "");
        for (const char *locale : {"C", "C.UTF-8"}) {
            std::setlocale(LC_ALL, locale); // NOLINT(concurrency-mt-unsafe): one thread
            for (const auto &[pattern, expected] : cases) {
                std::vector<std::string> names{"old"};
                const int count = CosDir::ListDir(at("list"), pattern, names);
                QVERIFY2(names == expected && count == int(expected.size()), pattern);
                QCOMPARE(CosDir::ListDir(at("file"), "*", names), -1);
                QVERIFY(names.empty());
            }
        }
    }

    void makesDirectories()
    {
        for (const char *path : {"a/b/c", "a//b///", "directory"})
            QVERIFY2(CosDir::MakeDir(at(path)) == 0 && isDirectory(path), path);
        for (const QByteArray &path : {QByteArray("file"), QByteArray("file/a"),
                                       QByteArray("dangling"), QByteArray(256, 'n')})
            QVERIFY2(CosDir::MakeDir(at(path)) == -1 && !isDirectory(path), path);
        QCOMPARE(CosDir::MakeDir(std::string()), -1);
    }

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

private:
    std::string at(const QByteArray &name) const
    {
        return m_folder->path().toStdString() + "/" + name.toStdString();
    }
    bool isDirectory(const QByteArray &name) const
    {
        return QFileInfo(QString::fromStdString(at(name))).isDir();
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
