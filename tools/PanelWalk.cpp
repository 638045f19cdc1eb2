#include "tools/PanelWalk.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QThread>

#include <utility>

namespace {

constexpr unsigned long REST_MS = 120;
constexpr unsigned long SCANNED_MS = 600;    // a page's first look for networks
constexpr unsigned long KEY_PAUSE_MS = 165;  // the keyboard drops keys that follow sooner
constexpr unsigned long LIST_PAUSE_MS = 420; // a list that has just opened ignores touches

struct Part
{
    const char *name;
    void (PanelWalk::*walk)();
};

QString latin(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

PanelWalk::PanelWalk(const QSize &screen, int language, QString scenario, Visit visit)
    : m_screen(screen),
      m_nLanguage(language),
      m_sScenario(std::move(scenario)),
      m_visit(std::move(visit))
{
}

void PanelWalk::walk()
{
    for (const char *part : {"pages", "network", "diagnosis", "updates", "gate", "alone"})
        walk(latin(part));
}

void PanelWalk::walk(const QString &part)
{
    const std::initializer_list<Part> parts = {
        {"pages", &PanelWalk::pages},         {"network", &PanelWalk::network},
        {"diagnosis", &PanelWalk::diagnosis}, {"updates", &PanelWalk::updates},
        {"gate", &PanelWalk::gate},           {"alone", &PanelWalk::alone}};
    for (const Part &one : parts)
        if (part == QLatin1String(one.name))
            (this->*one.walk)();
    m_panel.reset();
}

// --- Steps -------------------------------------------------------------------------------------

// A panel that nobody has used, of that language, bound to a cloud.
void PanelWalk::start(const QStringList &options)
{
    m_panel = std::make_unique<PanelProcess>();
    m_panel->setEnvironment(latin("SYSSET_SCENARIO"), m_sScenario);
    m_panel->setEnvironment(latin("SYSSET_LCD"),
                            QStringLiteral("%1x%2").arg(m_screen.width()).arg(m_screen.height()));
    const QString data = m_panel->file(latin("/mnt/data/prj"));
    QFile language(data + latin("/LangugeSet.cof"));
    if (!QDir().mkpath(data + latin("/cloud")) ||
        !QFile::copy(latin(SOURCE_FOLDER "/platform/sim/samples/cloud.xml"),
                     data + latin("/cloud/cloud.xml")) ||
        !language.open(QIODevice::WriteOnly))
        throw Stuck("cannot prepare a panel's files");
    language.write(QByteArray("[HMI]\nLANGUAGEID=") + QByteArray::number(m_nLanguage) +
                   "\nALLOWSCHANGE=1\n");
    language.close();
    if (!m_panel->start(options))
        throw Stuck("the panel does not start");
    QThread::msleep(m_nStartPauseMs);
}

// The same in a situation that is not that of the rest of the walk.
void PanelWalk::startIn(const char *scenario)
{
    const QString usual = std::exchange(m_sScenario, latin(scenario));
    start();
    m_sScenario = usual;
}

void PanelWalk::at(const char *state)
{
    QThread::msleep(REST_MS);
    passing(state);
}

void PanelWalk::passing(const char *state)
{
    m_sState = latin(state);
    m_visit(*m_panel, m_sState);
}

void PanelWalk::await(const std::function<bool()> &condition, const QString &what)
{
    if (!PanelProcess::wait(condition))
        throw Stuck("after " + m_sState.toStdString() + ", waited in vain for " +
                    what.toStdString() + ": " + m_panel->error().toStdString());
}

void PanelWalk::touch(const char *object, int index)
{
    await([&] { return m_panel->press(latin(object), index); }, latin(object));
}

void PanelWalk::key(const char *object)
{
    QThread::msleep(KEY_PAUSE_MS);
    touch(object);
}

void PanelWalk::set(const char *path, const char *json)
{
    if (!m_panel->set(latin(path), json))
        throw Stuck("set " + std::string(path) + ": " + m_panel->error().toStdString());
}

void PanelWalk::ask(const QStringList &words)
{
    if (m_panel->ask(words).isUndefined())
        throw Stuck(words.join(QLatin1Char(' ')).toStdString() + ": " +
                    m_panel->error().toStdString());
}

void PanelWalk::awaitSeen(const char *object)
{
    await([&] { return m_panel->isVisible(latin(object)); }, latin(object));
}

void PanelWalk::awaitGone(const char *object)
{
    await([&] { return !m_panel->isVisible(latin(object)); }, latin(object) + latin(" to go"));
}

void PanelWalk::box(const char *state, const char *answer)
{
    awaitSeen("MessageBox");
    at(state);
    const QJsonValue text = m_panel->widget(latin("label"), latin("text"));
    key(answer);
    await(
        [&] {
            return !m_panel->isVisible(latin("MessageBox")) ||
                   m_panel->widget(latin("label"), latin("text")) != text;
        },
        latin("the box to go"));
}

// --- About and System --------------------------------------------------------------------------

void PanelWalk::pages()
{
    start();
    awaitSeen("tab_Machine");
    at("about");
    touch("tab_Machine", 1);
    at("version");
    system();
    touch("btn_Reboot");
    box("restart", "btn_Cancel");
}

void PanelWalk::system()
{
    touch("btn_Sysset");
    touch("tab_System", 0);
    awaitSeen("comboBox");
    at("general");
    touch("btn_BeepSwitch");
    at("general-other-beep");
    touch("line_BacklightTime");
    awaitSeen("SoftKeyboard");
    at("keyboard-number-wide");
    key("btn_close"); // the first key of a process has no effect
    key("btn_close");
    awaitGone("SoftKeyboard");
    touch("comboBox");
    QThread::msleep(LIST_PAUSE_MS);
    at("zones");
    touch("comboBox", 1);
    awaitGone("QComboBoxPrivateContainer");
    QThread::msleep(LIST_PAUSE_MS);
    ask({latin("fail"), latin("backstage.AddrWrite"), latin("-1"), latin("1")});
    touch("btn_SetTime");
    box("general-not-saved");
    communication();
    touch("tab_System", 2);
    awaitSeen("CHBtn");
    at("language");
}

void PanelWalk::communication()
{
    touch("tab_System", 1);
    awaitSeen("btn_ComL");
    at("com");
    touch("btn_CommunIndetail");
    awaitSeen("Communication");
    at("com-settings");
    touch("btn_Canl");
    awaitGone("Communication");
    touch("btn_TimeOutIndetail");
    awaitSeen("Communication");
    at("com-timeout");
    ask({latin("fail"), latin("backstage.AddrWrite"), latin("-1"), latin("1")});
    touch("btn_Save");
    awaitGone("Communication");
    awaitSeen("lab_NotSaved");
    at("com-not-saved");
}

// --- Before everything else --------------------------------------------------------------------

void PanelWalk::gate()
{
    start({latin("-p"), latin("secret")});
    awaitSeen("SoftKeyboard");
    at("keyboard-password");
    key("btn_c_q"); // the first key of a process has no effect
    key("btn_c_Shift");
    key("btn_c_q");
    at("keyboard-capitals");
    key("btn_c_char");
    at("keyboard-symbols");
    key("btn_s_123");
    at("keyboard-digits");
    key("btn_n_abc");
    key("btn_c_enter");
    box("password-error");
}

// Without the network service.
void PanelWalk::alone()
{
    startIn("no-network-service");
    box("no-network-service");
    touch("btn_Net");
    touch("tab_Net", 0);
    awaitSeen("btn_EthSwitch");
    at("ethernet-unknown");
    touch("tab_Net", 1);
    at("wifi-unknown");
    touch("tab_Net", 2);
    at("4g-unknown");
    nobodyInRange();
    unreadable();
}

// On a board that tells nothing, with a clock that may not be set.
void PanelWalk::unreadable()
{
    startIn("unreadable");
    awaitSeen("tab_Machine");
    at("about-unreadable");
    touch("btn_Sysset");
    awaitSeen("comboBox");
    at("general-locked");
}

// Networks that have been seen stay on the list; a panel that never saw one has none.
void PanelWalk::nobodyInRange()
{
    start();
    set("wifi.aps", "[]");
    set("wifi.state", "0");
    touch("btn_Net");
    touch("tab_Net", 1);
    await([this] { return m_panel->widget(latin("btn_WifiSwitch"), latin("enabled")).toBool(); },
          latin("the Wi-Fi device"));
    passing("wifi-searching");
    QThread::msleep(SCANNED_MS);
    at("wifi-empty");
}
