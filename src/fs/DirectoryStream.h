// A folder on the store, entry by entry.
#pragma once

#include "fs/DirectoryNames.h"
#include "fs/NBErrno.h"

#include <string>
#include <sys/stat.h>

namespace nimbrel {

// readdir(3) over a descriptor of its own. However long the folder is, a few entries are held.
class DirectoryStream final
{
public:
    // `path` is on disk and may be longer than a system call takes.
    [[nodiscard]] static NBErrnoOr<DirectoryStream> open(const std::string &path);

    // The next entry, "." and ".." too, until the next call; null at the end. Its `d_off` is where
    // the entry behind it stands.
    NBErrnoOr<const dirent *> next();
    // To a place that `d_off` gave, or to the beginning (0), as the folder is now.
    void seek(off_t place);

    // lstat(2) of an entry, without a walk along a path; of the folder itself.
    NBErrnoOr<struct stat> attributesOf(const char *storedName) const;
    NBErrnoOr<struct stat> attributes() const;

private:
    explicit DirectoryStream(DirectoryHandle directory) : _directory(std::move(directory)) {}

    DirectoryHandle _directory;
};

} // namespace nimbrel
