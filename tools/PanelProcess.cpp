#include "tools/PanelProcess.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QThread>

namespace {

constexpr int PROCESS_TIMEOUT_MS = 30000; // for the program to start or to end
constexpr int REPLY_TIMEOUT_MS = 30000;   // for the control socket to take a request or to reply

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

PanelProcess::PanelProcess()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("SYSSET_ROOT"), m_root.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    if (!environment.contains(QStringLiteral("FONTCONFIG_FILE")))
        environment.insert(QStringLiteral("FONTCONFIG_FILE"), QStringLiteral(PANEL_FONTS));
    m_process.setProcessEnvironment(environment);
    // To files: the program would block on a pipe that nobody reads.
    m_process.setStandardOutputFile(m_root.path() + QStringLiteral("/stdout"));
    m_process.setStandardErrorFile(m_root.path() + QStringLiteral("/stderr"));
}

PanelProcess::~PanelProcess()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(PROCESS_TIMEOUT_MS);
}

void PanelProcess::setEnvironment(const QString &name, const QString &value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

bool PanelProcess::start(const QStringList &options)
{
    m_process.start(QStringLiteral(PANEL_PROGRAM), options);
    return wait([this] { return errors().contains("panel ready") || hasEnded(); },
                PROCESS_TIMEOUT_MS) &&
           !hasEnded();
}

bool PanelProcess::hasEnded()
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(0);
}

int PanelProcess::waitForEnd()
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(PROCESS_TIMEOUT_MS))
        return -1;
    if (m_process.exitCode() != 0 || m_process.exitStatus() != QProcess::NormalExit)
        qWarning("%s", errors().constData());
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QByteArray PanelProcess::errors() const
{
    return contents(m_root.path() + QStringLiteral("/stderr"));
}

QByteArray PanelProcess::output() const
{
    return contents(m_root.path() + QStringLiteral("/stdout"));
}

QJsonValue PanelProcess::ask(const QStringList &words)
{
    QLocalSocket socket;
    socket.connectToServer(m_root.path() + QStringLiteral("/run/panel.sock"));
    if (!socket.waitForConnected(REPLY_TIMEOUT_MS)) {
        m_sError = socket.errorString();
        if (hasEnded())
            m_sError += QStringLiteral(": the panel has ended\n") + QString::fromUtf8(errors());
        return QJsonValue::Undefined;
    }
    const QJsonObject request{{QStringLiteral("verb"), words.first()},
                              {QStringLiteral("args"), QJsonArray::fromStringList(words.mid(1))}};
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    QByteArray line;
    while (!line.endsWith('\n') &&
           (socket.bytesAvailable() > 0 || socket.waitForReadyRead(REPLY_TIMEOUT_MS)))
        line += socket.readAll();
    const QJsonObject reply = QJsonDocument::fromJson(line).object();
    m_sError = reply.value(QLatin1String("error")).toString();
    if (!reply.value(QLatin1String("ok")).toBool())
        return QJsonValue::Undefined;
    const QJsonValue value = reply.value(QLatin1String("value"));
    return value.isUndefined() ? QJsonValue(QJsonValue::Null) : value;
}

bool PanelProcess::set(const QString &path, const QByteArray &json)
{
    return !ask({QStringLiteral("set"), path, QString::fromUtf8(json)}).isUndefined();
}

bool PanelProcess::press(const QString &object, int index)
{
    QStringList words{QStringLiteral("ui"), QStringLiteral("press"), object};
    if (index >= 0)
        words << QString::number(index);
    return !ask(words).isUndefined();
}

QJsonValue PanelProcess::widget(const QString &object, const QString &property)
{
    const QJsonArray found = ask({QStringLiteral("ui"), QStringLiteral("dump"), object}).toArray();
    return found.isEmpty() ? QJsonValue(QJsonValue::Undefined)
                           : found.first().toObject().value(property);
}

bool PanelProcess::isVisible(const QString &object)
{
    return widget(object, QStringLiteral("visible")).toBool();
}

bool PanelProcess::wait(const std::function<bool()> &condition, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QThread::msleep(20);
    }
    return true;
}
