// The settings words in a folder: two files that are replaced in turn, so that the latest and the
// one before are always there whole. docs/decisions/0020-words-kept.md says why.
#pragma once

#include "services/words/Registers.h"

#include <optional>
#include <string>

namespace words {

// One generation of the words, as it stands in a file.
struct Generation
{
    std::uint64_t number = 0;
    Values values;
};

// The text of a file: a line for each word, and a checksum. parseGeneration returns nothing if one
// byte of it is not as written.
std::string generationText(const Generation &generation);
std::optional<Generation> parseGeneration(const std::string &text);

// Blocks on the disk. One thread at a time.
class Store
{
public:
    explicit Store(std::string folder) : m_folder(std::move(folder)) {}

    // The latest whole generation; nothing in a new panel, or if both files are broken. A broken
    // file is renamed to end in ".broken", with a line in the journal. If there is no folder,
    // save() does nothing from then on: what is on a disk that comes later is not written over.
    std::optional<Values> load();

    // Keeps `values` in place of the generation before the last. Returns 0 when they are on the
    // disk; else the errno, and what was kept before is untouched.
    int save(const Values &values);

private:
    struct File;

    std::string path(std::uint64_t generation) const;
    std::optional<Generation> loadFile(const std::string &path) const;
    int replace(const std::string &path, const std::string &text) const;

    std::string m_folder;
    std::uint64_t m_number = 0; // of the latest generation
    bool m_bFolder = true;
};

} // namespace words
