// The COM ports' settings: eleven words a port in the control runtime, and in this program one text
// a port, its eleven fields joined by ",". GUI thread.
#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <vector>

// Fields of the text, and words of the port, in order.
enum ComField {
    COM_CONNECTION = 0, // name; an index in the word, but 6 for "RS485_2"
    COM_BAUD = 1,       // decimal text; an index in the word
    COM_DATA_BITS = 2,
    COM_STOP_BITS = 3,
    COM_PARITY = 4,        // name; an index in the word
    COM_WAIT_TIMEOUT = 5,  // ms
    COM_READ_TIMEOUT = 6,  // ms
    COM_RETRIES = 7,       // times
    COM_RETRY_TIMEOUT = 8, // s
    COM_HMI_STATION = 9,
    COM_DEVICE_STATION = 10,
    COM_FIELDS = 11,
};

using ComWords = std::array<unsigned short, COM_FIELDS>;

constexpr const char *COM_PARITIES = "NONE,ODD,EVEN,SPACE,Mark";

// The items of a list that is written as one text, joined by ",".
QStringList comItems(const char *list);

// A port and its settings as text.
struct ComPort
{
    QString name; // "COM1-2"
    QString settings;
};

// Names of the ports in use, in the order of the COM page; set by CommSetting::init().
extern QStringList listSeralType;

// The codec between words and text, and the lists that some words are indices of.
class ComParamLists
{
public:
    ComParamLists();

    // Reads the port whose words begin at `base`. The baud rate 500000 has white space in front,
    // and must be written with it. The text is built in any case: a word that could not be read
    // counts as 0, and so do those behind it; an index that its list does not have becomes "?" and
    // the number, which no write takes. `complete` tells whether all words were read. Returns 0; -3
    // if the first five words are all 0 (the port is not configured); else -2 if a word could not
    // be read.
    [[nodiscard]] int readPort(unsigned int base, QString &settings,
                               bool *complete = nullptr) const;

    // Writes the port whose words begin at `base`, word by word; numbers that are none from 0 to
    // 65535 count as 0. Returns 0. Without a write: -2 if there are not eleven fields; -3, -4 or -5
    // if the lists have no such connection, baud rate or parity. With all other words written: -6
    // if one of the first five was not taken, else -7 if a later one was not.
    [[nodiscard]] int writePort(unsigned int base, const QString &settings) const;

    // Same by the port's name; -2 also for a name that no port has, with `settings` untouched.
    [[nodiscard]] int readPort(const QString &name, QString &settings,
                               bool *complete = nullptr) const;
    [[nodiscard]] int writePort(const QString &name, const QString &settings) const;

    // The ports whose settings are not all zero, in the order of listSeralType. `complete` tells
    // whether all words of all ports were read.
    std::vector<ComPort> portsInUse(bool *complete = nullptr) const;

private:
    QString settingsOf(const ComWords &words) const;
    int wordsOf(const QString &settings, ComWords &words) const;

    QStringList m_connections;
    QStringList m_bauds;
    QStringList m_parities;
};
