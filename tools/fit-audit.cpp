// fit-audit [OPTION...]: leads the simulated panel through all of its screens and fails where a
// text cannot be read or a control cannot be hit. One line a finding.
//   --size WxH        only this screen (may be repeated; default: the five that there are)
//   --language zh|en  only this language
//   --part NAME       only this part of the walk (pages, network, diagnosis, updates, gate, alone)
//   --pictures DIR    takes a picture of every state instead, in the scenario "full"
//   --raw             prints a JSON array of what is found, held against no waiver
//
// Each screen in each language is walked by a process of its own, `fit-audit --raw`, because the
// walks run at the same time and each starts children: a child of a process with threads may
// inherit a lock that nobody releases.
#include "tools/FitReport.h"
#include "tools/PanelWalk.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

#include <deque>
#include <iostream>
#include <memory>

namespace {

constexpr std::size_t WALKS_AT_A_TIME = 10;
constexpr unsigned long LINKS_CHECKED_MS = 2300; // until the status strip shows what is online

constexpr const char *FRAME[] = {"btn_Machine", "btn_Net",    "btn_UpData",
                                 "btn_Sysset",  "btn_Reboot", "wdg_Status"};

struct Part
{
    const char *name;
    void (*walk)(PanelSteps &panel);
};

constexpr Part PARTS[] = {{"pages", walkPages},         {"network", walkNetwork},
                          {"diagnosis", walkDiagnosis}, {"updates", walkUpdates},
                          {"gate", walkGate},           {"alone", walkAlone}};

struct Options
{
    QStringList sizes;
    QStringList languages;
    QStringList parts;
    QString pictures;
    bool raw;
    bool whole; // nothing of the audit is left out
};

// Throws on an unknown word: the audit would skip everything and pass.
QStringList checked(const QStringList &words, const QStringList &all)
{
    for (const QString &word : words)
        if (!all.contains(word))
            throw std::runtime_error("there is no " + word.toStdString() + ", only " +
                                     all.join(utf8(", ")).toStdString());
    return words;
}

QStringList orAll(const QStringList &chosen, const QStringList &all)
{
    return chosen.isEmpty() ? all : chosen;
}

Options parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QString value = utf8("value");
    parser.addOptions({{utf8("size"), QString(), value},
                       {utf8("language"), QString(), value},
                       {utf8("part"), QString(), value},
                       {utf8("pictures"), QString(), value},
                       {utf8("raw"), QString()}});
    parser.process(arguments);
    const QStringList languages{utf8("zh"), utf8("en")};
    QStringList parts;
    for (const Part &part : PARTS)
        parts += utf8(part.name);
    const bool whole = parser.optionNames().isEmpty();
    return {orAll(parser.values(utf8("size")), {utf8("480x272"), utf8("800x480"), utf8("1024x600"),
                                                utf8("1280x800"), utf8("1920x1080")}),
            orAll(checked(parser.values(utf8("language")), languages), languages),
            checked(parser.values(utf8("part")), parts),
            parser.value(utf8("pictures")),
            parser.isSet(utf8("raw")),
            whole};
}

QSize sizeOf(const QString &text)
{
    const QStringList sides = text.split(QLatin1Char('x'));
    const QSize size(sides.first().toInt(), sides.last().toInt());
    if (sides.size() != 2 || size.isEmpty())
        throw std::runtime_error("a size is WIDTHxHEIGHT, not " + text.toStdString());
    return size;
}

void audit(PanelProcess &panel, Finding where, QVector<Finding> &found)
{
    const QJsonValue reply = panel.ask({utf8("ui"), utf8("fit")});
    if (!reply.isArray())
        throw Stuck(where.state.toStdString() + ": ui fit: " + panel.error().toStdString());
    const QJsonArray findings = reply.toArray();
    for (const QJsonValue finding : findings) {
        where.kind = finding[utf8("kind")].toString();
        where.widget = finding[utf8("widget")].toString();
        where.detail = finding[utf8("detail")].toString();
        found.append(where);
    }
}

// Adds a finding for each part of the frame that is not where it was: `places` has it by name.
void auditFrame(PanelProcess &panel, Finding where, QJsonObject &places, QVector<Finding> &found)
{
    for (const char *name : FRAME) {
        const QString object = utf8(name);
        const QJsonValue place = panel.widget(object, utf8("rect"));
        if (!panel.isVisible(object) || places.value(object) == place)
            continue;
        where.kind = utf8("moved");
        where.widget = object;
        if (places.contains(object))
            found.append(where);
        places.insert(object, place);
    }
}

