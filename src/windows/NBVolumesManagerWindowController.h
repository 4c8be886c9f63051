// The main window: what the user does with volumes.
#pragma once

#include "volume/NBNimbrelVolume.h"
#include "windows/WindowServices.h"

#include <QObject>

#include <memory>

class QAction;
class QWidget;

namespace nimbrel {

class NBAddVolumesWindowController;
class NBMobileWindowController;
class NBPreferencesWindowController;
class NBVolumesController;
class NBVolumesTableViewController;
class VolumesManagerWindow;

// Has no model: the selection is the table's, the volumes are their controller's, the mode is the
// application's. Main thread only. The window is made at its first showing.
//
// A mount's handler may come back when this is gone: it keeps what outlives every window.
class NBVolumesManagerWindowController final : public QObject
{
    Q_OBJECT

public:
    enum class Window
    {
        FromResource, // initWithWindow:
        None          // init  Everything works, but for what needs a window.
    };
    explicit NBVolumesManagerWindowController(WindowServices &services,
                                              Window window = Window::FromResource);
    ~NBVolumesManagerWindowController() override;

    void showWindow();    // showWindow:
    void updateToolbar(); // fits toolbar and contents to mode and volumes
    // validateToolbarItem:  Whether what it does can be done now.
    [[nodiscard]] bool validateToolbarItem(const QAction &item) const;
    // windowShouldClose:  May ask, and in simple mode mounts.
    [[nodiscard]] bool windowShouldClose();
    void volumesUpdated();            // volumesUpdated:  updates the toolbar in a moment
    void didEndSheet(QWidget &sheet); // didEndSheet:returnCode:contextInfo:

    // An item of the table's context menu acts on the clicked row, all else on the selected one.
    enum class Sender
    {
        Other,
        MenuItem
    };
    void newVolume();                                     // newVolume:
    void addVolume();                                     // addVolume:
    void removeVolume();                                  // removeVolume:
    void editVolume(Sender sender = Sender::Other);       // editVolume:
    void mountVolume(Sender sender = Sender::Other);      // mountVolume:
    void unmountVolume(Sender sender = Sender::Other);    // unmountVolume:
    void openVolume(Sender sender = Sender::Other);       // openVolume:
    void changePassphrase(Sender sender = Sender::Other); // changePassphrase:
    void clearPassphrase(Sender sender = Sender::Other);  // clearPassphrase:
    void showInFinder(Sender sender = Sender::Other);     // showInFinder:
    void showMobileApps();                                // showMobileApps:
    void showPreferences();                               // showPreferences:
    void switchMode();                                    // switchMode:
    // For controls that carry a volume.
    void openClick(const VolumePtr &representedObject);  // openClick:
    void mountClick(const VolumePtr &representedObject); // mountClick:

    // Null before the first showing, and without a window.
    [[nodiscard]] QWidget *window() const;
    [[nodiscard]] NBVolumesTableViewController *tableViewController() const;
    [[nodiscard]] bool toolbarIsAdvancedMode() const noexcept { return _toolbarIsAdvancedMode; }
    [[nodiscard]] bool toolbarFirstInit() const noexcept { return _toolbarFirstInit; }

private:
    void makeWindow();
    void connectItems();
    void connectTable();
    void addShortcuts();
    void windowDidLoad();
    void stopObserving();

    void buildToolbar();
    void showContents(int height);
    void showLastVolume();
    void showState();
    void validateToolbar();

    [[nodiscard]] bool isAdvanced() const;
    [[nodiscard]] VolumePtr volumeAtRow(Sender sender) const;
    [[nodiscard]] VolumePtr targetVolume(Sender sender) const;
    [[nodiscard]] bool isListed(const VolumePtr &volume) const;
    [[nodiscard]] VolumeHandler updating();

    void addFile(const QString &openFile);
    void addFileInSimpleMode(const QString &openFile);
    void openFolder(const QString &path);
    void replaceLastVolume(const VolumePtr &volume);
    [[nodiscard]] VolumeHandler mountDone(const VolumePtr &volume);
    [[nodiscard]] bool mayReplaceLastVolume() const; // tells when it may not
    [[nodiscard]] bool askForOptions(NBNimbrelVolume &volume);
    [[nodiscard]] bool editOptions(const VolumePtr &volume);
    [[nodiscard]] static bool isIdle(const NBNimbrelVolume &volume); // tells when it isn't
    void mountAnew(const VolumePtr &volume);
    void mountAfterPause(std::weak_ptr<NBNimbrelVolume> volume);
    void removeFromList(const VolumePtr &volume);
    void mount(const VolumePtr &volume);
    void unmount(const VolumePtr &volume);
    void keepFirstVolume();

    WindowServices &_services;
    NBVolumesController &_volumesController;
    Window _windowKind;
    bool _toolbarIsAdvancedMode = true; // for which the toolbar was last built
    bool _toolbarFirstInit = true;      // it has not been built yet
    std::unique_ptr<VolumesManagerWindow> _window;
    std::unique_ptr<NBVolumesTableViewController> _tableViewController;
    QList<QMetaObject::Connection> _observations;
    // Each of the last use; the next one makes its own.
    std::unique_ptr<NBAddVolumesWindowController> _addVolumesController;
    std::unique_ptr<NBMobileWindowController> _mobileWindowController;
    std::unique_ptr<NBPreferencesWindowController> _settingsController;
};

} // namespace nimbrel
