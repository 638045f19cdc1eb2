#include "tools/PanelSteps.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QThread>

#include <utility>

namespace {

constexpr unsigned long REST_MS = 120;
constexpr unsigned long LIST_PAUSE_MS = 420; // a list that has just opened ignores touches
constexpr unsigned long KEY_PAUSE_MS = 165;  // the keyboard drops keys that follow sooner

} // namespace

PanelSteps::PanelSteps(const QSize &screen, int language, QString scenario, Visit visit)
    : m_screen(screen),
      m_nLanguage(language),
      m_sScenario(std::move(scenario)),
      m_visit(std::move(visit))
{
}

void PanelSteps::start(const QStringList &options)
{
    m_panel = std::make_unique<PanelProcess>();
    m_panel->setEnvironment(utf8("SYSSET_SCENARIO"), m_sScenario);
    m_panel->setEnvironment(utf8("SYSSET_LCD"),
                            QStringLiteral("%1x%2").arg(m_screen.width()).arg(m_screen.height()));
    const QString data = m_panel->file(utf8("/mnt/data/prj"));
    QFile language(data + utf8("/LangugeSet.cof"));
    if (!QDir().mkpath(data + utf8("/cloud")) ||
        !QFile::copy(utf8(SOURCE_FOLDER "/platform/sim/samples/cloud.xml"),
                     data + utf8("/cloud/cloud.xml")) ||
        !language.open(QIODevice::WriteOnly))
        throw Stuck("cannot prepare a panel's files");
    language.write(QByteArray("[HMI]\nLANGUAGEID=") + QByteArray::number(m_nLanguage) +
                   "\nALLOWSCHANGE=1\n");
    language.close();
    if (!m_panel->start(options))
        throw Stuck("the panel does not start");
    QThread::msleep(m_nStartPauseMs);
}

void PanelSteps::startIn(const char *scenario)
{
    const QString usual = std::exchange(m_sScenario, utf8(scenario));
    start();
    m_sScenario = usual;
}

void PanelSteps::visit(const char *state)
{
    QThread::msleep(REST_MS);
    visitAtOnce(state);
}

void PanelSteps::visitAtOnce(const char *state)
{
    m_sState = utf8(state);
    m_visit(*m_panel, m_sState);
}

void PanelSteps::await(const std::function<bool()> &condition, const QString &what)
{
    if (!PanelProcess::wait(condition))
        throw Stuck("after " + m_sState.toStdString() + ", waited in vain for " +
                    what.toStdString() + ": " + m_panel->error().toStdString());
}

void PanelSteps::touch(const char *object, int index)
{
    await([&] { return m_panel->press(utf8(object), index); }, utf8(object));
}

void PanelSteps::touchList(const char *object, int index)
{
    touch(object, index);
    QThread::msleep(LIST_PAUSE_MS);
}

void PanelSteps::key(const char *object)
{
    QThread::msleep(KEY_PAUSE_MS);
    touch(object);
}

void PanelSteps::set(const char *path, const char *json)
{
    if (!m_panel->set(utf8(path), json))
        throw Stuck("set " + std::string(path) + ": " + m_panel->error().toStdString());
}

void PanelSteps::ask(const QStringList &words)
{
    if (m_panel->ask(words).isUndefined())
        throw Stuck(words.join(QLatin1Char(' ')).toStdString() + ": " +
                    m_panel->error().toStdString());
}

void PanelSteps::awaitSeen(const char *object)
{
    await([&] { return m_panel->isVisible(utf8(object)); }, utf8(object));
}

void PanelSteps::awaitGone(const char *object)
{
    await([&] { return !m_panel->isVisible(utf8(object)); }, utf8(object) + utf8(" to go"));
}

void PanelSteps::answerBox(const char *state, const char *answer)
{
    awaitSeen("MessageBox");
    visit(state);
    const QJsonValue text = m_panel->widget(utf8("label"), utf8("text"));
    key(answer);
    await(
        [&] {
            return !m_panel->isVisible(utf8("MessageBox")) ||
                   m_panel->widget(utf8("label"), utf8("text")) != text;
        },
        utf8("the box to go"));
}
