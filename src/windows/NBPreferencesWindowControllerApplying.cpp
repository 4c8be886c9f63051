// What the settings change when the sheet closes, and what the user is told when one can't.
#include "windows/NBPreferencesWindowController.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "platform/FileManagerActions.h"
#include "platform/Preferences.h"
#include "platform/SystemFacts.h"
#include "volume/VolumeServices.h"
#include "windows/views/PreferencesWindow.h"

#include <QCheckBox>

namespace nimbrel {

void NBPreferencesWindowController::apply()
{
    applyAutostart();
    applyPreferences();
    applyFileManagerActions();
}

void NBPreferencesWindowController::applyAutostart() const
{
    const bool wanted = _window->autostartButton->isChecked();
    Util::setAutostart(wanted); // false also when nothing had to change
    if (Util::willAutostart() == wanted)
        return;
    Util::showAlert(
        texts::tr("The entry in the folder “autostart” of your settings folder couldn't be "
                  "written. Please check that this folder can be written and that the disk isn't "
                  "full, and try again."),
        wanted ? texts::tr("Nimbrel won't start when you log in.")
               : texts::tr("Nimbrel will still start when you log in."));
}

void NBPreferencesWindowController::applyPreferences() const
{
    Preferences &preferences = _services.volumes.preferences;
    preferences.setValue(preferencesKey::createAliases, _window->createAliasesButton->isChecked());
    preferences.setValue(preferencesKey::volumePrefix, _window->addVolumePrefixButton->isChecked());
    if (preferences.synchronize())
        return;
    Util::showAlert(
        formatted(texts::tr("%@\n\nThey are in force until Nimbrel quits. Please check that your "
                            "settings folder can be written and that the disk isn't full, and "
                            "close the preferences once more."),
                  {asFormat(preferences.trouble().value_or(QString()))}),
        texts::tr("The preferences couldn't be saved."));
}

void NBPreferencesWindowController::applyFileManagerActions() const
{
    const bool wanted = _window->fileManagerActionsButton->isChecked();
    if (wanted == _hadFileManagerActions)
        return;
    const std::optional<QString> trouble =
        wanted ? fileManagerActions::install(systemFacts::programPath(),
                                             texts::tr("Show Encrypted File"))
               : fileManagerActions::remove();
    if (!trouble)
        return;
    Util::showAlert(formatted(texts::tr("%@\n\nPlease open the preferences and try again when "
                                        "this has been put right."),
                              {asFormat(*trouble)}),
                    texts::tr("The menus of file managers couldn't be changed."));
}

} // namespace nimbrel
