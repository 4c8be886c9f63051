// The application's delegate: the order in which the program comes up and goes down.
#pragma once

#include "app/ApplicationUserInterface.h"
#include "app/Log.h"
#include "app/NBApplication.h"
#include "volume/VolumeServices.h"
#include "windows/WindowServices.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace nimbrel {

class NBNimbrelServicesProvider;
class NBStatusItemController;
class NBUpdateDelegate;
class NBUpdateWindowController;
class NBVolumesController;
class Updater;

// The platform that the application stands on. Nothing is owned; all of it outlives the delegate.
struct ApplicationPlatform
{
    SecretStore &secrets;
    Preferences &preferences;
    Workspace &workspace;
    Bookmarks &bookmarks;
    const Resources &resources;
    MountKeeper *keeper = nullptr;
};

// What a start depends on.
struct LaunchFacts
{
    QString systemVersion; // "6.1.0"
    bool wasLaunchedAsLoginItem = false;
    // Has the file browser come up before the first volume mounts.
    std::function<void()> wakeFileBrowser;

    [[nodiscard]] static LaunchFacts ofThisProcess();
};

// One a process, made with the status item before any of its operations runs. Owns the long-lived
// controllers. Main thread only.
class NBAppDelegate final : public QObject, public NBApplication
{
    Q_OBJECT

public:
    explicit NBAppDelegate(const ApplicationPlatform &platform,
                           LaunchFacts facts = LaunchFacts::ofThisProcess());
    ~NBAppDelegate() override;

    // applicationWillFinishLaunching:, applicationDidFinishLaunching:
    // The second one blocks while a new user is welcomed.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    // applicationWillTerminate:  Starts the unmount of each disk and doesn't wait; see OrderlyEnd.
    void applicationWillTerminate();
    void showWelcomeAssistant();
    void stopAsking() { _userInterface.stopAsking(); } // see ApplicationUserInterface

    // False while the list is being read, which may ask the user something.
    [[nodiscard]] bool hasVolumesController() const { return _volumesController != nullptr; }
    [[nodiscard]] bool firstRun() const noexcept { return _firstRun; }

    [[nodiscard]] bool advancedMode() const override { return _advancedMode; }
    void setAdvancedMode(bool isAdvanced) override { _advancedMode = isAdvanced; }
    [[nodiscard]] NBVolumesController &volumesController() override { return *_volumesController; }
    bool application(const QString &openFile) override;
    [[nodiscard]] QString openFile() const override { return _openFile; }
    void setOpenFile(const QString &path) override { _openFile = path; }

    [[nodiscard]] NBStatusItemController &statusItemController() { return *_statusItemController; }
    [[nodiscard]] NBNimbrelServicesProvider *servicesProvider() { return _servicesProvider.get(); }

private:
    void makeVolumesController();
    void noteFirstRun();
    void mountVolumes();
    void addVolume();

    ApplicationPlatform _platform;
    LaunchFacts _facts;
    Log _log;
    bool _advancedMode = false;
    bool _firstRun = false;
    QString _openFile;
    ApplicationUserInterface _userInterface;
    VolumeServices _volumeServices;
    std::unique_ptr<NBVolumesController> _volumesController;
    std::unique_ptr<NBUpdateWindowController> _updateWindowController;
    std::unique_ptr<NBUpdateDelegate> _updateDelegate;
    std::unique_ptr<Updater> _updater;
    WindowServices _windowServices;
    std::unique_ptr<NBStatusItemController> _statusItemController;
    std::unique_ptr<NBNimbrelServicesProvider> _servicesProvider;
};

} // namespace nimbrel
