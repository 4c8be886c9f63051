#include "app/NBStatusItemController.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "volume/NBVolumesController.h"

#include <QMenu>

namespace nimbrel {

namespace {

// A label as a menu shows it: an ampersand would name a mnemonic, and over the bus an underscore.
QString title(const QString &format, const NBNimbrelVolume &volume, bool isOnBus)
{
    QString label = volume.label();
    if (isOnBus)
        label.replace(u'_', QLatin1String("__"));
    return formatted(format, {label.replace(u'&', QLatin1String("&&"))});
}

} // namespace

// The entries' actions run in the event loop, behind the menu that they belong to: a rebuilding
// takes the entries away.
void NBStatusItemController::updateMenu()
{
    QMenu &menu = *_statusItemMenu;
    menu.clear(); // the fixed entries are this controller's and stay
    if (_volumesController != nullptr && !_volumesController->volumes().isEmpty()) {
        for (const VolumePtr &volume : std::as_const(_volumesController->volumes()))
            addVolumeItems(volume);
    } else {
        QAction *newVolume = menu.addAction(texts::tr("New Volume…"));
        connect(
            newVolume, &QAction::triggered, this,
            [this] {
                if (_volumesController != nullptr)
                    _volumesController->newVolume();
            },
            Qt::QueuedConnection);
        menu.addSeparator();
    }
    menu.addAction(_preferencesMenuItem);
    menu.addAction(_aboutMenuItem);
    menu.addSeparator();
    menu.addAction(_quitMenuItem);
}

void NBStatusItemController::addVolumeItems(const VolumePtr &volume)
{
    using Operation = void (*)(NBVolumesController &, const VolumePtr &);
    const auto add = [&](const QString &format, Operation operation) {
        QAction *item = _statusItemMenu->addAction(title(format, *volume, _isOnBus));
        connect(
            item, &QAction::triggered, this,
            [this, operation, weak = std::weak_ptr(volume)] {
                if (const VolumePtr alive = weak.lock())
                    operation(*_volumesController, alive);
            },
            Qt::QueuedConnection);
    };
    if (volume->isMounted()) {
        add(texts::tr("Open %@"), [](NBVolumesController &controller, const VolumePtr &sender) {
            controller.openVolume(sender);
        });
        add(texts::tr("Unmount %@"), [](NBVolumesController &controller, const VolumePtr &sender) {
            controller.unmountVolume(sender);
        });
    } else {
        add(texts::tr("Mount %@"), [](NBVolumesController &controller, const VolumePtr &sender) {
            controller.mountVolume(sender);
        });
    }
    _statusItemMenu->addSeparator();
}

} // namespace nimbrel
