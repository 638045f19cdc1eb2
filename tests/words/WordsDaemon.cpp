#include "tests/words/WordsDaemon.h"

#include "tests/support/Text.h"

namespace {

constexpr int HEADER_SIZE = 7;
constexpr int ANSWER_TIME = 2000; // ms

// From the function code on, in hexadecimal digits.
QString askRaw(modbus_t *client, const QString &request)
{
    const QByteArray sent = '\1' + QByteArray::fromHex(request.toLatin1());
    std::array<quint8, MODBUS_TCP_MAX_ADU_LENGTH> answer{};
    modbus_send_raw_request(client, reinterpret_cast<const quint8 *>(sent.data()), sent.size());
    const int length = modbus_receive_confirmation(client, answer.data());
    const QByteArray pdu(reinterpret_cast<const char *>(&answer[HEADER_SIZE]),
                         std::max(0, length - HEADER_SIZE));
    const bool failed = (answer[HEADER_SIZE] & 0x80) != 0;
    return failed ? "!%1"_s.arg(answer[HEADER_SIZE + 1]) : QString::fromLatin1(pdu.toHex());
}

} // namespace

WordsDaemon::~WordsDaemon()
{
    cutPower();
}

bool WordsDaemon::start()
{
    if (readFile("/etc/sysset/panel.conf"_s).isEmpty()) {
        writeFile("/etc/sysset/panel.conf"_s, "[words]\nport = 0\n");
        QDir().mkpath(path("/mnt/data/sysset/words"_s));
    }
    m_environment.insert("SYSSET_ROOT"_s, m_root.path());
    m_process.setProcessEnvironment(m_environment);
    m_journal.clear();
    m_client.reset();
    m_process.setReadChannel(QProcess::StandardError);
    m_process.start(QStringLiteral(WORDS_PROGRAM), QStringList());
    const QRegularExpression line("port (\\d+)"_s);
    while (m_process.state() != QProcess::NotRunning) {
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
    if (!m_client) {
        m_client.reset(modbus_new_tcp("127.0.0.1", m_port));
        modbus_set_response_timeout(m_client.get(), ANSWER_TIME / 1000, 0);
        modbus_connect(m_client.get());
    }
    if (request.startsWith(u'#'))
        return askRaw(m_client.get(), request.mid(1));
    const bool reads = request.contains(u'*');
    const int address = request.section(QRegularExpression("[*=]"_s), 0, 0).toInt();
    QStringList values = request.section(QRegularExpression("[*=]"_s), 1).split(u',');
    std::vector<quint16> words(reads ? values[0].toUInt() : 0);
    if (!reads)
        std::transform(values.begin(), values.end(), std::back_inserter(words),
                       [](const QString &value) { return value.toUShort(); });
    const int count = static_cast<int>(words.size());
    const int done = reads ? modbus_read_registers(m_client.get(), address, count, words.data())
                     : count == 1
                         ? modbus_write_register(m_client.get(), address, words[0])
                         : modbus_write_registers(m_client.get(), address, count, words.data());
    if (done < 0)
        return "!%1"_s.arg(errno - MODBUS_ENOBASE);
    values.clear();
    for (const quint16 word : words)
        values << QString::number(word);
    return reads ? values.join(u',') : "ok"_s;
}
