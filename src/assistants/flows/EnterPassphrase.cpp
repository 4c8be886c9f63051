#include "assistants/flows/EnterPassphrase.h"

#include "assistant/TESetupAssistant.h"
#include "assistants/NBEnterPassphraseAssistant.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"
#include "volume/NBNimbrelVolume.h"

#include <QCheckBox>

namespace nimbrel {

std::optional<PassphraseAnswer> askForPassphrase(const NBNimbrelVolume &volume)
{
    const auto engine = TESetupAssistant::initMini();
    const auto page = assistant<NBEnterPassphraseAssistant>();
    engine->addAssistant(page);
    const EnterPassphraseAssistantView &controls = page->controls();
    controls.customPathControl->setURL(QUrl::fromLocalFile(volume.path()));
    controls.rememberButton->setChecked(volume.storePassphrase());
    engine->setModal(true);
    engine->window()->setWindowTitle(QStringLiteral("Nimbrel"));
    engine->run();
    if (!engine->finished())
        return std::nullopt;
    return PassphraseAnswer{.passphrase = controls.passphraseTextField->passphrase(),
                            .storePassphrase = controls.rememberButton->isChecked()};
}

} // namespace nimbrel
