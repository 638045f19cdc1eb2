#include "services/words/Store.h"

#include "tests/support/Rows.h"

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace fs = std::filesystem;
using words::Store;
using words::Values;

class StoreTest : public QObject
{
    Q_OBJECT

private slots:
    // Generation 1 is in words.1, 2 in words.0. What befalls which file, and what is read then.
    void readsTheLatestWhole_data()
    {
        rows({
            "nothing | -       | 2", "words.0 | empty   | 1", "words.0 | half    | 1",
            "words.0 | zeros   | 1", "words.0 | longer  | 1", "words.0 | missing | 1",
            "words.0 | folder  | 1", "words.0 | fifo    | 1", "words.1 | half    | 2",
            "both    | half    | 0", "both    | missing | 0",
            "words.new | half  | 2", // power lost while it was written
        });
    }
    void readsTheLatestWhole()
    {
        const QTemporaryDir root;
        const std::string folder = root.path().toStdString();
        const std::string file = cell(0).toStdString();
        const std::string fault = cell(1).toStdString();
        Store store(folder);
        QCOMPARE(store.save({{10591, 1}}), 0);
        QCOMPARE(store.save({{10591, 2}}), 0);
        for (const std::string name : {"words.0", "words.1", "words.new"}) {
            if (name == file || (file == "both" && name != "words.new"))
                damage(std::string(folder).append("/").append(name), fault);
        }
        Store next(folder);
        const auto read = next.load();
        QCOMPARE(read ? int{read->at(10591)} : 0, number(2));
        const bool isBroken = file.find("words.") == 0 || file == "both";
        const int aside =
            fs::exists(folder + "/words.0.broken") + fs::exists(folder + "/words.1.broken");
        const bool isWhole = fault == "missing" || file == "words.new";
        QCOMPARE(aside, isWhole || !isBroken ? 0 : file == "both" ? 2 : 1);
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

private:
    static void damage(const std::string &path, const std::string &fault)
    {
        if (!fs::exists(path))
            std::ofstream(path) << "settings-words 1\n";
        const auto size = fs::file_size(path);
        if (fault == "empty" || fault == "zeros")
            fs::resize_file(path, 0);
        if (fault == "zeros" || fault == "half")
            fs::resize_file(path, fault == "half" ? size / 2 : size);
        if (fault == "longer")
            std::ofstream(path, std::ios::app) << "10591 9\n";
        if (fault == "missing" || fault == "folder" || fault == "fifo")
            fs::remove(path);
        if (fault == "folder")
            fs::create_directory(path);
        if (fault == "fifo")
            QCOMPARE(::mkfifo(path.c_str(), 0600), 0);
    }
};

QTEST_GUILESS_MAIN(StoreTest)
#include "StoreTest.moc"
