#include "app/NBAppDelegate.h"

#include "app/NBNimbrelServicesProvider.h"
#include "app/NBStatusItemController.h"
#include "app/NBUpdateDelegate.h"
#include "app/NumericComparison.h"
#include "app/Updater.h"
#include "app/Util.h"
#include "assistants/flows/WelcomeFlow.h"
#include "fs/FuseCheck.h"
#include "platform/DesktopCalls.h"
#include "platform/Preferences.h"
#include "volume/NBVolumesController.h"
#include "volume/TextConversion.h"
#include "windows/NBAddVolumesWindowController.h"
#include "windows/NBUpdateWindowController.h"
#include "windows/NBVolumesManagerWindowController.h"

#include <QDateTime>
#include <QWidget>

namespace nimbrel {

namespace {

// The sheet that picks an existing folder; it lives as long as the window under it.
FolderPicker sheetPicker(NBApplication &application, VolumeServices &services)
{
    return [&application, &services](QWidget &window,
                                     NBAddVolumesWindowController::CompletitionHandler handler) {
        auto *sheet = new NBAddVolumesWindowController(application, services);
        sheet->setParent(&window);
        sheet->beginSheetModalForWindow(window, std::move(handler));
    };
}

} // namespace

LaunchFacts LaunchFacts::ofThisProcess()
{
    return {Util::OSVersion(), Util::wasLaunchedAsLoginItem(), desktop::wakeFileManager};
}

NBAppDelegate::NBAppDelegate(const ApplicationPlatform &platform, LaunchFacts facts)
    : _platform(platform), _facts(std::move(facts)), _userInterface(*this, [this] { addVolume(); }),
      _volumeServices{platform.secrets,   platform.preferences, platform.workspace,
                      platform.bookmarks, platform.resources,   _userInterface,
                      platform.keeper},
      _updateWindowController(std::make_unique<NBUpdateWindowController>(platform.workspace)),
      _updateDelegate(std::make_unique<NBUpdateDelegate>(*this, platform.preferences,
                                                         [this] { return _firstRun; })),
      _updater(std::make_unique<Updater>(
          Updater::configuredAddress(platform.preferences), *_updateDelegate, platform.preferences,
          [this](const UpdateOffer &offer) { _updateWindowController->show(offer); })),
      _windowServices{*this, _volumeServices, *_updater},
      _statusItemController(std::make_unique<NBStatusItemController>(_windowServices))
{
}

NBAppDelegate::~NBAppDelegate() = default;

void NBAppDelegate::applicationWillFinishLaunching()
{
    if (_platform.preferences.boolValue(preferencesKey::redPill)) {
        _log.switchOn();
        _log.banner(Log::versionText(), qtText(fuseVersion()));
    }
    makeVolumesController();
    _statusItemController->setVolumesController(*_volumesController);
    _updater->start();
    _platform.preferences.setValue(preferencesKey::sendProfileInfo, true);
    _platform.preferences.synchronize();
}

// A list of an older version has been replaced by an empty one in the store (kept) and would stay
// so if this run never came to its end.
void NBAppDelegate::makeVolumesController()
{
    _volumesController = std::make_unique<NBVolumesController>(_volumeServices);
    const bool wasUpgraded = !_volumesController->volumes().isEmpty() &&
                             !_platform.preferences.value(preferencesKey::volumesInfo).isValid();
    if (wasUpgraded)
        _volumesController->saveVolumes();
}

void NBAppDelegate::applicationDidFinishLaunching()
{
    _platform.preferences.registerDefaults({{preferencesKey::createAliases, true}});
    noteFirstRun();
    _advancedMode = _platform.preferences.boolValue(preferencesKey::advanced);
    if (_volumesController->volumes().isEmpty() && !_advancedMode)
        showWelcomeAssistant();
    else
        mountVolumes();
    _servicesProvider =
        std::make_unique<NBNimbrelServicesProvider>(*_volumesController, _platform.workspace);
}

void NBAppDelegate::noteFirstRun()
{
    Preferences &preferences = _platform.preferences;
    if (preferences.value(preferencesKey::firstRunDate).isValid())
        return;
    _firstRun = true;
    preferences.setValue(preferencesKey::firstRunDate,
                         QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    (void)Util::setAutostart(true);
}

void NBAppDelegate::mountVolumes()
{
    if (std::is_gt(compareNumerically(_facts.systemVersion, u"10.8")) &&
        _facts.wasLaunchedAsLoginItem)
        _facts.wakeFileBrowser();
    _volumesController->automountVolumes();
}

void NBAppDelegate::showWelcomeAssistant()
{
    WelcomeFlow(*this, _volumeServices, sheetPicker(*this, _volumeServices)).showWelcomeAssistant();
}

void NBAppDelegate::applicationWillTerminate()
{
    _volumesController->saveVolumes();
    _volumesController->unmountVolumes();
}

// A controller without a window does it; the one with a window shows what became of the list.
void NBAppDelegate::addVolume()
{
    using Controller = NBVolumesManagerWindowController;
    Controller(_windowServices, Controller::Window::None).addVolume();
    Controller &shown = _statusItemController->vmWindowController();
    if (shown.window() != nullptr && shown.window()->isVisible())
        shown.updateToolbar();
}

bool NBAppDelegate::application(const QString &openFile)
{
    _openFile = openFile;
    _volumesController->openVolumeAtPath(openFile);
    return true;
}

} // namespace nimbrel
