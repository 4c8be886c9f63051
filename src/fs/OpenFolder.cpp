#include "fs/OpenFolder.h"

namespace nimbrel {

bool OpenFolder::findHeld(off_t place)
{
    off_t here = _start;
    for (std::size_t i = 0; i <= _held.size(); ++i) {
        if (here == place) {
            _at = i;
            return true;
        }
        if (i < _held.size())
            here = _held[i].next;
    }
    return false;
}

void OpenFolder::moveTo(off_t place)
{
    const bool isRewound = place == 0 && !_isFresh;
    if (isRewound || !findHeld(place)) {
        _listing.seek(place);
        _held.clear();
        _at = 0;
    }
    _held.erase(_held.begin(), _held.begin() + static_cast<std::ptrdiff_t>(_at));
    _at = 0;
    _start = place;
    _isFresh = false;
}

NBErrnoOr<const NBDirectoryEntry *> OpenFolder::peek()
{
    if (_at == _held.size()) {
        NBErrnoOr<NBDirectoryEntry *> next = _listing.next();
        if (!next)
            return next.error();
        if (*next == nullptr)
            return static_cast<const NBDirectoryEntry *>(nullptr);
        _held.push_back(std::move(**next));
    }
    return &_held[_at];
}

void OpenFolder::take()
{
    ++_at;
}

} // namespace nimbrel
