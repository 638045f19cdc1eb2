// The words service as a process on a panel of its own, and a client of it.
#pragma once

#include <QtTest>

#include <memory>
#include <modbus/modbus.h>

class WordsDaemon
{
public:
    WordsDaemon() = default;
    ~WordsDaemon();

    bool start();
    void cutPower();
    bool stop();
    quint16 port() const { return m_port; }
    qint64 pid() const { return m_process.processId(); }
    QProcessEnvironment &environment() { return m_environment; }

    // Lines of its journal that contain `text`.
    int said(const char *text);

    QString path(const QString &absolute) const { return m_root.path() + absolute; }
    void writeFile(const QString &absolute, const QByteArray &content) const;
    QByteArray readFile(const QString &absolute) const;

    // "10590*2" reads two words: "600,100"; "10590=5,50" writes two: "ok"; "#" and hexadecimal
    // digits are sent from the function code on, and the answer comes likewise. A failure is "!"
    // and its number.
    QString ask(const QString &request);

private:
    struct Free
    {
        void operator()(modbus_t *client) const
        {
            modbus_close(client);
            modbus_free(client);
        }
    };

    QTemporaryDir m_root;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_process;
    std::unique_ptr<modbus_t, Free> m_client; // closes its connection too
    QByteArray m_journal;
    quint16 m_port = 0;
};
