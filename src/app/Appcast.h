// The update feed: RSS 2.0, whose items are versions.
#pragma once

#include "windows/UpdateOffer.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

namespace nimbrel {

struct Appcast
{
    QList<UpdateOffer> items; // in the feed's order; items without a version are left out

    // The one with the highest version, of equal ones the first; nothing in an empty feed.
    [[nodiscard]] std::optional<UpdateOffer> newest() const;
};

// What the feed says, or why it is none. The text is taken as hostile: what it may cost is bounded,
// and nothing outside of it is read. A version is the attribute "shortVersionString" or "version",
// in any namespace, of the item's enclosure, or a child of that name of the item itself; the short
// one wins. The page is the link, else the enclosure's address, where that is http or https.
[[nodiscard]] std::variant<Appcast, QString> readAppcast(const QByteArray &text);

} // namespace nimbrel
