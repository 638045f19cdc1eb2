#include "platform/cos_file.h"
#include "platform/paths.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"

#include <clocale>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <sys/stat.h>

using COS::CosDir;
using COS::CosFile;
using namespace std::string_literals;
namespace fs = std::filesystem;

namespace {

const std::string LONGEST = std::string(250, 'n') + ".long";
// Longer than the blocks of a copy, which are of another size than what repeats.
const std::string NEW = QByteArray("new\0bytes", 9).repeated(22223).toStdString();

// Of a cell of a table.
std::string bytesOf(const QString &text)
{
    return text.toLatin1().replace("LONGEST", LONGEST.c_str()).toStdString();
}

} // namespace

class FilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.clear();
        QCOMPARE(CosDir::MakeDir(at("directory")), 0);
        write("file", "old");
        write("source", NEW);
        fs::permissions(at("source"), fs::perms(0444));
        QCOMPARE(::mkfifo(at("pipe").c_str(), 0600), 0);
        fs::create_symlink("nowhere", at("dangling"));
        fs::create_symlink("file", at("link"));
    }

    // from | to | result; bytes as Latin-1
    void copiesWholeOrNotAtAll_data()
    {
        rows({"source | a/b/c | 0", "source | file | 0", "source | link | 0", "source | source | 0",
              "source | LONGEST | 0", "source | ÿ\n*'$ | 0", "missing | file | -1",
              "directory | file | -1", "pipe | file | -1",
              "/proc/self/mem | file | -1", // opens, but cannot be read
              "source | file/x | -2", "source | directory | -3", "source | LONGESTn | -3",
              "source | directory/ | -3"});
    }
    void copiesWholeOrNotAtAll()
    {
        const std::string from = cell(0).toStdString();
        const std::string to = bytesOf(cell(1));
        QCOMPARE(CosFile::CopyWithMakeDir(from[0] == '/' ? from : at(from), at(to)), number(2));
        QVERIFY(read("file") == (number(2) == 0 && to == "file" ? NEW : "old"));
        QVERIFY(number(2) != 0 ||
                (read(to) == NEW && fs::status(at(to)).permissions() == fs::perms(0644)));
        std::vector<std::string> left;
        QCOMPARE(CosDir::ListDir(at(""), ".copy-*", left), 0);
        QCOMPARE(CosDir::ListDir(at("directory"), "*", left), 0);
    }

    // pattern | names in their order, bytes as Latin-1
    void listsNamesAsBytes_data()
    {
        rows({"*.* | .hidden a\n.b LONGEST ÿþ.txt", "*.txt | ÿþ.txt", "[a-c]* | a\n.b b", "["});
    }
    void listsNamesAsBytes()
    {
        std::vector<std::string> expected;
        for (const QString &name : cellOrEmpty(1).split(u' ', Qt::SkipEmptyParts))
            expected.push_back(bytesOf(name));
        QCOMPARE(CosDir::MakeDir(at("list")), 0);
        for (const char *name : {"b", "\xff\xfe.txt", "a\n.b", ".hidden"})
            write("list/"s + name, "");
        write("list/" + LONGEST, "");
        for (const char *locale : {"C", "C.UTF-8"}) {
            std::setlocale(LC_ALL, locale); // NOLINT(concurrency-mt-unsafe): one thread
            std::vector<std::string> names{"old"};
            QCOMPARE(CosDir::ListDir(at("list"), cell(0).toStdString(), names),
                     int(expected.size()));
            QVERIFY(names == expected);
            QCOMPARE(CosDir::ListDir(at("file"), "*", names), -1);
            QVERIFY(names.empty());
        }
    }

    void makesDirectories()
    {
        for (const char *path : {"a/b/c", "a//b///", "directory"})
            QVERIFY2(CosDir::MakeDir(at(path)) == 0 && fs::is_directory(at(path)), path);
        for (const std::string &path : {"file"s, "file/a"s, "dangling"s, std::string(256, 'n')})
            QVERIFY2(CosDir::MakeDir(at(path)) == -1, path.c_str());
        QCOMPARE(CosDir::MakeDir(std::string()), -1);
    }

    void severalMakeTheSameDirectory()
    {
        const auto make = [] {
            int failures = 0;
            for (int n = 0; n < 1000; ++n)
                failures += CosDir::MakeDir(at("race" + std::to_string(n) + "/a/b")) != 0;
            return failures;
        };
        std::array<std::future<int>, 4> makers;
        for (std::future<int> &maker : makers)
            maker = std::async(std::launch::async, make);
        for (std::future<int> &maker : makers)
            QCOMPARE(maker.get(), 0);
    }

    void knowsWhatExists()
    {
        for (const char *name : {"file", "directory", "pipe", "link"})
            QVERIFY2(CosFile::ExistFile(at(name)), name);
        for (const char *name : {"dangling", "missing", "file/x"})
            QVERIFY2(!CosFile::ExistFile(at(name)), name);
    }

private:
    static std::string at(const std::string &name) { return panelPath("/" + name); }
    static void write(const std::string &name, const std::string &bytes)
    {
        std::ofstream(at(name), std::ios::binary) << bytes;
    }
    static std::string read(const std::string &name)
    {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(FilesTest)
#include "FilesTest.moc"
