#include "assistants/flows/NewVolume.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBAdvancedAssistant.h"
#include "assistants/NBPasswordAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/NBSuccessAssistant.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"

#include <QCheckBox>
#include <QLineEdit>

namespace nimbrel {

namespace {

// The rest keeps what simple mode makes of it.
NBNewVolumeSettings settingsOf(const NBRootAssistant &root, const NBPasswordAssistant &password)
{
    NBNewVolumeSettings settings;
    settings.path = root.controls().rootPathControl->path();
    settings.passphrase = password.controls().passphraseTextField->passphrase();
    settings.storePassphrase = password.controls().rememberButton->isChecked();
    return settings;
}

void addAdvanced(const NBAdvancedAssistant &page, NBNewVolumeSettings &settings)
{
    const AdvancedAssistantView &controls = page.controls();
    settings.label = controls.labelTextField->text();
    settings.keySize = page.keySize();
    settings.blockSize = page.blockSize();
    settings.encodeFilenames = controls.filenameEncryptionButton->isChecked();
    settings.automount = controls.automountButton->isChecked();
    settings.spotlight = controls.spotlightButton->isChecked();
    settings.local = controls.mountAsLocalDiskButton->isChecked();
    settings.allowAll = controls.mountForAllUsersButton->isChecked();
    if (controls.configButton->isChecked())
        settings.configPath = controls.configTextField->text();
}

} // namespace

std::optional<NBNewVolumeSettings> askForNewVolume(NBApplication &application)
{
    const auto engine = TESetupAssistant::initMini();
    const auto root = assistant<NBRootAssistant>(application);
    const auto password = assistant<NBPasswordAssistant>(application);
    const auto advanced =
        application.advancedMode() ? assistant<NBAdvancedAssistant>(application) : nullptr;
    engine->addAssistant(root);
    engine->addAssistant(password);
    if (advanced)
        engine->addAssistant(advanced);
    engine->setModal(true);
    engine->window()->setWindowTitle(texts::tr("Nimbrel Assistant"));
    engine->run();
    if (!engine->finished())
        return std::nullopt;
    NBNewVolumeSettings settings = settingsOf(*root, *password);
    if (advanced)
        addAdvanced(*advanced, settings);
    return settings;
}

bool showSuccessPage(const QString &configPath, const QString &windowTitle)
{
    const auto engine = TESetupAssistant::initMini();
    const auto page = assistant<NBSuccessAssistant>();
    page->setConfigPath(configPath);
    engine->addAssistant(page);
    engine->setModal(true);
    engine->window()->setWindowTitle(windowTitle);
    engine->run();
    return engine->finished() && page->controls().openVolumeButton->isChecked();
}

} // namespace nimbrel
