#include "system/ComParam.h"

#include "system/RuntimeWord.h"

#include <algorithm>

QStringList listSeralType;

namespace {

constexpr const char *CONNECTIONS = "RS232,RS485_1,RS422,NULL,RS485_2";
constexpr const char *BAUDS =
    "1200,2400,4800,9600,19200,38400,57600,115200,187500,230400,460800,\t\t\t\t\t\t  500000,576000,"
    "921600,1000000,1152000,1500000,2000000,2500000,3000000,3500000,4000000";

constexpr int RS485_2_INDEX = 4;
constexpr unsigned short RS485_2_WORD = 6;
constexpr int SERIAL_FIELDS = COM_PARITY + 1;

enum Result {
    WORD_NOT_READ = -2,
    NO_SUCH_PORT = -2,
    NOT_ELEVEN_FIELDS = -2,
    NOT_CONFIGURED = -3,
    NO_SUCH_CONNECTION = -3,
    NO_SUCH_BAUD = -4,
    NO_SUCH_PARITY = -5,
    SERIAL_WORD_NOT_WRITTEN = -6,
    LATER_WORD_NOT_WRITTEN = -7,
};

struct PortBase
{
    const char *name;
    unsigned int base;
};

// In the order of listSeralType. The four words before COM1-3 belong to no port.
constexpr PortBase PORTS[] = {{"COM1-1", 10061}, {"COM1-2", 10094}, {"COM1-3", 10120},
                              {"COM2-1", 10072}, {"COM2-2", 10105}, {"COM3", 10083}};

// Null if no port has that name.
const PortBase *findPort(const QString &name)
{
    const auto *port = std::find_if(std::begin(PORTS), std::end(PORTS), [&](const PortBase &each) {
        return name == QLatin1String(each.name);
    });
    return port == std::end(PORTS) ? nullptr : port;
}

// A plain number in place of an item that is missing could be written back as another one: 9600 as
// the index of the rate 9600.
QString itemOf(const QStringList &list, int index)
{
    return index < list.size() ? list.at(index) : QStringLiteral("?%1").arg(index);
}

bool isZero(unsigned short word)
{
    return word == 0;
}

struct Reading
{
    ComWords words{}; // 0 from the first one on that the runtime does not give
    bool complete = true;
};

Reading readWords(unsigned int base)
{
    Reading reading;
    for (unsigned int i = 0; i < COM_FIELDS && reading.complete; ++i)
        reading.complete = readWord(base + i, reading.words[i]) == 0;
    return reading;
}

// Writes every word, also those behind one that the runtime does not take.
int writeEach(unsigned int base, const ComWords &words)
{
    int result = 0;
    for (unsigned int i = 0; i < COM_FIELDS; ++i) {
        if (writeWord(base + i, words[i]) != 0 && result == 0)
            result = i < SERIAL_FIELDS ? SERIAL_WORD_NOT_WRITTEN : LATER_WORD_NOT_WRITTEN;
    }
    return result;
}

// The index of `item`, or `refusal` if the list does not have it.
int indexOr(int refusal, const QStringList &list, const QString &item)
{
    const int index = list.indexOf(item);
    return index < 0 ? refusal : index;
}

} // namespace

QStringList comItems(const char *list)
{
    return QString::fromLatin1(list).split(QLatin1Char(','));
}

ComParamLists::ComParamLists()
    : m_connections(comItems(CONNECTIONS)),
      m_bauds(comItems(BAUDS)),
      m_parities(comItems(COM_PARITIES))
{
}

QString ComParamLists::settingsOf(const ComWords &words) const
{
    QStringList fields;
    for (const unsigned short word : words)
        fields << QString::number(word);
    const unsigned short connection = words[COM_CONNECTION];
    fields[COM_CONNECTION] =
        itemOf(m_connections, connection == RS485_2_WORD ? RS485_2_INDEX : connection);
    fields[COM_BAUD] = itemOf(m_bauds, words[COM_BAUD]);
    fields[COM_PARITY] = itemOf(m_parities, words[COM_PARITY]);
    return fields.join(QLatin1Char(','));
}

// Returns 0, or why the settings cannot be written, as writePort().
int ComParamLists::wordsOf(const QString &settings, ComWords &words) const
{
    const QStringList fields = settings.split(QLatin1Char(','));
    if (fields.size() != COM_FIELDS)
        return NOT_ELEVEN_FIELDS;
    const int connection = indexOr(NO_SUCH_CONNECTION, m_connections, fields[COM_CONNECTION]);
    const int baud = indexOr(NO_SUCH_BAUD, m_bauds, fields[COM_BAUD]);
    const int parity = indexOr(NO_SUCH_PARITY, m_parities, fields[COM_PARITY]);
    for (const int index : {connection, baud, parity}) {
        if (index < 0)
            return index;
    }
    std::transform(fields.begin(), fields.end(), words.begin(),
                   [](const QString &field) { return field.toUShort(); });
    words[COM_CONNECTION] =
        connection == RS485_2_INDEX ? RS485_2_WORD : static_cast<unsigned short>(connection);
    words[COM_BAUD] = static_cast<unsigned short>(baud);
    words[COM_PARITY] = static_cast<unsigned short>(parity);
    return 0;
}

int ComParamLists::readPort(unsigned int base, QString &settings, bool *complete) const
{
    const Reading reading = readWords(base);
    if (complete != nullptr)
        *complete = reading.complete;
    settings = settingsOf(reading.words);
    if (std::all_of(reading.words.begin(), reading.words.begin() + SERIAL_FIELDS, isZero))
        return NOT_CONFIGURED;
    return reading.complete ? 0 : WORD_NOT_READ;
}

int ComParamLists::writePort(unsigned int base, const QString &settings) const
{
    ComWords words{};
    const int refusal = wordsOf(settings, words);
    return refusal != 0 ? refusal : writeEach(base, words);
}

int ComParamLists::readPort(const QString &name, QString &settings, bool *complete) const
{
    const PortBase *port = findPort(name);
    return port == nullptr ? NO_SUCH_PORT : readPort(port->base, settings, complete);
}

int ComParamLists::writePort(const QString &name, const QString &settings) const
{
    const PortBase *port = findPort(name);
    return port == nullptr ? NO_SUCH_PORT : writePort(port->base, settings);
}

std::vector<ComPort> ComParamLists::portsInUse(bool *complete) const
{
    std::vector<ComPort> ports;
    bool all = true;
    for (const PortBase &port : PORTS) {
        const Reading reading = readWords(port.base);
        all = all && reading.complete;
        if (!std::all_of(reading.words.begin(), reading.words.end(), isZero))
            ports.push_back({QLatin1String(port.name), settingsOf(reading.words)});
    }
    if (complete != nullptr)
        *complete = all;
    return ports;
}
