#include "volume/NBVolumesController.h"

#include "platform/Workspace.h"
#include "volume/NBVolumesUserInterface.h"

#include <QPointer>

namespace nimbrel {

namespace {

// Calls each of a copy: an alert's event loop may change the list meanwhile.
template <class Call>
void forEach(QList<VolumePtr> volumes, Call call)
{
    for (const VolumePtr &volume : std::as_const(volumes))
        call(volume);
}

} // namespace

NBVolumesController::NBVolumesController(VolumeServices &services) : _services(services)
{
    loadVolumes();
}

// Volumes may outlive the list in someone's hands; none reports here any more.
NBVolumesController::~NBVolumesController()
{
    for (const auto &reporting : std::as_const(_reporting))
        if (const VolumePtr volume = reporting.lock(); volume && volume->delegate() == this)
            volume->setDelegate(nullptr);
}

VolumePtr NBVolumesController::lastVolume() const
{
    return _volumes.isEmpty() ? nullptr : _volumes.first();
}

void NBVolumesController::setLastVolume(const VolumePtr &volume)
{
    if (_volumes.isEmpty())
        _volumes.append(volume);
    else
        _volumes.first() = volume;
}

void NBVolumesController::addVolume(const VolumePtr &volume)
{
    _volumes.append(volume);
}

void NBVolumesController::removeVolume(const VolumePtr & /*volume*/) {}

void NBVolumesController::openVolume(const VolumePtr &sender)
{
    _services.workspace.openFile(sender->mountPoint());
}

void NBVolumesController::openVolumeAtPath(const QString &path)
{
    _services.userInterface.addVolumeAtPath(path);
}

void NBVolumesController::openVolumeInFinder(const VolumePtr &volume)
{
    if (volume->isMounted())
        return _services.workspace.openFile(volume->mountPoint());
    mountVolume(volume, [controller = QPointer(this), weak = std::weak_ptr(volume)](bool mounted) {
        const VolumePtr opened = mounted ? weak.lock() : nullptr;
        if (opened && controller)
            controller->openVolumeInFinder(opened);
    });
}

void NBVolumesController::mountVolume(const VolumePtr &volume, VolumeHandler completitionHandler)
{
    const VolumePtr old = inTheWayOf(*volume);
    if (!old)
        return mountAtOnce(volume, std::move(completitionHandler));
    _waiting = volume;
    _waitingHandler = std::move(completitionHandler);
    if (!old->isBusy())
        makeRoom(old);
}

void NBVolumesController::mountAtOnce(const VolumePtr &volume, VolumeHandler handler)
{
    volume->setDelegate(this);
    keepReporting(volume);
    volume->mount(announcing(&NBVolumesController::volumeDidMount, volume, std::move(handler)));
}

void NBVolumesController::keepReporting(const VolumePtr &volume)
{
    _reporting.removeIf([&volume](const auto &known) {
        const VolumePtr alive = known.lock();
        return !alive || alive == volume;
    });
    _reporting.append(volume);
}

QList<VolumePtr> NBVolumesController::leftBehind() const
{
    QList<VolumePtr> left;
    for (const auto &known : _reporting)
        if (const VolumePtr volume = known.lock();
            volume && volume->isMounted() && !_volumes.contains(volume))
            left.append(volume);
    return left;
}

VolumePtr NBVolumesController::inTheWayOf(const NBNimbrelVolume &volume) const
{
    for (const VolumePtr &left : leftBehind())
        if (left.get() != &volume && left->mountPoint() == volume.mountPoint())
            return left;
    return nullptr;
}

void NBVolumesController::unmountVolume(const VolumePtr &volume, VolumeHandler completitionHandler)
{
    const bool reported = volume->delegate() == this;
    volume->setDelegate(nullptr);
    // A disk that is refused to go stays one of ours: its end from outside is still to be told.
    VolumeHandler restored = [controller = QPointer(this), reported, weak = std::weak_ptr(volume),
                              handler = std::move(completitionHandler)](bool unmounted) {
        const VolumePtr alive = weak.lock();
        if (!unmounted && reported && controller && alive && alive->isMounted())
            alive->setDelegate(controller);
        if (handler)
            handler(unmounted);
    };
    volume->unmount(
        announcing(&NBVolumesController::volumeDidUnmount, volume, std::move(restored)));
}

// The notification is out before the caller hears of it. A handler may stay with its volume for
// good, so it doesn't own it.
VolumeHandler
NBVolumesController::announcing(void (NBVolumesController::*announce)(NBNimbrelVolume &),
                                const VolumePtr &volume, VolumeHandler handler)
{
    return [controller = QPointer(this), announce, weak = std::weak_ptr(volume),
            handler = std::move(handler)](bool done) {
        const VolumePtr alive = weak.lock();
        if (done && controller && alive)
            (controller->*announce)(*alive);
        if (handler)
            handler(done);
    };
}

void NBVolumesController::mountVolumes()
{
    forEach(_volumes, [this](const VolumePtr &volume) { mountVolume(volume); });
}

void NBVolumesController::automountVolumes()
{
    forEach(_volumes, [this](const VolumePtr &volume) {
        if (volume->automount())
            mountVolume(volume);
    });
}

void NBVolumesController::unmountVolumes()
{
    forEach(_volumes, [this](const VolumePtr &volume) {
        if (volume->isMounted())
            unmountVolume(volume);
    });
}

void NBVolumesController::volumeDidMount(NBNimbrelVolume &volume)
{
    Q_EMIT NBVolumesControllerDidMountVolumeNotification(volume);
}

void NBVolumesController::volumeDidUnmount(NBNimbrelVolume &volume)
{
    Q_EMIT NBVolumesControllerDidUnmountVolumeNotification(volume);
}

} // namespace nimbrel
