#include "assistants/flows/ChangePassphrase.h"

#include "assistant/TESetupAssistant.h"
#include "assistants/NBChangePassphraseAssistant.h"

namespace nimbrel {

void showChangePassphrase(const std::shared_ptr<NBNimbrelVolume> &volume)
{
    const auto engine = TESetupAssistant::initMini();
    const auto page = assistant<NBChangePassphraseAssistant>();
    engine->addAssistant(page);
    page->setVolume(volume);
    engine->setModal(true);
    engine->window()->setWindowTitle(QStringLiteral("Nimbrel"));
    engine->run();
}

} // namespace nimbrel
