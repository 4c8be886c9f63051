#pragma once

#include <QDateTime>
#include <QString>
#include <QUrl>

namespace nimbrel {

// A newer version, as the feed tells of it. Nothing of it is trusted: notes are foreign text.
struct UpdateOffer
{
    QString version = {}; // "1.10"
    QString title = {};
    QString notes = {}; // HTML or plain text
    QUrl page = {};     // http or https; where the version can be had
    QDateTime published = {};
};

} // namespace nimbrel
