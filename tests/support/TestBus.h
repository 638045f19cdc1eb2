// A D-Bus of the test's own, and services on it.
#pragma once

#include "tests/support/Text.h"

#include <QProcess>
#include <QtTest>

#include <sdbus-c++/sdbus-c++.h>

// The process finds it as the system bus.
class TestBus
{
public:
    TestBus() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toLocal8Bit()); }
    ~TestBus() { stop(); }

    void start()
    {
        QFile::remove(m_folder.filePath("bus"_s));
        m_daemon.start("dbus-daemon"_s, {"--session"_s, "--nofork"_s, "--print-address"_s,
                                         "--address="_s + m_address});
        QVERIFY(m_daemon.waitForReadyRead());
    }
    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    pid_t pid() const { return static_cast<pid_t>(m_daemon.processId()); }

private:
    QTemporaryDir m_folder;
    const QString m_address = "unix:path="_s + m_folder.filePath("bus"_s);
    QProcess m_daemon;
};

// A service of one object or more. It is silent until it is told to answer.
class BusService
{
public:
    explicit BusService(const char *name) : m_connection(sdbus::createSystemBusConnection(name)) {}

    sdbus::IObject &add(const char *path)
    {
        m_objects.push_back(sdbus::createObject(*m_connection, path));
        return *m_objects.back();
    }
    void answer() { m_connection->enterEventLoopAsync(); }

private:
    std::unique_ptr<sdbus::IConnection> m_connection;
    std::vector<std::unique_ptr<sdbus::IObject>> m_objects;
};

// timedated. "prompt"; "synced" refuses until the synchronisation is off, "lagging" once more after
// that, "stubborn" always, and takes no word about it; "refused"; "slow" answers too late.
class FakeTimedated
{
public:
    explicit FakeTimedated(QString mood) : m_mood(std::move(mood))
    {
        auto &object = m_service.add("/org/freedesktop/timedate1");
        object.registerMethod("SetTime").onInterface(NAME).implementedAs(
            [this](std::int64_t value, bool relative, bool interactive) {
                setTime(relative || interactive ? -1 : value);
            });
        object.registerMethod("SetNTP").onInterface(NAME).implementedAs([this](bool on, bool) {
            if (m_mood == "stubborn"_s)
                throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "no");
            m_mood = on ? m_mood : m_mood == "lagging"_s ? "synced once"_s : "prompt"_s;
        });
        object.finishRegistration();
        m_service.answer();
    }

    std::atomic<std::int64_t> time{0}; // us, as it has been set
    std::atomic<int> asked{0};         // calls of SetTime

private:
    void setTime(std::int64_t value)
    {
        ++asked;
        if (m_mood == "refused"_s)
            throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "no");
        if (m_mood == "slow"_s)
            QThread::sleep(1);
        else if (m_mood != "prompt"_s) {
            m_mood = m_mood == "synced once"_s ? "prompt"_s : m_mood;
            throw sdbus::Error("org.freedesktop.timedate1.AutomaticTimeSyncEnabled", "on");
        }
        time = value;
    }

    static constexpr const char *NAME = "org.freedesktop.timedate1";
    QString m_mood;
    BusService m_service{NAME}; // the last, as its thread ends first
};
