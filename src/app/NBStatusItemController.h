// The program's permanent presence: an icon that tells whether anything is decrypted, with a menu.
#pragma once

#include "app/TrayHost.h"

#include <QIcon>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QSystemTrayIcon;

namespace nimbrel {

class AboutWindow;
class NBNimbrelVolume;
class NBVolumesController;
class NBVolumesManagerWindowController;
struct WindowServices;

// Main thread only. The volumes come later, with setVolumesController.
class NBStatusItemController final : public QObject
{
    Q_OBJECT

public:
    explicit NBStatusItemController(WindowServices &services);
    ~NBStatusItemController() override;

    // Makes the manager window's controller, too, which needs it.
    void setVolumesController(NBVolumesController &volumesController);
    // What quitApp does: the application's orderly end.
    void setQuitHandler(std::function<void()> terminate) { _terminate = std::move(terminate); }

    void updateIcon();
    void updateMenu();
    void openPreferencesWindow(); // openPreferencesWindow:  the manager window, which leads there
    void openAboutWindow();       // openAboutWindow:
    void quitApp();               // quitApp:

    // Nobody would find the icon: the manager window opens, and the icon comes when a host does.
    // At the session's start the host may only be on its way.
    void showWithoutTray(bool isSessionStart);

    [[nodiscard]] QMenu &statusItemMenu() const { return *_statusItemMenu; }
    [[nodiscard]] QAction &preferencesMenuItem() const { return *_preferencesMenuItem; }
    [[nodiscard]] QAction &aboutMenuItem() const { return *_aboutMenuItem; }
    [[nodiscard]] QAction &quitMenuItem() const { return *_quitMenuItem; }
    [[nodiscard]] NBVolumesManagerWindowController &vmWindowController() const
    {
        return *_vmWindowController;
    }
    // The pictures' names.
    [[nodiscard]] const QString &image() const noexcept { return _image; }
    [[nodiscard]] const QString &alternateImage() const noexcept { return _alternateImage; }
    // What the icon says in words: the mounted disks.
    [[nodiscard]] QString toolTip() const;
    [[nodiscard]] bool isShown() const noexcept { return _statusItem != nullptr; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void awakeFromNib();
    void volumeUpdated();
    void showStatusItem();
    void addToWindow(QMainWindow &window);
    void setImages(const QString &image, const QString &alternateImage);
    void addVolumeItems(const std::shared_ptr<NBNimbrelVolume> &volume);

    WindowServices &_services;
    std::function<void()> _terminate;
    std::unique_ptr<QMenu> _statusItemMenu;
    QAction *_preferencesMenuItem; // these outlive each rebuilding of the menu
    QAction *_aboutMenuItem;
    QAction *_quitMenuItem;
    std::unique_ptr<NBVolumesManagerWindowController> _vmWindowController;
    std::unique_ptr<AboutWindow> _aboutWindow;
    NBVolumesController *_volumesController = nullptr;
    TrayHost _host;
    QString _image;
    QString _alternateImage;
    std::unique_ptr<QSystemTrayIcon> _statusItem; // once a host is there
    bool _isOnBus = false;                        // the item and its menu
    QPointer<QMenuBar> _menuBar;                  // the manager window's
};

} // namespace nimbrel
