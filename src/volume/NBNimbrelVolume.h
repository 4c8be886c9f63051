// The application's record of one encrypted folder, and its mounting.
#pragma once

#include "crypto/SecureBuffer.h"
#include "volume/VolumeServices.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace nimbrel {

class KeyedRecord;
class MountPointFolder;
class NBNimbrelFS;
class NBNimbrelVolume;
class UserFileSystem;
struct MountFailure;
struct NBPreferencesError;
struct OpenedFolder;

using VolumePtr = std::shared_ptr<NBNimbrelVolume>;
using VolumeHandler = std::function<void(bool)>; // may be absent

// Hears of mounts and unmounts that no handler waits for.
class NBNimbrelVolumeDelegate
{
public:
    NBNimbrelVolumeDelegate() = default;
    virtual ~NBNimbrelVolumeDelegate() = default;
    NBNimbrelVolumeDelegate(const NBNimbrelVolumeDelegate &) = delete;
    NBNimbrelVolumeDelegate &operator=(const NBNimbrelVolumeDelegate &) = delete;

    virtual void volumeDidMount(NBNimbrelVolume &volume) = 0;
    virtual void volumeDidUnmount(NBNimbrelVolume &volume) = 0;
};

// Main thread only: what takes time (keys, the system's mounting, the secret store after a mount)
// runs elsewhere and comes back here. A null string is a missing one. The password is never
// archived. Dropping the last pointer to a mounted volume ends its disk.
class NBNimbrelVolume final : public std::enable_shared_from_this<NBNimbrelVolume>
{
public:
    // initWithPath:passphrase:keySize:blockSize:, and its shorter forms
    // An existing folder with the old extension "nm" is renamed to "nmc"; it keeps its name where
    // that fails. Key size in bits, block size in bytes.
    [[nodiscard]] static VolumePtr withPath(VolumeServices &services, const QString &path = {},
                                            SecureBuffer passphrase = {}, qint64 keySize = 256,
                                            qint64 blockSize = 4096);
    // initWithCoder:
    // A record of another version than 1 is logged, and has neither path nor label.
    [[nodiscard]] static VolumePtr withCoder(VolumeServices &services, const KeyedRecord &coder);
    ~NBNimbrelVolume();
    NBNimbrelVolume(const NBNimbrelVolume &) = delete;
    NBNimbrelVolume &operator=(const NBNimbrelVolume &) = delete;

    // encodeWithCoder:
    void encode(KeyedRecord &withCoder) const;

    // The record. Setters take effect at the next mount.
    [[nodiscard]] qint64 version() const noexcept { return _version; }
    [[nodiscard]] const QString &label() const noexcept { return _label; }
    void setLabel(const QString &label) { _label = label; }
    [[nodiscard]] const QString &path() const noexcept { return _path; }
    void setPath(const QString &path) { _path = path; }
    [[nodiscard]] const QString &configPath() const noexcept { return _configPath; }
    void setConfigPath(const QString &configPath) { _configPath = configPath; }
    [[nodiscard]] bool storePassphrase() const noexcept { return _storePassphrase; }
    void setStorePassphrase(bool store) noexcept { _storePassphrase = store; }
    [[nodiscard]] bool automount() const noexcept { return _automount; }
    void setAutomount(bool automount) noexcept { _automount = automount; }
    [[nodiscard]] bool checkKey() const noexcept { return _checkKey; } // no mount reads it
    void setCheckKey(bool checkKey) noexcept { _checkKey = checkKey; }
    [[nodiscard]] bool spotlight() const noexcept { return _spotlight; }
    void setSpotlight(bool spotlight) noexcept { _spotlight = spotlight; }
    [[nodiscard]] bool isLocal() const noexcept { return _local; }
    void setLocal(bool local) noexcept { _local = local; }
    [[nodiscard]] bool allowsAll() const noexcept { return _allowAll; }
    void setAllowAll(bool allowAll) noexcept { _allowAll = allowAll; }
    [[nodiscard]] bool isMounted() const noexcept { return _isMounted; }
    void setIsMounted(bool isMounted) noexcept { _isMounted = isMounted; }
    [[nodiscard]] bool isBusy() const noexcept { return _isBusy; }
    void setDelegate(NBNimbrelVolumeDelegate *delegate) noexcept { _delegate = delegate; }
    [[nodiscard]] NBNimbrelVolumeDelegate *delegate() const noexcept { return _delegate; }

