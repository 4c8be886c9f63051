#pragma once

#include "discovery/NBCloudService.h"

#include <QByteArray>

namespace nimbrel {

// By "~/.dropbox/host.db", whose second line is the sync root in base64.
class NBDropboxCloudService final : public NBCloudService
{
public:
    NBDropboxCloudService();

    [[nodiscard]] bool isAvailable() override;

    // stringWithBase64String:
    // The text that `string`, one line of base64 with or without its line feed, stands for, up to
    // its first zero. Empty when it isn't base64 or what it stands for isn't ASCII (kept: a sync
    // root with an umlaut in its path isn't found here).
    [[nodiscard]] static QString stringWithBase64String(const QByteArray &string);
};

} // namespace nimbrel