void shoot(PanelProcess &panel, const Finding &where, const QString &folder)
{
    const QString name =
        QStringLiteral("%1-%2-%3.png").arg(where.size, where.language, where.state);
    if (panel.ask({utf8("ui"), utf8("shot"), QDir(folder).absoluteFilePath(name)}).isUndefined())
        throw Stuck("no picture: " + panel.error().toStdString());
}

// One screen in one language. Returns what is wrong with it.
QVector<Finding> walk(const Options &options, const QString &size, const QString &language)
{
    const bool pictures = !options.pictures.isEmpty();
    QVector<Finding> found;
    QJsonObject places;
    const auto visit = [&](PanelProcess &panel, const QString &state) {
        const Finding where{size, language, state, {}, {}, {}};
        if (pictures) {
            shoot(panel, where, options.pictures);
        } else {
            audit(panel, where, found);
            auditFrame(panel, where, places, found);
        }
    };
    PanelSteps panel(sizeOf(size), language == utf8("zh") ? 0 : 1,
                     utf8(pictures ? "full" : "widest"), visit);
    if (pictures)
        panel.setStartPause(LINKS_CHECKED_MS);
    for (const Part &part : PARTS)
        if (options.parts.isEmpty() || options.parts.contains(utf8(part.name)))
            part.walk(panel);
    return found;
}

// What is wrong with these screens, walked one after the other in this process.
int printRaw(const Options &options)
{
    QJsonArray found;
    for (const QString &size : options.sizes)
        for (const QString &language : options.languages)
            try {
                for (const Finding &finding : walk(options, size, language))
                    found.append(toJson(finding));
            } catch (const Stuck &stuck) {
                throw std::runtime_error((size + utf8(" ") + language).toStdString() + ": " +
                                         stuck.what());
            }
    std::cout << QJsonDocument(found).toJson(QJsonDocument::Compact).constData() << '\n';
    return 0;
}

// One screen in one language, walked by another process.
class WalkProcess
{
public:
    WalkProcess(const Options &options, const QString &size, const QString &language)
    {
        QStringList arguments{utf8("--raw"), utf8("--size"), size, utf8("--language"), language};
        for (const QString &part : options.parts)
            arguments << utf8("--part") << part;
        if (!options.pictures.isEmpty())
            arguments << utf8("--pictures") << options.pictures;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), arguments);
    }

    // Waits for its end and appends its findings. False where it got stuck, which it has reported.
    bool finish(QVector<Finding> &found)
    {
        m_process.waitForFinished(-1);
        const QJsonDocument raw = QJsonDocument::fromJson(m_process.readAllStandardOutput());
        const QJsonArray entries = raw.array();
        for (const QJsonValue entry : entries)
            found.append(findingOf(entry.toObject()));
        return raw.isArray() && m_process.exitStatus() == QProcess::NormalExit &&
               m_process.exitCode() == 0;
    }

private:
    QProcess m_process;
};

// All screens, several at a time: a walk mostly waits for its panel. Throws if one got stuck, after
// the others have ended with their panels.
QVector<Finding> walkAll(const Options &options)
{
    QVector<Finding> found;
    bool complete = true;
    std::deque<std::unique_ptr<WalkProcess>> running;
    const auto collect = [&] {
        complete = running.front()->finish(found) && complete;
        running.pop_front();
    };
    for (const QString &size : options.sizes)
        for (const QString &language : options.languages) {
            if (running.size() == WALKS_AT_A_TIME)
                collect();
            running.push_back(std::make_unique<WalkProcess>(options, size, language));
        }
    while (!running.empty())
        collect();
    if (!complete)
        throw std::runtime_error("not every screen was seen");
    return found;
}

void print(const QStringList &lines)
{
    for (const QString &line : lines)
        std::cout << line.toStdString() << '\n';
}

int run(const Options &options)
{
    FitReport report(utf8(SOURCE_FOLDER "/tools/fit-waivers.json"));
    for (const Finding &finding : walkAll(options))
        report.add(finding);
    if (!options.pictures.isEmpty())
        return 0;
    const QStringList faults = report.faults();
    // Only the whole audit shows that a waiver is not needed any more.
    const QStringList idle = options.whole ? report.idleWaivers() : QStringList();
    print(faults);
    for (const QString &waiver : idle)
        std::cout << "lets nothing pass, take it off the list: " << waiver.toStdString() << '\n';
    std::cout << faults.size() << " findings, " << report.waived() << " let pass\n";
    return faults.isEmpty() && idle.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    try {
        const Options options = parse(QCoreApplication::arguments());
        return options.raw ? printRaw(options) : run(options);
    } catch (const std::exception &error) {
        std::cerr << "fit-audit: " << error.what() << "\n";
        return 2;
    }
}
