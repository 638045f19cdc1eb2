// The texts of the network diagnosis, from the item file of a language.
#pragma once

#include "network/NetWorkTestItems.h"

#include <QString>

#include <array>
#include <optional>

// What an item file says of one item. A text that it lacks, or that is no string, is empty.
struct NetWorkTestText
{
    QString title;
    QString success;
    QString failure;
    QString solution; // what the operator can do about a failure
};

// Results of a lookup that finds nothing.
enum NetWorkTestLookup {
    LOOKUP_NO_FILE = -1,
    LOOKUP_TOO_LARGE = -2, // the item number
    LOOKUP_NO_KEY = -3,    // the item number has none
    LOOKUP_NO_OBJECT = -4, // the file has none for the key
};

// One thread at a time.
class NetWorkTestTexts
{
public:
    // Reads the item file of language 0 (Chinese) or 1 (English), in place of what was read before.
    // Returns whether that worked: not for another language, and not for a file that is missing,
    // no regular file, empty, longer than 1 MB or no JSON object.
    bool load(int language);
    bool isLoaded() const { return m_bLoaded; }

    // The texts of the item of that number. Returns 0, or a NetWorkTestLookup, `text` untouched.
    int find(int item, NetWorkTestText &text) const;

private:
    bool m_bLoaded = false;
    std::array<std::optional<NetWorkTestText>, NETWORK_TEST_KEYS.size()> m_texts;
};
