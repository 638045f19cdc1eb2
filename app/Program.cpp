#include "app/Program.h"

#include "app/look/FontStyle.h"
#include "app/MainWin.h"
#include "app/Shutdown.h"
#include "input/FieldKeyboard.h"
#include "resources/Resources.h"
#include "system/TimeZone.h"

#include <QApplication>

#include <cstdio>
#include <exception>

namespace {

// Options as the program is started with them: "-p PASSWORD" asks for a password first, "-d WORD"
// opens an update page. An option with nothing behind it is ignored.
void obeyOptions(int argc, char **argv, MainWin *window)
{
    for (int i = 1; i + 1 < argc; ++i) {
        const QByteArray option(argv[i]);
        // The password is the second argument, wherever the option stands; this is intended.
        if (option == "-p")
            runPasswordGate(window, QString::fromLocal8Bit(argv[2]));
        else if (option == "-d")
            window->openUpdate(QString::fromLocal8Bit(argv[i + 1]));
    }
}

void runWindow(int argc, char **argv, const std::function<void()> &shown)
{
    MainWin window;
    window.show();
    shown();
    window.checkNetworkService();
    obeyOptions(argc, argv, &window);
    QApplication::exec();
}

} // namespace

void loadAppearance()
{
    loadResources();
    substituteFonts();
}

void runProgram(int argc, char **argv, const std::function<void()> &shown)
{
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // Nothing here draws with OpenGL; without it the X11 platform starts faster and smaller.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    makeRoomForTimeZone();

    QApplication application(argc, argv);
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
    settle();
    reboot(1);
}
