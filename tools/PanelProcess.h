// The whole program on the simulated panel, driven from outside through its control socket.
#pragma once

#include <QJsonArray>
#include <QJsonValue>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

class PanelProcess
{
public:
    // Not started. The panel's files live in a folder of its own until the object goes.
    PanelProcess();
    ~PanelProcess();

    // Path of a file of the panel, "/mnt/data/prj/LangugeSet.cof".
    QString file(const QString &path) const { return m_root.path() + path; }
    void setEnvironment(const QString &name, const QString &value);

    // Starts the program and waits until it says that it is ready. Returns whether it did.
    bool start(const QStringList &options = {});
    // Waits for the program's end. Returns its exit status; -1 if it crashed or did not end.
    int waitForEnd();
    qint64 processId() const { return m_process.processId(); }
    // What the program has printed on standard output so far.
    QByteArray output() const;

    // One request. Returns the reply's value; undefined, with the error kept, if it was refused.
    QJsonValue ask(const QStringList &words);
    const QString &error() const { return m_sError; }

    QJsonValue get(const QString &path) { return ask({QStringLiteral("get"), path}); }
    bool set(const QString &path, const QByteArray &json);
    bool press(const QString &object, int index = -1);

    // A property of the first widget of that name, such as "text" or "visible".
    QJsonValue widget(const QString &object, const QString &property);
    bool isVisible(const QString &object);

    // Waits until `condition` holds, asking again and again. Returns whether it came to hold.
    static bool wait(const std::function<bool()> &condition, int timeoutMs = 10000);

private:
    bool hasEnded();
    QByteArray errors() const;

    QTemporaryDir m_root;
    QProcess m_process;
    QString m_sError;
};
