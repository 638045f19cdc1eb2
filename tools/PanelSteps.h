// Steps of a walk through a simulated panel; each waits until it can be done.
#pragma once

#include "tools/PanelProcess.h"

#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <stdexcept>

// The text of UTF-8 bytes.
inline QString utf8(const char *text)
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
    // Called for each state of the screen, with its name: "ethernet-static".
    using Visit = std::function<void(PanelProcess &panel, const QString &state)>;

    // `language`: 0 Chinese, 1 English. `scenario`: as SYSSET_SCENARIO.
    PanelSteps(const QSize &screen, int language, QString scenario, Visit visit);

    // Waits so long after each start, until the panel has checked its links. Default 0.
    void setStartPause(unsigned long milliseconds) { m_nStartPauseMs = milliseconds; }

    // Starts a fresh panel with that language and a cloud configuration; ends the one before.
    void start(const QStringList &options = {});
    // The same in another scenario, for this once.
    void startIn(const char *scenario);
    PanelProcess &process() { return *m_panel; }

    // Waits until the screen is steady, and shows the state.
    void visit(const char *state);
    // The same without waiting, for a state that does not last.
    void visitAtOnce(const char *state);

    void touch(const char *object, int index = -1);
    // A list that opens or closes; it ignores touches for a while after.
    void touchList(const char *object, int index = -1);
    // A key of the keyboard, which drops keys that follow too soon.
    void key(const char *object);
    void set(const char *path, const char *json);
    void ask(const QStringList &words);
    void awaitSeen(const char *object);
    void awaitGone(const char *object);
    // Waits for the message box, shows it as `state` and presses `answer`.
    void answerBox(const char *state, const char *answer = "btn_Ok");
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
