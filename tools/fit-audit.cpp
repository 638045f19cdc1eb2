// fit-audit [OPTION...]: leads the simulated panel through all of its screens and fails where a
// text cannot be read or a control cannot be hit. One line a finding.
//   --size WxH        only this screen (may be repeated; default: the five that there are)
//   --language zh|en  only this language
//   --part NAME       only this part of the walk (pages, network, diagnosis, updates, gate, alone)
//   --pictures DIR    takes a picture of every state instead, from a panel with everyday values
//   --raw             prints a JSON array of what is found, held against no waiver
//
// Each screen in each language is walked by a process of its own, `fit-audit --raw`: a process with
// threads does better without children (a sanitizer's lock that another thread holds is never freed
// in the child).
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

constexpr std::size_t WALKS_AT_A_TIME = 3;
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

// A word that stands for nothing would let everything pass.
QStringList known(const QStringList &words, const QStringList &all)
{
    for (const QString &word : words)
        if (!all.contains(word))
            throw std::runtime_error("there is no " + word.toStdString() + ", only " +
                                     all.join(latin(", ")).toStdString());
    return words;
}

QStringList either(const QStringList &chosen, const QStringList &all)
{
    return chosen.isEmpty() ? all : chosen;
}

Options parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QString value = latin("value");
    parser.addOptions({{latin("size"), QString(), value},
                       {latin("language"), QString(), value},
                       {latin("part"), QString(), value},
                       {latin("pictures"), QString(), value},
                       {latin("raw"), QString()}});
    parser.process(arguments);
    const QStringList languages{latin("zh"), latin("en")};
    QStringList parts;
    for (const Part &part : PARTS)
        parts += latin(part.name);
    const bool whole = parser.optionNames().isEmpty();
    return {
        either(parser.values(latin("size")), {latin("480x272"), latin("800x480"), latin("1024x600"),
                                              latin("1280x800"), latin("1920x1080")}),
        either(known(parser.values(latin("language")), languages), languages),
        known(parser.values(latin("part")), parts),
        parser.value(latin("pictures")),
        parser.isSet(latin("raw")),
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
    const QJsonValue reply = panel.ask({latin("ui"), latin("fit")});
    if (!reply.isArray())
        throw Stuck(where.state.toStdString() + ": ui fit: " + panel.error().toStdString());
    const QJsonArray findings = reply.toArray();
    for (const QJsonValue finding : findings) {
        where.kind = finding[latin("kind")].toString();
        where.widget = finding[latin("widget")].toString();
        where.detail = finding[latin("detail")].toString();
        found.append(where);
    }
}

// What stands around every page stays where it is: `places` has where it was seen first.
void auditFrame(PanelProcess &panel, Finding where, QJsonObject &places, QVector<Finding> &found)
{
    for (const char *name : FRAME) {
        const QString object = latin(name);
        const QJsonValue place = panel.widget(object, latin("rect"));
        if (!panel.isVisible(object) || places.value(object) == place)
            continue;
        where.kind = latin("moved");
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
    if (panel.ask({latin("ui"), latin("shot"), QDir(folder).absoluteFilePath(name)}).isUndefined())
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
    PanelSteps panel(sizeOf(size), language == latin("zh") ? 0 : 1,
                     latin(pictures ? "full" : "widest"), visit);
    if (pictures)
        panel.setStartPause(LINKS_CHECKED_MS);
    for (const Part &part : PARTS)
        if (options.parts.isEmpty() || options.parts.contains(latin(part.name)))
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
                throw std::runtime_error((size + latin(" ") + language).toStdString() + ": " +
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
        QStringList arguments{latin("--raw"), latin("--size"), size, latin("--language"), language};
        for (const QString &part : options.parts)
            arguments << latin("--part") << part;
        if (!options.pictures.isEmpty())
            arguments << latin("--pictures") << options.pictures;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), arguments);
    }

    // Waits for its end and appends what it found. False where it got stuck, as it has said itself.
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

// All screens, a few at a time: a walk mostly waits for its panel. Throws where one got stuck, but
// not before the others have come to their end and put their panels away.
QVector<Finding> walkAll(const Options &options)
{
    QVector<Finding> found;
    bool complete = true;
    std::deque<std::unique_ptr<WalkProcess>> under;
    const auto collect = [&] {
        complete = under.front()->finish(found) && complete;
        under.pop_front();
    };
    for (const QString &size : options.sizes)
        for (const QString &language : options.languages) {
            if (under.size() == WALKS_AT_A_TIME)
                collect();
            under.push_back(std::make_unique<WalkProcess>(options, size, language));
        }
    while (!under.empty())
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
    FitReport report(latin(SOURCE_FOLDER "/tools/fit-waivers.json"));
    for (const Finding &finding : walkAll(options))
        report.add(finding);
    if (!options.pictures.isEmpty())
        return 0;
    const QStringList faults = report.faults();
    // Only the whole audit can tell that nothing needs a waiver any more.
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
        std::cerr << "fit-audit: " << error.what() << std::endl;
        return 2;
    }
}
