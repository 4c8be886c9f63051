// A folder that the kernel reads.
#pragma once

#include "fs/GuardedListing.h"

#include <vector>

namespace nimbrel {

// Its listing, and a way back in it: the kernel takes what fits its caller's buffer and asks for
// the rest again. What was given last is kept for that, since not every store finds a place again
// after something was removed.
class OpenFolder final
{
public:
    explicit OpenFolder(GuardedListing listing) : _listing(std::move(listing)) {}

    // To a place that an entry told, or to the beginning (0), as the folder is now.
    void moveTo(off_t place);
    // The entry at this place, null at the end; take() goes to the next one.
    NBErrnoOr<const NBDirectoryEntry *> peek();
    void take();

    NBErrnoOr<struct stat> attributesOf(const NBDirectoryEntry &entry) const
    {
        return _listing.attributesOf(entry);
    }
    NBErrnoOr<struct stat> attributes() const { return _listing.attributes(); }

private:
    // Where in `_held` the entry at `place` is; its size where it is the one that comes next. False
    // when it isn't among them.
    bool findHeld(off_t place);

    GuardedListing _listing;
    std::vector<NBDirectoryEntry> _held; // what was given last, and what waits
    std::size_t _at = 0;                 // in `_held`
    off_t _start = 0;                    // the place of the first one held
    bool _isFresh = true;                // nothing was read yet
};

} // namespace nimbrel
