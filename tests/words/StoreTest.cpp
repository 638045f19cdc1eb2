#include "services/words/Store.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <filesystem>

namespace fs = std::filesystem;
using words::Store;
using words::Values;

class StoreTest : public QObject
{
    Q_OBJECT

private slots:
    // Generation 1 is in words.1, 2 in words.0. What befalls the files, the generation that is read
    // then, and the files that are put aside.
    void readsTheLatestWhole_data()
    {
        rows({
            "true | 2 | 0", ": >words.0 | 1 | 1", "truncate -s 40 words.0 | 1 | 1",
            "truncate -s 0 words.0; truncate -s 90 words.0 | 1 | 1",
            "echo 10591 9 >>words.0 | 1 | 1", "rm words.0 | 1 | 0",
            "rm words.0; mkdir words.0 | 1 | 1", "rm words.0; mkfifo words.0 | 1 | 1",
            "truncate -s 40 words.1 | 2 | 1", "truncate -s 40 words.? | 0 | 2",
            "rm words.? | 0 | 0",
            "head -c 20 words.0 >words.new | 2 | 0", // power lost while it was written
        });
    }
    void readsTheLatestWhole()
    {
        const QTemporaryDir root;
        const std::string folder = root.path().toStdString();
        Store store(folder);
        QCOMPARE(store.save({{10591, 1}}), 0);
        QCOMPARE(store.save({{10591, 2}}), 0);
        QProcess shell;
        shell.setWorkingDirectory(root.path());
        shell.start("sh"_s, {"-c"_s, cell(0)});
        QVERIFY(shell.waitForFinished() && shell.exitCode() == 0);
        Store next(folder);
        const auto read = next.load();
        QCOMPARE(read ? int{read->at(10591)} : 0, number(1));
        QCOMPARE(
            QDir(root.path()).entryList({"*.broken"_s}, QDir::AllEntries | QDir::System).size(),
            number(2));
        QCOMPARE(next.save({{10591, 3}}), 0);
        QCOMPARE(Store(folder).load()->at(10591), words::Word{3});
    }

    // No part of a generation passes for one, nor one with a changed byte.
    void knowsTornText()
    {
        const std::string text = words::generationText({7, {{10590, 600}, {10591, 100}}});
        const auto whole = words::parseGeneration(text);
        QVERIFY(whole && whole->number == 7);
        QCOMPARE(whole->values, (Values{{10590, 600}, {10591, 100}}));
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::string changed = text;
            changed[i] = static_cast<char>(changed[i] ^ 1);
            QVERIFY2(!words::parseGeneration(changed), changed.c_str());
            QVERIFY(!words::parseGeneration(text.substr(0, i)));
        }
    }

    // A disk that comes after the start is not written over with first values.
    void leavesLateFolderAlone()
    {
        const QTemporaryDir root;
        const std::string folder = root.path().toStdString() + "/words";
        Store store(folder);
        QVERIFY(!store.load());
        QVERIFY(fs::create_directory(folder));
        QCOMPARE(store.save({{10591, 1}}), 0);
        QVERIFY(fs::is_empty(folder));
    }
};

QTEST_GUILESS_MAIN(StoreTest)
#include "StoreTest.moc"
