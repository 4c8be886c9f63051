// What a folder shows, entry by entry.
#pragma once

#include "fs/DirectoryStream.h"
#include "fs/NBNimbrelFS.h"

namespace nimbrel {

// Over a delegate that hides what isn't ours: without names that can't be names, and stored names
// that can't be opened. "." and ".." are shown as the store has them. Of a folder of any length
// one entry is held.
class GuardedListing final
{
public:
    // `path` is plain; the delegate outlives this.
    [[nodiscard]] static NBErrnoOr<GuardedListing> open(NBNimbrelFS &delegate,
                                                        const std::string &path);

    // Until the next call; null at the end.
    NBErrnoOr<NBDirectoryEntry *> next();
    // To a place that an entry told (`next`), or to the beginning (0), as the folder is now.
    void seek(off_t place) { _stream.seek(place); }

    // As GuardedTree::attributes gives them.
    NBErrnoOr<struct stat> attributesOf(const NBDirectoryEntry &entry) const;
    NBErrnoOr<struct stat> attributes() const { return _stream.attributes(); } // the folder's

private:
    GuardedListing(NBNimbrelFS &delegate, DirectoryStream stream, bool isRoot)
        : _delegate(&delegate), _stream(std::move(stream)), _isRoot(isRoot)
    {
    }
    [[nodiscard]] bool shows(const dirent &stored);

    NBNimbrelFS *_delegate;
    DirectoryStream _stream;
    bool _isRoot;
    NBDirectoryEntry _entry;
};

} // namespace nimbrel
