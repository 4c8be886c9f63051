// The user's volumes: the ordered list, its storage, and the one road of mounts and unmounts.
#pragma once

#include "volume/NBNimbrelVolume.h"

#include <QList>
#include <QObject>

namespace nimbrel {

class KeyedRecord;
class Volume;
struct NBNewVolumeSettings;

// One a process. Main thread only. The list is handed out to be changed; whoever changes it calls
// saveVolumes.
class NBVolumesController final : public QObject, private NBNimbrelVolumeDelegate
{
    Q_OBJECT

public:
    // init
    // Reads the list from the preferences, and the passwords of its volumes from the secret store.
    explicit NBVolumesController(VolumeServices &services);
    ~NBVolumesController() override;

    [[nodiscard]] QList<VolumePtr> &volumes() noexcept { return _volumes; }
    [[nodiscard]] const QList<VolumePtr> &volumes() const noexcept { return _volumes; }
    // The first one, in spite of its name; null for an empty list.
    [[nodiscard]] VolumePtr lastVolume() const;
    // Replaces the first one, or is the first. Doesn't save.
    void setLastVolume(const VolumePtr &volume);

    void saveVolumes();
    void addVolume(const VolumePtr &volume);    // appends; doesn't save
    void removeVolume(const VolumePtr &volume); // nothing (kept): removing is done on the list

    void openVolume(const VolumePtr &sender);
    void openVolumeAtPath(const QString &path);
    void openVolumeInFinder(const VolumePtr &volume);

    // Where a disk that has left the list is still in the place, its unmount is waited for, or
    // asked for again; when it refuses, the new one isn't mounted.
    void mountVolume(const VolumePtr &volume, VolumeHandler completitionHandler = {});
    void unmountVolume(const VolumePtr &volume, VolumeHandler completitionHandler = {});
    // Starts the unmount of a volume that another one replaces.
    void makeRoom(const VolumePtr &mounted);
    // Mounted disks that are off the list: they refused to be unmounted when they left it.
    [[nodiscard]] QList<VolumePtr> leftBehind() const;
    // These start each mount or unmount and wait for none.
    void mountVolumes();
    void automountVolumes();
    void unmountVolumes();

    // The flow that makes a new encrypted folder: asks, writes, mounts, lists, shows.
    void newVolume();
    [[nodiscard]] VolumePtr upgradeLegacyVolume(const Volume &volume);

Q_SIGNALS:
    // Sent synchronously, on the main thread.
    void NBVolumesControllerDidMountVolumeNotification(nimbrel::NBNimbrelVolume &volume);
    void NBVolumesControllerDidUnmountVolumeNotification(nimbrel::NBNimbrelVolume &volume);

private:
    void volumeDidMount(NBNimbrelVolume &volume) override;
    void volumeDidUnmount(NBNimbrelVolume &volume) override;

    [[nodiscard]] VolumeHandler announcing(void (NBVolumesController::*announce)(NBNimbrelVolume &),
                                           const VolumePtr &volume, VolumeHandler handler);
    void loadVolumes();
    [[nodiscard]] VolumePtr volumeOf(const KeyedRecord &record);
    void fetchPassphrase(NBNimbrelVolume &volume);
    void clearTheWay();
    [[nodiscard]] VolumePtr inTheWayOf(const NBNimbrelVolume &volume) const;
    void keepReporting(const VolumePtr &volume);
    void mountAtOnce(const VolumePtr &volume, VolumeHandler handler);
    void mountWaiting(bool hasRoom);
    void mountNewVolume(const VolumePtr &volume);
    [[nodiscard]] VolumePtr newVolumeWith(NBNewVolumeSettings settings);

    VolumeServices &_services;
    QList<VolumePtr> _volumes;
    std::weak_ptr<NBNimbrelVolume> _waiting;          // for the place of one that leaves it
    VolumeHandler _waitingHandler;                    // of its mount
    QList<std::weak_ptr<NBNimbrelVolume>> _reporting; // mounted from here, also if off the list
};

} // namespace nimbrel