    // Forwarded to the filesystem's delegate. A record out of the archive has none before its first
    // mount: false and 0 until then, and setting does nothing.
    [[nodiscard]] bool encodeFilenames() const;
    void setEncodeFilenames(bool encode);
    [[nodiscard]] qint64 keySize() const;
    void setKeySize(qint64 keySize);
    [[nodiscard]] qint64 blockSize() const;
    void setBlockSize(qint64 blockSize);

    // Mounting. A mount that stops before the disk is started tells neither handler nor delegate,
    // and the handler stays for the next one (kept, see QUIRKS).
    void mount();
    void mount(VolumeHandler withCompletionHandler);
    void unmount();
    void unmount(VolumeHandler withCompletionHandler);
    [[nodiscard]] QString mountPoint() const;
    [[nodiscard]] QStringList mountOptions() const;
    [[nodiscard]] bool isMountPointInUse() const;
    bool deleteMountPoint() const;
    void openAndMountIfRequired();

    // A new folder on disk.
    [[nodiscard]] bool writePreferencesToDisk();
    [[nodiscard]] bool writeToDisk();
    void writeAuxiliaryFilesToDisk();

    // The password, UTF-8; empty for none.
    [[nodiscard]] std::string_view passphrase() const noexcept { return _passphrase.text(); }
    void setPassphrase(SecureBuffer passphrase);
    [[nodiscard]] QString keychainServiceName() const;
    void doStorePassphrase();
    void clearPassphrase();
    // changePassphrase:newPassphrase:  Tells the user of a failure itself. Runs the event loop
    // while keys are derived, without the user's input.
    [[nodiscard]] bool changePassphrase(std::string_view passphrase,
                                        std::string_view newPassphrase);
    // Asks the user; true when one was given.
    bool showPassphraseAssistant();

    // Housekeeping.
    [[nodiscard]] QString aliasPath() const;
    void createAliases(); // goes on in the background
    void disableTrash() const;
    void fixDamagedFiles();
    bool alertShowHelp();
    [[nodiscard]] static QString runTask(const QString &withLaunchPath,
                                         const QStringList &arguments = {});
    // pathOfFileWithURL:  the on-disk path of a plain path rooted at "/"; null before a mount.
    [[nodiscard]] QString pathOfFileWithURL(const QString &path);

private:
    explicit NBNimbrelVolume(VolumeServices &services);

    // A disk's notifications are heard as long as their mount is the one observed; 0 is none.
    using Observation = quint64;

    void readPaths(const KeyedRecord &coder);
    [[nodiscard]] QString mountPointName() const;
    void log(const char *method, int line, const char *what) const;
    [[nodiscard]] bool hasFolderAndConfiguration();
    [[nodiscard]] bool mayUseMountPoint() const;
    void open();
    void refuseConfiguration(const NBPreferencesError &error);
    void didOpen(const OpenedFolder &opened);
    void startDisk();
    void stopMounting() noexcept { _isBusy = false; }
    void didMount();
    void prepareDisk();
    void finishMount();
    void didUnmount();
    void mountFailed(const MountFailure &failure);
    void unmountRefused(int code, const QString &holders);
    void removeDesktopAlias();
    [[nodiscard]] bool changeOnDisk(std::string_view newPassphrase);
    static void callOnce(VolumeHandler &handler, bool result);

    VolumeServices &_services;
    qint64 _version = 1;
    QString _label;
    QString _path;
    QString _configPath;
    bool _automount = false;
    bool _storePassphrase = false;
    bool _checkKey = false;
    bool _spotlight = false;
    bool _local = false;
    bool _allowAll = false;
    bool _isMounted = false;
    bool _isBusy = false;
    SecureBuffer _passphrase;
    NBNimbrelVolumeDelegate *_delegate = nullptr;
    std::shared_ptr<NBNimbrelFS> _nmFS; // this thread's; a mounted disk has a copy
    std::shared_ptr<MountPointFolder> _mountPointFolder;
    std::shared_ptr<UserFileSystem> _fuseFS; // of the last mount
    VolumePtr _untilUnmounted;               // itself: off the list, its unmount still goes on
    VolumeHandler _mountHandler;
    VolumeHandler _unmountHandler;
    QString _desktopAlias;
    Observation _observation = 0;
    Observation _lastObservation = 0;
};

} // namespace nimbrel
