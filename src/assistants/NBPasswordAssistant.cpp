#include "assistants/NBPasswordAssistant.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/widgets/PasswordField.h"

#include <QPushButton>

namespace nimbrel {

QStringList NBPasswordAssistant::orderedSteps() const
{
    return {texts::tr("Create a password")};
}

void NBPasswordAssistant::start()
{
    controls().passphraseTextField->setFocus();
    if (!_application.advancedMode()) // the last step there
        controller()->nextButton()->setText(texts::tr("Finish"));
}

void NBPasswordAssistant::nextPressed()
{
    if (checkPassphrase())
        AssistantPage::nextPressed();
}

bool NBPasswordAssistant::checkPassphrase()
{
    const QString passphrase = controls().passphraseTextField->text();
    if (passphrase.isEmpty()) {
        Util::showAlert(texts::tr("Please enter a password."));
        return false;
    }
    if (passphrase != controls().confirmTextField->text()) {
        Util::showAlert(texts::tr("The passwords do not match."));
        return false;
    }
    return true;
}

} // namespace nimbrel
