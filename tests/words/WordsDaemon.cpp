#include "tests/words/WordsDaemon.h"

#include <QtEndian>

namespace {

constexpr int HEADER_SIZE = 7;
constexpr int ANSWER_TIME = 2000; // ms

QByteArray word(int value)
{
    QByteArray bytes(2, 0);
    qToBigEndian(static_cast<quint16>(value), bytes.data());
    return bytes;
}

QByteArray pduOf(const QString &request)
{
    const QStringList read = request.split(QLatin1Char('*'));
    const QStringList write = request.split(QLatin1Char('='));
    if (request.startsWith(QLatin1Char('#')))
        return QByteArray::fromHex(request.toLatin1().mid(1));
    if (read.size() == 2)
        return '\x03' + word(read[0].toInt()) + word(read[1].toInt());
    QByteArray values;
    for (const QString &value : write.value(1).split(QLatin1Char(',')))
        values += word(value.toInt());
    const QByteArray address = word(write[0].toInt());
    if (values.size() == 2)
        return '\x06' + address + values;
    return '\x10' + address + word(values.size() / 2) + static_cast<char>(values.size()) + values;
}

QString textOf(const QString &request, const QByteArray &pdu)
{
    if (pdu.isEmpty())
        return {};
    if ((pdu[0] & 0x80) != 0)
        return QStringLiteral("!%1").arg(int{pdu[1]});
    if (request.startsWith(QLatin1Char('#')))
        return QString::fromLatin1(pdu.toHex());
    if (pdu[0] != 3)
        return QStringLiteral("ok");
    QStringList values;
    for (int i = 2; i < pdu.size(); i += 2)
        values << QString::number(qFromBigEndian<quint16>(pdu.constData() + i));
    return values.join(QLatin1Char(','));
}

} // namespace

WordsDaemon::~WordsDaemon()
{
    cutPower();
}

bool WordsDaemon::start(const QString &shell)
{
    if (readFile(QStringLiteral("/etc/sysset/panel.conf")).isEmpty()) {
        writeFile(QStringLiteral("/etc/sysset/panel.conf"), "[words]\nport = 0\n");
        QDir().mkpath(path(QStringLiteral("/mnt/data/sysset/words")));
    }
    m_environment.insert(QStringLiteral("SYSSET_ROOT"), m_root.path());
    m_process.setProcessEnvironment(m_environment);
    m_journal.clear();
    m_client.abort();
    m_process.setReadChannel(QProcess::StandardError);
    m_process.start(QStringLiteral("/bin/sh"),
                    {QStringLiteral("-c"), shell + QStringLiteral(" exec '" WORDS_PROGRAM "'")});
    const QRegularExpression line(QStringLiteral("port (\\d+)"));
    while (isRunning() || m_process.state() == QProcess::Starting) {
        said("");
        const auto match = line.match(QString::fromLocal8Bit(m_journal));
        m_port = static_cast<quint16>(match.captured(1).toInt());
        if (match.hasMatch())
            return true;
        m_process.waitForReadyRead(ANSWER_TIME);
    }
    return false;
}

void WordsDaemon::cutPower()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool WordsDaemon::stop()
{
    m_process.terminate();
    return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit &&
           m_process.exitCode() == 0;
}

int WordsDaemon::said(const char *text)
{
    QCoreApplication::processEvents();
    m_journal += m_process.readAllStandardError();
    int count = 0;
    for (const QByteArray &line : m_journal.split('\n'))
        count += line.contains(text) ? 1 : 0;
    return count;
}

void WordsDaemon::writeFile(const QString &absolute, const QByteArray &content) const
{
    QFile file(path(absolute));
    QDir().mkpath(QFileInfo(file).path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray WordsDaemon::readFile(const QString &absolute) const
{
    QFile file(path(absolute));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString WordsDaemon::ask(const QString &request)
{
    return textOf(request, exchange(pduOf(request)));
}

// Length and transaction of the answer must be right, or it is none.
QByteArray WordsDaemon::exchange(const QByteArray &pdu)
{
    if (m_client.state() != QTcpSocket::ConnectedState) {
        m_client.connectToHost(QHostAddress::LocalHost, m_port);
        m_client.waitForConnected(ANSWER_TIME);
    }
    m_client.write(QByteArray("\x12\x34\0\0", 4) + word(pdu.size() + 1) + '\x01' + pdu);
    while (m_client.bytesAvailable() < HEADER_SIZE ||
           m_client.bytesAvailable() <
               HEADER_SIZE - 1 + qFromBigEndian<quint16>(m_client.peek(6).constData() + 4)) {
        if (!m_client.waitForReadyRead(ANSWER_TIME))
            return {};
    }
    const QByteArray answer = m_client.readAll();
    return answer.startsWith("\x12\x34") ? answer.mid(HEADER_SIZE) : QByteArray();
}
