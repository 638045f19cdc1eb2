// What can be done to a simulated panel step by step, each waiting until it can be done.
#pragma once

#include "tools/PanelProcess.h"

#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <stdexcept>

// UTF-8 as what Qt takes.
inline QString latin(const char *text)
{
    return QString::fromUtf8(text);
}

// A step that waited in vain.
struct Stuck : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// All steps throw Stuck where the panel does not follow.
class PanelSteps
{
public:
    // Called with each state of the screen that is shown, and its name: "ethernet-static".
    using Visit = std::function<void(PanelProcess &panel, const QString &state)>;

    // `language`: 0 Chinese, 1 English. `scenario`: name or path of a situation to start from.
    PanelSteps(const QSize &screen, int language, QString scenario, Visit visit);

    // Leaves each started panel alone for so long, until it has looked at its links; 0 without
    // this.
    void setStartPause(unsigned long milliseconds) { m_nStartPauseMs = milliseconds; }

    // Starts a panel that nobody has used, of that language, bound to a cloud; ends the one before.
    void start(const QStringList &options = {});
    // The same in a situation that is not that of the rest.
    void startIn(const char *scenario);
    PanelProcess &process() { return *m_panel; }

    // Lets the state come to rest and shows it.
    void at(const char *state);
    // The same at once, where the state passes.
    void passing(const char *state);

    void touch(const char *object, int index = -1);
    // A list that opens or closes, which ignores touches for a while after.
    void touchList(const char *object, int index = -1);
    // A key of the keyboard, not sooner than it takes the next one.
    void key(const char *object);
    void set(const char *path, const char *json);
    void ask(const QStringList &words);
    void awaitSeen(const char *object);
    void awaitGone(const char *object);
    // Waits for the box, shows it and answers.
    void box(const char *state, const char *answer = "btn_Ok");
    void await(const std::function<bool()> &condition, const QString &what);

private:
    QSize m_screen;
    int m_nLanguage;
    QString m_sScenario;
    Visit m_visit;
    QString m_sState; // visited last
    unsigned long m_nStartPauseMs = 0;
    std::unique_ptr<PanelProcess> m_panel;
};
