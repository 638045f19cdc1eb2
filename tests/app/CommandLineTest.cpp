#include "app/CommandLine.h"

#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

class CommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    // words behind the program's name | exit status, none if it starts | first words printed
    void answers_data()
    {
        rows({"--help | 0 | usage: panel [OPTION]", "--version | 0 | panel 0.",
              "x --help | 0 | usage", "--version --help | 0 | panel", "-x | 2", "--platforms x | 2",
              "-pw x | 2", "-d x --help | 0 | usage", "-- | 2", "--help=x | 2",
              // Words, options of the program's own, and what they take.
              "", "help version - x", "-p", "x -d", "-p --help", "-d -x", "-p -d -x", "y -x -p z",
              "-x y -p z | 2", "x -x -p | 2",
              // Qt's, with one dash or with two, and what they take.
              "-platform -x", "--style fusion -style=fusion", "-stylesheet=x -reverse",
              "-platform offscreen -x | 2", "-style x y -x -p z"});
    }
    void answers()
    {
        QByteArrayList words = cell(0).toLatin1().split(' ');
        words.removeAll({});
        words.prepend("/usr/bin/panel");
        std::vector<char *> argv;
        for (QByteArray &word : words)
            argv.push_back(word.data());
        std::optional<int> status;
        const QByteArray printed =
            printedBy([&] { status = answerCommandLine(int(argv.size()), argv.data()); });
        QCOMPARE(status ? QString::number(*status) : QString(), cell(1));
        QVERIFY2(printed.startsWith(cell(2).toLatin1()), printed);
        QCOMPARE(printed.isEmpty(), cell(2).isEmpty());
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
