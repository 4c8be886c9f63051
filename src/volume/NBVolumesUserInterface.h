#pragma once

#include "crypto/SecureBuffer.h"

#include <QString>

#include <optional>

namespace nimbrel {

class NBNimbrelVolume;

// What the user answers when a folder's password is asked for.
struct PassphraseAnswer
{
    SecureBuffer passphrase; // UTF-8
    bool storePassphrase = false;
};

// What the user wants of a new encrypted folder.
struct NBNewVolumeSettings
{
    QString path = {};
    SecureBuffer passphrase = {}; // UTF-8
    bool storePassphrase = true;
    QString label = QStringLiteral("Nimbrel");
    qint64 keySize = 256;    // bits
    qint64 blockSize = 4096; // bytes
    bool encodeFilenames = true;
    bool automount = true;
    bool spotlight = false;
    bool local = false;
    bool allowAll = false;
    QString configPath = {}; // null: in the folder, under its usual name
};

// Where volumes need a person: the windows fill this. Main thread; calls block until the answer.
class NBVolumesUserInterface
{
public:
    NBVolumesUserInterface() = default;
    virtual ~NBVolumesUserInterface() = default;
    NBVolumesUserInterface(const NBVolumesUserInterface &) = delete;
    NBVolumesUserInterface &operator=(const NBVolumesUserInterface &) = delete;

    // Nothing when the user cancels.
    [[nodiscard]] virtual std::optional<PassphraseAnswer>
    passphraseFor(const NBNimbrelVolume &volume) = 0;

    // Simple mode serves one volume, advanced mode a list.
    [[nodiscard]] virtual bool advancedMode() const = 0;
    // Nothing when the user cancels.
    [[nodiscard]] virtual std::optional<NBNewVolumeSettings> newVolumeSettings() = 0;
    // The success page; true when the user wants to see the new volume.
    [[nodiscard]] virtual bool showSuccess(const NBNimbrelVolume &volume) = 0;

    // The manager window's road for a folder that is handed in from outside.
    virtual void addVolumeAtPath(const QString &path) = 0;
};

} // namespace nimbrel
