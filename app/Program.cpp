#include "app/Program.h"

#include "app/CommandLine.h"
#include "app/look/FontStyle.h"
#include "app/look/WidgetLook.h"
#include "app/MainWin.h"
#include "app/Shutdown.h"
#include "resources/Resources.h"
#include "system/TimeZone.h"

#include <QApplication>
#include <QFile>

#include <cstdio>
#include <exception>

namespace {

void runWindow(int argc, char **argv, const std::function<void()> &shown)
{
    MainWin window;
    window.start();
    shown();
    window.checkNetworkService();
    obeyOptions(argc, argv, &window);
    QApplication::exec();
}

// What is installed beside the program is read much faster than the system's own.
void chooseFontConfiguration()
{
    if (!qEnvironmentVariableIsSet("FONTCONFIG_FILE") &&
        QFile::exists(QStringLiteral(SYSSET_FONTS)))
        qputenv("FONTCONFIG_FILE", SYSSET_FONTS);
}

} // namespace

void loadAppearance()
{
    loadResources();
    substituteFonts();
}

namespace {

[[noreturn]] void startProgram(int argc, char **argv, const std::function<void()> &shown)
{
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // Nothing here draws with OpenGL; without it the X11 platform starts faster and smaller.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    chooseFontConfiguration();
    makeRoomForTimeZone();

    QApplication application(argc, argv);
    holdImagePlugins();
    loadAppearance();
    QApplication::setOverrideCursor(Qt::BlankCursor);
    try {
        runWindow(argc, argv, shown);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sysset: %s\n", error.what());
    } catch (...) {
        std::fputs("sysset: cannot go on\n", stderr);
    }
    // Only a window that could not be built gets here: a built one restarts the panel itself.
    syncDisks();
    reboot(1);
}

} // namespace

int runProgram(int argc, char **argv, const std::function<void()> &shown,
               const std::function<int()> &prepare)
{
    const std::optional<int> answered = answerCommandLine(argc, argv);
    if (answered)
        return *answered;
    const int refused = prepare ? prepare() : 0;
    if (refused != 0)
        return refused;
    startProgram(argc, argv, shown);
}
