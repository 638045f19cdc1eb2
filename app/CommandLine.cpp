#include "app/CommandLine.h"

#include "app/MainWin.h"
#include "input/FieldKeyboard.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

using namespace std::string_view_literals;

namespace {

using Words = std::vector<std::string_view>;

constexpr int BAD_USAGE = 2;

constexpr auto PASSWORD = "-p"sv;
constexpr auto UPDATE_PAGE = "-d"sv;
constexpr std::size_t PASSWORD_WORD = 2; // wherever the option stands; this is intended

// Qt takes each of its options with one dash or with two.
constexpr std::array QT_OPTIONS = {"-reverse"sv, "-widgetcount"sv, "-nograb"sv, "-dograb"sv,
                                   "-testability"sv};
constexpr std::array QT_OPTIONS_WITH_VALUE = {"-platform"sv,
                                              "-platformpluginpath"sv,
                                              "-platformtheme"sv,
                                              "-plugin"sv,
                                              "-qwindowgeometry"sv,
                                              "-qwindowicon"sv,
                                              "-qwindowtitle"sv,
                                              "-geometry"sv,
                                              "-icon"sv,
                                              "-title"sv,
                                              "-session"sv,
                                              "-style"sv,
                                              "-stylesheet"sv,
                                              "-display"sv,
                                              "-name"sv,
                                              "-visual"sv};
constexpr std::array QT_OPTIONS_WITH_EQUALS = {"-style="sv, "-stylesheet="sv, "-qmljsdebugger="sv};

template <typename List>
bool contains(const List &list, std::string_view word)
{
    return std::find(list.begin(), list.end(), word) != list.end();
}

// How many words from `word` on are Qt's: 0, 1, or 2 with a value.
int qtWords(std::string_view word)
{
    if (word.substr(0, 2) == "--")
        word.remove_prefix(1);
    if (contains(QT_OPTIONS_WITH_VALUE, word))
        return 2;
    const auto begins = [&](std::string_view option) {
        return word.substr(0, option.size()) == option;
    };
    return contains(QT_OPTIONS, word) ||
                   std::any_of(QT_OPTIONS_WITH_EQUALS.begin(), QT_OPTIONS_WITH_EQUALS.end(), begins)
               ? 1
               : 0;
}

Words withoutQtOptions(int argc, char **argv)
{
    Words words;
    for (int i = 0; i < argc; ++i) {
        const int skipped = qtWords(argv[i]);
        if (skipped == 0)
            words.emplace_back(argv[i]);
        else
            i += skipped - 1;
    }
    return words;
}

bool isOurs(std::string_view word)
{
    return word == PASSWORD || word == UPDATE_PAGE;
}

// What an option takes may look like anything.
bool isValue(const Words &words, std::size_t index)
{
    const auto password = std::find(words.begin(), words.end(), PASSWORD);
    const bool asksPassword = password != words.end() && password + 1 != words.end();
    return isOurs(words[index - 1]) || (index == PASSWORD_WORD && asksPassword);
}

std::string programName(const Words &words)
{
    const std::string_view path = words.empty() ? "sysset"sv : words.front();
    return std::string(path.substr(path.rfind('/') + 1)); // npos + 1 is 0
}

void printHelp(const std::string &program)
{
    std::printf("usage: %s [OPTION]...\n"
                "The settings of an operator panel. Leaving the program restarts the panel.\n"
                "\n"
                "  -p WORD    asks for a password first, which is the second word behind %s\n"
                "  -d WORD    opens an update page: DownloadProject or DownloadImage\n"
                "  --help     prints this and ends\n"
                "  --version  prints the version and ends\n"
                "\n"
                "Qt's own options, such as -platform and -style, are taken too.\n",
                program.c_str(), program.c_str());
}

} // namespace

std::optional<int> answerCommandLine(int argc, char **argv)
{
    const Words words = withoutQtOptions(argc, argv);
    const std::string program = programName(words);
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string word(words[i]);
        if (word.size() < 2 || word.front() != '-' || isOurs(word) || isValue(words, i))
            continue;
        if (word == "--help") {
            printHelp(program);
            return 0;
        }
        if (word == "--version") {
            std::printf("%s " SYSSET_VERSION "\n", program.c_str());
            return 0;
        }
        std::fprintf(stderr, "%s: unknown option %s, see %s --help\n", program.c_str(),
                     word.c_str(), program.c_str());
        return BAD_USAGE;
    }
    return std::nullopt;
}

void obeyOptions(int argc, char **argv, MainWin *window)
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (argv[i] == PASSWORD)
            runPasswordGate(window, QString::fromLocal8Bit(argv[PASSWORD_WORD]));
        else if (argv[i] == UPDATE_PAGE)
            window->openUpdate(QString::fromLocal8Bit(argv[i + 1]));
    }
}
