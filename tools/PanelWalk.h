// Leads a simulated panel through all of its pages and dialogs, in every state that they have.
#pragma once

#include "tools/PanelProcess.h"

#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <stdexcept>

// A step that waited in vain.
struct Stuck : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

class PanelWalk
{
public:
    // Called with each state of the screen, at rest, and its name: "ethernet-static".
    using Visit = std::function<void(PanelProcess &panel, const QString &state)>;

    // `language`: 0 Chinese, 1 English. `scenario`: name or path of a situation to start from.
    PanelWalk(const QSize &screen, int language, QString scenario, Visit visit);

    // Leaves each started panel alone for so long, until it has looked at its links; 0 without
    // this.
    void setStartPause(unsigned long milliseconds) { m_nStartPauseMs = milliseconds; }

    // The whole way, on panels started for it. Throws Stuck where the panel does not follow.
    void walk();
    // Only the part of that name: "pages", "network", "diagnosis", "updates", "gate", "alone".
    void walk(const QString &part);

private:
    void pages();
    void system();
    void communication();
    void network();
    void ethernet();
    void wifi();
    void joinWifi();
    void cellular();
    void diagnosis();
    void updates();
    void projects();
    void manyFiles();
    void firmware();
    void plcPrograms();
    void gate();
    void alone();
    void nobodyInRange();
    void unreadable();

    void start(const QStringList &options = {});
    void startIn(const char *scenario);
    void makeStick();
    void changeStick();
    void makeFile(const char *tool, const QStringList &options, const QString &name);

    // Lets the state come to rest and shows it.
    void at(const char *state);
    // The same at once, where the state passes.
    void passing(const char *state);

    void touch(const char *object, int index = -1);
    // A key of the keyboard, not sooner than it takes the next one.
    void key(const char *object);
    void set(const char *path, const char *json);
    void ask(const QStringList &words);
    void awaitSeen(const char *object);
    void awaitGone(const char *object);
    // Waits for the box, shows it and answers.
    void box(const char *state, const char *answer = "btn_Ok");
    void await(const std::function<bool()> &condition, const QString &what);

    QSize m_screen;
    int m_nLanguage;
    QString m_sScenario;
    Visit m_visit;
    QString m_sState; // visited last
    unsigned long m_nStartPauseMs = 0;
    std::unique_ptr<PanelProcess> m_panel;
    std::unique_ptr<QTemporaryDir> m_stick;
};
