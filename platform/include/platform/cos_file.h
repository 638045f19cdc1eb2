// Operating-system layer: files and directories. Paths are used as given, see platform/paths.h.
#pragma once

#include <string>
#include <vector>

namespace COS {

// All functions: any thread.
class CosFile
{
public:
    // True if `path` names anything but a dangling link.
    static bool ExistFile(const std::string &path);

    // Copies the regular file `from` to `to`, making the directories of `to` that are missing.
    // `to` appears whole or not at all: the copy is written beside it, synced and renamed
    // (rename(2)), which replaces a file or a link of that name. It has the permissions of `from`,
    // and its owner may write it. A power failure in between can leave ".copy-" and six letters.
    // Returns 0; -1 if `from` cannot be read or is no regular file, -2 if a directory cannot be
    // made, -3 if `to` cannot be written.
    static int CopyWithMakeDir(const std::string &from, const std::string &to);
};

class CosDir
{
public:
    // The names in `directory` that match `pattern`, without "." and "..", in the order of their
    // bytes, into `names` (emptied first). Names are bytes as the file system has them. `pattern`
    // is a shell pattern (fnmatch(3) without flags, so that a leading dot is like any other
    // character); "*.*" is every name with a dot in it.
    // Returns how many there are; -1 if the directory cannot be read.
    static int ListDir(const std::string &directory, const std::string &pattern,
                       std::vector<std::string> &names);

    // Makes `path` and the directories above it that are missing (mode 0755).
    // Returns 0, also if it is there already; -1 on failure.
    static int MakeDir(const std::string &path);
};

} // namespace COS
