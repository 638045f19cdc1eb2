// panelctl VERB ARG...: drives the simulated panel that runs under SYSSET_ROOT. Prints the
// reply's value as JSON and exits 0, or prints the error to standard error and exits 1.
#include "platform/sim/Root.h"
#include "platform/sim/StateTree.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocalSocket>

#include <iostream>
#include <stdexcept>

namespace {

constexpr int REPLY_TIMEOUT_MS = 30000;

constexpr const char *HELP =
    R"(panelctl VERB ARG... sends one request to the running panel:
  get [PATH]                          the state at a dotted path, such as net.devices.0.sIpAddr
  set PATH JSON                       changes the state
  usb insert|remove DIR               plugs in a U-disk mounted at DIR, or pulls it out
  hotplug insert|remove CODE PATH     the same for any device type code
  fail OPERATION CODE [COUNT]         the next COUNT calls (all, without it) return CODE
  fail clear
  delay OPERATION MS                  the operation takes that long
  delay clear
  calls [clear]                       every platform call so far
  ui dump [OBJECT]                    the widget tree, or all widgets of that object name
  ui press OBJECT [INDEX]             a press; of a list, combo box or tab widget on that row
  ui slide OBJECT VALUE               drags a slider
  ui where OBJECT [INDEX]             where on the screen ui press would touch
  ui way OBJECT VALUE                 from where to where on the screen ui slide would drag
  ui shot FILE                        what the screen shows, as PNG
  ui fit                              what on the screen cannot be read or touched
  quit                                ends the program
The panel is found by SYSSET_ROOT, the folder that it runs in, or by SYSSET_CONTROL, the path of its
socket. sysset-dev, on a real board, knows ui and quit.
)";

struct Failure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// The panel's working directory is not that of the person who types a path.
QString fromHere(const QString &path)
{
    return path.isEmpty() || QDir::isAbsolutePath(path)
               ? path
               : QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

QStringList withAbsolutePaths(QStringList words)
{
    const bool usb = words.size() == 3 && words[0] == QLatin1String("usb");
    const bool shot =
        words.size() == 3 && words[0] == QLatin1String("ui") && words[1] == QLatin1String("shot");
    const bool hotplug = words.size() == 4 && words[0] == QLatin1String("hotplug");
    if (usb || shot || hotplug)
        words.last() = fromHere(words.last());
    return words;
}

QByteArray requestLine(const QStringList &words)
{
    sim::Json args = sim::Json::array();
    for (const QString &word : words.mid(1))
        args.push_back(word.toStdString());
    const sim::Json request = {{"verb", words[0].toStdString()}, {"args", args}};
    return QByteArray::fromStdString(sim::dumpJson(request)) + '\n';
}

// SYSSET_CONTROL names the socket of a program on a real board.
std::string socketPath()
{
    const std::string named = sim::environment("SYSSET_CONTROL");
    return named.empty() ? sim::socketPath() : named;
}

QByteArray ask(const QByteArray &line)
{
    QLocalSocket socket;
    const std::string path = socketPath();
    socket.connectToServer(QString::fromStdString(path));
    if (!socket.waitForConnected(REPLY_TIMEOUT_MS))
        throw Failure("no panel answers at " + path + ": " + socket.errorString().toStdString());
    socket.write(line);
    QByteArray reply;
    while (!reply.endsWith('\n')) {
        if (!socket.waitForReadyRead(REPLY_TIMEOUT_MS))
            throw Failure("the panel sends no reply: " + socket.errorString().toStdString());
        reply += socket.readAll();
    }
    return reply;
}

void print(const QByteArray &line)
{
    const sim::Json reply = sim::Json::parse(line.toStdString());
    if (reply.at("ok") != true)
        throw Failure(reply.at("error").get<std::string>());
    std::cout << reply.at("value").dump(2) << "\n";
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    if (words.isEmpty() || words[0] == QLatin1String("help") ||
        words[0] == QLatin1String("--help")) {
        (words.isEmpty() ? std::cerr : std::cout) << HELP;
        return words.isEmpty() ? 1 : 0;
    }
    try {
        print(ask(requestLine(withAbsolutePaths(words))));
    } catch (const std::exception &error) {
        std::cerr << "panelctl: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
