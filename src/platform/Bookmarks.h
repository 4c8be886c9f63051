#pragma once

#include <QString>

namespace nimbrel {

// The places in the sidebar of the file browsers.
class Bookmarks
{
public:
    Bookmarks() = default;
    virtual ~Bookmarks() = default;
    Bookmarks(const Bookmarks &) = delete;
    Bookmarks &operator=(const Bookmarks &) = delete;

    // Adds `folder` as the last place; nothing changes where it is one already. Safe on any thread.
    // False when a list couldn't be written; each that could be has it.
    virtual bool add(const QString &folder, const QString &label) = 0;
};

} // namespace nimbrel
