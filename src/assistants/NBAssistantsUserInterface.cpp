#include "assistants/NBAssistantsUserInterface.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "assistants/flows/EnterPassphrase.h"
#include "assistants/flows/NewVolume.h"
#include "volume/NBNimbrelVolume.h"

namespace nimbrel {

std::optional<PassphraseAnswer>
NBAssistantsUserInterface::passphraseFor(const NBNimbrelVolume &volume)
{
    return askForPassphrase(volume);
}

bool NBAssistantsUserInterface::advancedMode() const
{
    return _application.advancedMode();
}

std::optional<NBNewVolumeSettings> NBAssistantsUserInterface::newVolumeSettings()
{
    return askForNewVolume(_application);
}

bool NBAssistantsUserInterface::showSuccess(const NBNimbrelVolume &volume)
{
    return showSuccessPage(volume.configPath(), texts::tr("Nimbrel Assistant"));
}

} // namespace nimbrel
