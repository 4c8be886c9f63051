#include "windows/NBVolumesManagerWindowController.h"

#include "app/NBApplication.h"
#include "volume/NBVolumesController.h"
#include "windows/NBAddVolumesWindowController.h"
#include "windows/NBMobileWindowController.h"
#include "windows/NBPreferencesWindowController.h"
#include "windows/NBVolumesTableViewController.h"
#include "windows/views/AddVolumesWindow.h"
#include "windows/views/VolumesManagerWindow.h"

#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QToolBar>

namespace nimbrel {

NBVolumesManagerWindowController::NBVolumesManagerWindowController(WindowServices &services,
                                                                   Window window)
    : _services(services), _volumesController(services.application.volumesController()),
      _windowKind(window)
{
}

NBVolumesManagerWindowController::~NBVolumesManagerWindowController() = default;

void NBVolumesManagerWindowController::showWindow()
{
    if (!_window && _windowKind == Window::FromResource)
        makeWindow();
    if (!_window)
        return;
    updateToolbar();
    if (_window->isActiveWindow())
        return;
    _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
    _window->show();
    _window->raise();
    _window->activateWindow();
}

void NBVolumesManagerWindowController::makeWindow()
{
    _window = std::make_unique<VolumesManagerWindow>();
    _window->shouldClose = [this] { return windowShouldClose(); };
    _tableViewController =
        std::make_unique<NBVolumesTableViewController>(_volumesController, *_window->tableView);
    connectItems();
    connectTable();
    addShortcuts();
    // Not within the drop: whoever drags waits for its end.
    connect(
        _window.get(), &VolumesManagerWindow::folderDropped, this,
        [this](const QString &path) { (void)_services.application.application(path); },
        Qt::QueuedConnection);
    windowDidLoad();
}

void NBVolumesManagerWindowController::connectItems()
{
    using This = NBVolumesManagerWindowController;
    const auto act = [this](const QAction *item, void (This::*action)()) {
        connect(item, &QAction::triggered, this, action);
    };
    const auto actOnTarget = [this](const QAction *item, void (This::*action)(Sender)) {
        connect(item, &QAction::triggered, this,
                [this, action] { (this->*action)(Sender::Other); });
    };
    act(_window->newVolumeToolbarItem, &This::newVolume);
    act(_window->addVolumeToolbarItem, &This::addVolume);
    act(_window->removeVolumeToolbarItem, &This::removeVolume);
    actOnTarget(_window->mountVolumeToolbarItem, &This::mountVolume);
    actOnTarget(_window->unmountVolumeToolbarItem, &This::unmountVolume);
    actOnTarget(_window->changePasswordToolbarItem, &This::changePassphrase);
    actOnTarget(_window->clearPasswordToolbarItem, &This::clearPassphrase);
    act(_window->preferencesToolbarItem, &This::showPreferences);
    act(_window->showMobileAppsToolbarItem, &This::showMobileApps);
    act(_window->switchModeToolbarItem, &This::switchMode);
    connect(_window->showInFinderButton, &QPushButton::clicked, this,
            [this] { showInFinder(Sender::Other); });
}

void NBVolumesManagerWindowController::connectTable()
{
    using Table = NBVolumesTableViewController;
    using This = NBVolumesManagerWindowController;
    const auto act = [this](void (Table::*item)(), void (This::*action)(Sender)) {
        connect(_tableViewController.get(), item, this,
                [this, action] { (this->*action)(Sender::MenuItem); });
    };
    act(&Table::openVolume, &This::openVolume);
    act(&Table::mountVolume, &This::mountVolume);
    act(&Table::unmountVolume, &This::unmountVolume);
    act(&Table::changePassphrase, &This::changePassphrase);
    act(&Table::clearPassphrase, &This::clearPassphrase);
    act(&Table::editVolume, &This::editVolume);
    act(&Table::showInFinder, &This::showInFinder);
    connect(_window->tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &This::validateToolbar);
    connect(_window.get(), &VolumesManagerWindow::becameActive, this, &This::validateToolbar);
}

// The keys that a desktop's user expects; those of the table work while it has the focus.
void NBVolumesManagerWindowController::addShortcuts()
{
    _window->newVolumeToolbarItem->setShortcut(QKeySequence::New);
    _window->addVolumeToolbarItem->setShortcut(QKeySequence::Open);
    _window->preferencesToolbarItem->setShortcut(Qt::CTRL | Qt::Key_Comma);
    QAction &remove = *_window->removeVolumeToolbarItem;
    remove.setShortcut(QKeySequence::Delete);
    remove.setShortcutContext(Qt::WidgetShortcut);
    _window->tableView->addAction(&remove);
    connect(new QShortcut(QKeySequence::Close, _window.get()), &QShortcut::activated, _window.get(),
            &QWidget::close);
    auto *edit = new QShortcut(Qt::Key_F2, _window->tableView);
    edit->setContext(Qt::WidgetShortcut);
    connect(edit, &QShortcut::activated, this, [this] { editVolume(); });
}

void NBVolumesManagerWindowController::windowDidLoad()
{
    using Volumes = NBVolumesController;
    using This = NBVolumesManagerWindowController;
    const auto didMount = &Volumes::NBVolumesControllerDidMountVolumeNotification;
    const auto didUnmount = &Volumes::NBVolumesControllerDidUnmountVolumeNotification;
    _observations = {connect(&_volumesController, didMount, this, &This::volumesUpdated),
                     connect(&_volumesController, didUnmount, this, &This::volumesUpdated)};
    // What can be done is right in any case: observing ends with the first close (kept).
    connect(&_volumesController, didMount, this, &This::validateToolbar);
    connect(&_volumesController, didUnmount, this, &This::validateToolbar);
}

void NBVolumesManagerWindowController::stopObserving()
{
    for (const QMetaObject::Connection &observation : std::as_const(_observations))
        disconnect(observation);
    _observations.clear();
}

void NBVolumesManagerWindowController::volumesUpdated()
{
    QMetaObject::invokeMethod(this, &NBVolumesManagerWindowController::updateToolbar,
                              Qt::QueuedConnection);
}

QWidget *NBVolumesManagerWindowController::window() const
{
    return _window.get();
}

NBVolumesTableViewController *NBVolumesManagerWindowController::tableViewController() const
{
    return _tableViewController.get();
}

bool NBVolumesManagerWindowController::isAdvanced() const
{
    return _services.application.advancedMode();
}

VolumePtr NBVolumesManagerWindowController::volumeAtRow(Sender sender) const
{
    if (!_tableViewController)
        return nullptr;
    const int row = sender == Sender::MenuItem ? _tableViewController->clickedRow()
                                               : _tableViewController->selectedRow();
    return row < 0 ? nullptr : _volumesController.volumes()[row];
}

VolumePtr NBVolumesManagerWindowController::targetVolume(Sender sender) const
{
    return isAdvanced() ? volumeAtRow(sender) : _volumesController.lastVolume();
}

bool NBVolumesManagerWindowController::isListed(const VolumePtr &volume) const
{
    return _volumesController.volumes().contains(volume);
}

VolumeHandler NBVolumesManagerWindowController::updating()
{
    return [self = QPointer(this)](bool) {
        if (self)
            self->updateToolbar();
    };
}

} // namespace nimbrel
