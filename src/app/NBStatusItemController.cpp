#include "app/NBStatusItemController.h"

#include "app/AboutWindow.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "assistant/Icons.h"
#include "volume/NBVolumesController.h"
#include "windows/NBVolumesManagerWindowController.h"

#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSystemTrayIcon>

#include <chrono>
#include <utility>

namespace nimbrel {

namespace {

using namespace std::chrono_literals;

// Both pictures in one icon; the alternate one is for a highlighted item.
QIcon icon(const QString &image, const QString &alternateImage)
{
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        icon.addPixmap(icons::named(image).pixmap(side, side));
        icon.addPixmap(icons::named(alternateImage).pixmap(side, side), QIcon::Selected);
    }
    return icon;
}

// Also those that refused to be unmounted when they left the list: they are as open as the others.
QStringList labelsOfMounted(const NBVolumesController *controller)
{
    QStringList labels;
    if (controller != nullptr)
        for (const VolumePtr &volume : controller->volumes() + controller->leftBehind())
            if (volume->isMounted())
                labels.append(volume->label());
    return labels;
}

} // namespace

NBStatusItemController::NBStatusItemController(WindowServices &services)
    : _services(services), _statusItemMenu(std::make_unique<QMenu>()),
      _preferencesMenuItem(new QAction(texts::tr("&Preferences…"), this)),
      _aboutMenuItem(new QAction(texts::tr("&About Nimbrel"), this)),
      _quitMenuItem(new QAction(texts::tr("&Quit Nimbrel"), this)),
      _aboutWindow(std::make_unique<AboutWindow>()), _image(QStringLiteral("encrypted")),
      _alternateImage(QStringLiteral("encrypted_alt"))
{
    awakeFromNib();
}

NBStatusItemController::~NBStatusItemController() = default;

void NBStatusItemController::awakeFromNib()
{
    _statusItemMenu->setObjectName(QStringLiteral("statusItemMenu"));
    _quitMenuItem->setShortcut(QKeySequence::Quit);
    connect(_statusItemMenu.get(), &QMenu::aboutToShow, this, &NBStatusItemController::updateMenu);
    connect(_preferencesMenuItem, &QAction::triggered, this,
            &NBStatusItemController::openPreferencesWindow);
    connect(_aboutMenuItem, &QAction::triggered, this, &NBStatusItemController::openAboutWindow);
    connect(_quitMenuItem, &QAction::triggered, this, &NBStatusItemController::quitApp);
    connect(&_host, &TrayHost::appeared, this, &NBStatusItemController::showStatusItem);
    _host.await();
}

void NBStatusItemController::setVolumesController(NBVolumesController &volumesController)
{
    _volumesController = &volumesController;
    _vmWindowController = std::make_unique<NBVolumesManagerWindowController>(_services);
    using Controller = NBVolumesController;
    connect(_volumesController, &Controller::NBVolumesControllerDidMountVolumeNotification, this,
            &NBStatusItemController::volumeUpdated);
    connect(_volumesController, &Controller::NBVolumesControllerDidUnmountVolumeNotification, this,
            &NBStatusItemController::volumeUpdated);
}

void NBStatusItemController::volumeUpdated()
{
    updateIcon();
    if (!_statusItemMenu->isVisible()) // else the entries would move under the mouse
        updateMenu();
}

void NBStatusItemController::updateIcon()
{
    if (labelsOfMounted(_volumesController).isEmpty())
        setImages(QStringLiteral("encrypted"), QStringLiteral("encrypted_alt"));
    else
        setImages(QStringLiteral("decrypted"), QStringLiteral("decrypted_alt"));
}

void NBStatusItemController::setImages(const QString &image, const QString &alternateImage)
{
    _image = image;
    _alternateImage = alternateImage;
    if (!_statusItem)
        return;
    _statusItem->setIcon(icon(_image, _alternateImage));
    _statusItem->setToolTip(toolTip());
}

QString NBStatusItemController::toolTip() const
{
    const QStringList mounted = labelsOfMounted(_volumesController);
    if (mounted.isEmpty())
        return texts::tr("Nimbrel: no disk is mounted");
    return formatted(texts::tr("Nimbrel: mounted: %@"), {mounted.join(QStringLiteral(", "))});
}

// A host that goes and comes again gets the icon from Qt.
void NBStatusItemController::showStatusItem()
{
    if (_statusItem)
        return;
    _isOnBus = _host.isOnBus();
    _statusItem = std::make_unique<QSystemTrayIcon>();
    _statusItem->setContextMenu(_statusItemMenu.get());
    connect(_statusItem.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    openPreferencesWindow();
            });
    updateMenu();
    setImages(_image, _alternateImage);
    _statusItem->show();
    if (_menuBar)
        _menuBar->hide();
}

void NBStatusItemController::showWithoutTray(bool isSessionStart)
{
    constexpr auto patience = 10s; // the desktop's own parts come up at the same time
    QTimer::singleShot(isSessionStart ? patience : 0s, this, [this] {
        if (!_host.isThere() && !_statusItem)
            openPreferencesWindow();
    });
}

void NBStatusItemController::openPreferencesWindow()
{
    if (!_vmWindowController) // the volumes are still being read
        return;
    _vmWindowController->showWindow();
    if (auto *window = qobject_cast<QMainWindow *>(_vmWindowController->window());
        window != nullptr && !_menuBar)
        addToWindow(*window);
}

// Without an icon the window is the way to all that its menu offers.
void NBStatusItemController::addToWindow(QMainWindow &window)
{
    window.addAction(_quitMenuItem);
    window.installEventFilter(this);
    _menuBar = window.menuBar();
    _menuBar->addMenu(_statusItemMenu.get())->setText(texts::tr("&Nimbrel"));
    _menuBar->setHidden(_statusItem != nullptr);
    if (!_statusItem)
        window.resize(window.width(), window.height() + _menuBar->sizeHint().height());
}

// A closed window, and no icon: nobody would find the program again.
bool NBStatusItemController::eventFilter(QObject *watched, QEvent *event)
{
    auto *window = qobject_cast<QWidget *>(watched);
    if (event->type() == QEvent::Hide && window != nullptr && !_statusItem && !event->spontaneous())
        QMetaObject::invokeMethod(window, &QWidget::showMinimized, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void NBStatusItemController::openAboutWindow()
{
    _aboutWindow->show();
}

void NBStatusItemController::quitApp()
{
    if (_terminate)
        _terminate();
}

} // namespace nimbrel
