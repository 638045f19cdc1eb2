// fit-audit [OPTION...]: leads the simulated panel through all of its screens and fails where a
// text cannot be read or a control cannot be hit. One line a finding.
//   --size WxH        only this screen (may be repeated; default: the five that there are)
//   --language zh|en  only this language
//   --part NAME       only this part of the walk (pages, network, diagnosis, updates, gate, alone)
//   --pictures DIR    takes a picture of every state instead, from a panel with everyday values
#include "tools/FitReport.h"
#include "tools/PanelWalk.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QThread>

#include <iostream>

namespace {

constexpr unsigned long LINKS_CHECKED_MS = 2300; // until the status strip shows what is online

struct Options
{
    QStringList sizes;
    QStringList languages;
    QStringList parts;
    QString pictures;
};

QString latin(const char *text)
{
    return QString::fromUtf8(text);
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
                       {latin("pictures"), QString(), value}});
    parser.process(arguments);
    return {
        either(parser.values(latin("size")), {latin("480x272"), latin("800x480"), latin("1024x600"),
                                              latin("1280x800"), latin("1920x1080")}),
        either(parser.values(latin("language")), {latin("zh"), latin("en")}),
        parser.values(latin("part")), parser.value(latin("pictures"))};
}

QSize sizeOf(const QString &text)
{
    const QStringList sides = text.split(QLatin1Char('x'));
    const QSize size(sides.first().toInt(), sides.last().toInt());
    if (sides.size() != 2 || size.isEmpty())
        throw std::runtime_error("a size is WIDTHxHEIGHT, not " + text.toStdString());
    return size;
}

void audit(PanelProcess &panel, Finding where, FitReport &report)
{
    const QJsonValue found = panel.ask({latin("ui"), latin("fit")});
    if (!found.isArray())
        throw Stuck(where.state.toStdString() + ": ui fit: " + panel.error().toStdString());
    const QJsonArray findings = found.toArray();
    for (const QJsonValue finding : findings) {
        where.kind = finding[latin("kind")].toString();
        where.widget = finding[latin("widget")].toString();
        where.detail = finding[latin("detail")].toString();
        report.add(where);
    }
}

void shoot(PanelProcess &panel, const Finding &where, const QString &folder)
{
    if (where.state == latin("about"))
        QThread::msleep(LINKS_CHECKED_MS);
    const QString name =
        QStringLiteral("%1-%2-%3.png").arg(where.size, where.language, where.state);
    if (panel.ask({latin("ui"), latin("shot"), QDir(folder).absoluteFilePath(name)}).isUndefined())
        throw Stuck("no picture: " + panel.error().toStdString());
}

void walk(const Options &options, const QString &size, const QString &language, FitReport &report)
{
    const bool pictures = !options.pictures.isEmpty();
    const auto visit = [&](PanelProcess &panel, const QString &state) {
        const Finding where{size, language, state, {}, {}, {}};
        if (pictures)
            shoot(panel, where, options.pictures);
        else
            audit(panel, where, report);
    };
    PanelWalk way(sizeOf(size), language == latin("zh") ? 0 : 1,
                  latin(pictures ? "full" : "widest"), visit);
    if (options.parts.isEmpty())
        way.walk();
    for (const QString &part : options.parts)
        way.walk(part);
}

int run(const Options &options)
{
    FitReport report(latin(SOURCE_FOLDER "/tools/fit-waivers.json"));
    for (const QString &size : options.sizes)
        for (const QString &language : options.languages) {
            try {
                walk(options, size, language, report);
            } catch (const Stuck &stuck) {
                throw std::runtime_error(size.toStdString() + " " + language.toStdString() + ": " +
                                         stuck.what());
            }
        }
    const QStringList faults = report.faults();
    for (const QString &fault : faults)
        std::cout << fault.toStdString() << '\n';
    std::cout << faults.size() << " findings, " << report.waived() << " let pass\n";
    return faults.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    try {
        return run(parse(QCoreApplication::arguments()));
    } catch (const std::exception &error) {
        std::cerr << "fit-audit: " << error.what() << std::endl;
        return 2;
    }
}
