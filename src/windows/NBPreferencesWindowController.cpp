#include "windows/NBPreferencesWindowController.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "platform/FileManagerActions.h"
#include "platform/Preferences.h"
#include "platform/SystemFacts.h"
#include "volume/VolumeServices.h"
#include "windows/UpdateChecks.h"
#include "windows/views/PreferencesWindow.h"

#include <QCheckBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>

#include <utility>

namespace nimbrel {

namespace {

QString lastCheckText(const QDateTime &date)
{
    if (!date.isValid())
        return texts::tr("Never checked for updates yet!");
    return texts::tr("Last check was on ") +
           QLocale().toString(date.toLocalTime().date(), QLocale::LongFormat);
}

QString updateHint(const QString &host)
{
    if (host.isEmpty())
        return texts::tr("This build of Nimbrel has no address for updates, so it never asks for "
                         "them.");
    return formatted(
        texts::tr("Nimbrel asks %@ for updates, at most once a day. It tells its version and "
                  "whether you want test versions, a number that stands for this computer (a "
                  "digest), whether this is its first start, how many disks you have, whether file "
                  "names are encrypted, and which of the known cloud services hold your folders. "
                  "It tells no names, no paths and no passwords."),
        {host});
}

} // namespace

NBPreferencesWindowController::NBPreferencesWindowController(WindowServices &services)
    : _services(services)
{
}

NBPreferencesWindowController::~NBPreferencesWindowController()
{
    if (_window.isNull())
        return;
    _window->disconnect(this);
    _window->hide();
    _window->deleteLater();
}

void NBPreferencesWindowController::beginSheetModalForWindow(
    QWidget &window, std::function<void(QWidget &)> didEndSheet)
{
    _didEndSheet = std::move(didEndSheet);
    _window = new PreferencesWindow(&window);
    _window->setAttribute(Qt::WA_DeleteOnClose);
    connectControls();
    windowDidLoad();
    _window->open();
}

PreferencesWindow *NBPreferencesWindowController::window() const
{
    return _window;
}

void NBPreferencesWindowController::connectControls()
{
    connect(_window, &PreferencesWindow::willClose, this, &NBPreferencesWindowController::apply);
    connect(_window, &QDialog::finished, this, [this] {
        PreferencesWindow *const window = std::exchange(_window, nullptr);
        if (const auto didEndSheet = std::exchange(_didEndSheet, {})) // it may delete this
            didEndSheet(*window);
    });
    connect(_window->closeButton, &QPushButton::clicked, this,
            &NBPreferencesWindowController::closeWindow);
    connect(_window->checkNowButton, &QPushButton::clicked, &_services.updates,
            &UpdateChecks::checkForUpdates);
    connect(&_services.updates, &UpdateChecks::changed, this,
            &NBPreferencesWindowController::showUpdateChecks);
}

void NBPreferencesWindowController::windowDidLoad()
{
    const Preferences &preferences = _services.volumes.preferences;
    _hadFileManagerActions = fileManagerActions::areInstalled(systemFacts::programPath());
    _window->autostartButton->setChecked(Util::willAutostart());
    _window->createAliasesButton->setChecked(preferences.boolValue(preferencesKey::createAliases));
    _window->addVolumePrefixButton->setChecked(preferences.boolValue(preferencesKey::volumePrefix));
    _window->fileManagerActionsButton->setChecked(_hadFileManagerActions);
    _window->updateHintTextField->setText(updateHint(_services.updates.host()));
    showUpdateChecks();
    _window->closeButton->setFocus();
}

void NBPreferencesWindowController::showUpdateChecks()
{
    if (_window.isNull())
        return;
    const UpdateChecks &updates = _services.updates;
    _window->lastUpdateCheckTextField->setText(lastCheckText(updates.lastUpdateCheckDate()));
    _window->checkNowButton->setEnabled(!updates.host().isEmpty() && !updates.isChecking());
}

void NBPreferencesWindowController::closeWindow()
{
    if (!_window.isNull())
        _window->reject();
}

} // namespace nimbrel
