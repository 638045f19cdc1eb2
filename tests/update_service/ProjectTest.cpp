// What is taken of a stick, and what it leaves on the disk.
#include "services/update/Project.h"

#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QProcess>
#include <QTest>

#include <filesystem>

using namespace updates;

namespace {

const auto GOES_ON = [](std::uint64_t) { return true; };

} // namespace

class ProjectTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QStringList arguments{MAKE_FILES, m_files.path()};
        QCOMPARE(QProcess::execute("/usr/bin/python3"_s, arguments), 0);
        m_settings.keyring = file("keys/update-keys.pem").toStdString();
    }
    void init()
    {
        m_root.clear();
        m_root.write("/etc/os-release"_s, "NAME=x\nIMAGE_VERSION=\"100\"\n");
        m_root.write("/mnt/data/prj/LangugeSet.cof"_s, "ours");
        m_root.write("/mnt/data/prj/old"_s, "old");
    }

    // name | error of the check
    void refusedByItsBeginning_data()
    {
        rows({"unsigned | -1", "stranger | -1", "logo | -1", "other version | -1",
              "other signature | -1", "cut | -1", "longer | -1", "cut, told so | -1", "newer | -9",
              "header | -1", "empty | -1", "noise | -1", "not there | -1"});
    }
    void refusedByItsBeginning()
    {
        const Checked checked = checkProject(project(cell(0)), m_settings);
        QCOMPARE(checked.error, number(1));
        QVERIFY(!checked.why.empty());
        const bool isNamed =
            !QStringList{"cut"_s, "longer"_s, "empty"_s, "noise"_s, "not there"_s}.contains(
                cell(0));
        QCOMPARE(checked.model, std::string(isNamed ? "KV070T" : ""));
    }

    // Signed by the right one all the same.
    void refusedByItsContent_data()
    {
        rows({"tampered", "no archive", "climbs", "absolute", "before its folder", "twice",
              "long name", "link", "hard link", "device", "pipe", "more files", "fewer files",
              "bomb", "smaller"});
    }
    void refusedByItsContent()
    {
        const Checked checked = checkProject(project(cell(0)), m_settings);
        QCOMPARE(checked.error, 0);
        std::string why;
        QCOMPARE(installProject(checked, GOES_ON, why), -1);
        QVERIFY(!why.empty());
        QCOMPARE(tree(), "prj prj/LangugeSet.cof=ours prj/old=old"_s);
    }

    void takesThePlaceOfTheOneBefore_data() { rows({"good | yes", "unsigned | yes", "gz | no"}); }
    void takesThePlaceOfTheOneBefore()
    {
        Settings settings = m_settings;
        settings.mayBeUnsigned = cell(0) == "unsigned"_s;
        const Checked checked = checkProject(project(cell(0)), settings);
        QCOMPARE(QString::fromStdString(checked.why), QString());
        std::uint64_t last = 0;
        std::string why;
        const auto goesOn = [&](std::uint64_t bytes) {
            const bool isMore = bytes >= last;
            last = bytes;
            return isMore;
        };
        QCOMPARE(installProject(checked, goesOn, why), 0);
        const QString big = cell(1) == "yes"_s
                                ? "prj/big prj/cloud prj/cloud/cloud.xml=<cloud/> prj/空=x"_s
                                : "prj/a=x"_s;
        QCOMPARE(tree(),
                 "prj prj/.project=version=5 model=KV070T prj/LangugeSet.cof=ours "_s + big);
    }

    void firstOneOnAPanel()
    {
        std::filesystem::remove_all(m_root.path().toStdString() + "/mnt/data/prj");
        std::string why;
        QCOMPARE(installProject(checkProject(project("xz"_s), m_settings), GOES_ON, why), 0);
        QCOMPARE(tree(), "prj prj/.project=version=5 model=KV070T prj/a=x"_s);
    }

    void whatIsCutShortIsRemoved()
    {
        int calls = 0;
        std::string why;
        const auto stops = [&](std::uint64_t) { return ++calls < 3; };
        QCOMPARE(installProject(checkProject(project("good"_s), m_settings), stops, why), -2);
        QCOMPARE(tree(), "prj prj/LangugeSet.cof=ours prj/old=old"_s);
        m_root.write("/mnt/data/.prj.new/half"_s, "x");
        m_root.write("/mnt/data/.logo.new/half"_s, "x");
        removeLeftovers();
        QCOMPARE(tree(), "prj prj/LangugeSet.cof=ours prj/old=old"_s);
    }

    // The stick has become another one since; what is open is installed, or nothing.
    void anotherFileOfThatName()
    {
        const QString copy = file("copy.tmt3");
        QVERIFY(QFile::copy(file("good.tmt3"), copy));
        const Checked checked = checkProject(copy.toStdString(), m_settings);
        QVERIFY(QFile::resize(copy, 100000));
        std::string why;
        QCOMPARE(installProject(checked, GOES_ON, why), -1);
        QCOMPARE(tree(), "prj prj/LangugeSet.cof=ours prj/old=old"_s);
    }

private:
    QString file(const char *name) const { return m_files.path() + u'/' + QLatin1String(name); }
    std::string project(const QString &name) const
    {
        return (m_files.path() + u'/' + name + ".tmt3"_s).toStdString();
    }
    // Everything below /mnt/data, sorted; small files with what is in them.
    QString tree() const
    {
        namespace fs = std::filesystem;
        const fs::path data = m_root.path().toStdString() + "/mnt/data";
        QStringList found;
        for (const auto &each : fs::recursive_directory_iterator(data)) {
            QString line = QString::fromStdString(each.path().lexically_relative(data));
            QFile content(QString::fromStdString(each.path()));
            if (each.is_regular_file() && each.file_size() < 100 &&
                content.open(QIODevice::ReadOnly))
                line += u'=' + QString::fromUtf8(content.readAll()).simplified();
            found += line;
        }
        found.sort();
        return found.join(u' ');
    }

    PanelRoot m_root;
    QTemporaryDir m_files;
    Settings m_settings{"KV070T", {}, false, {}};
};

QTEST_GUILESS_MAIN(ProjectTest)
#include "ProjectTest.moc"
