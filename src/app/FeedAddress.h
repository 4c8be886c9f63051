// Whom the search for updates may ask.
#pragma once

#include "app/FeedParameter.h"

#include <QString>
#include <QUrl>

namespace nimbrel {

// The feed's address; empty when there is none that may be asked: https, or plain http to this
// machine itself. What the request carries isn't for everybody on the way.
[[nodiscard]] QUrl feedAddress(const QString &address);

// Where a feed may send the request on to: the same rule, but that this machine may only be asked
// in plain http when the feed lies there itself.
[[nodiscard]] bool mayFollow(const QUrl &feed, const QUrl &target);

// The feed's address with these parameters behind those that it has already.
[[nodiscard]] QUrl withParameters(const QUrl &feed, const FeedParameters &parameters);

} // namespace nimbrel
