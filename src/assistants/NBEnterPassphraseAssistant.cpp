#include "assistants/NBEnterPassphraseAssistant.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/widgets/PasswordField.h"

#include <QCheckBox>
#include <QLayout>
#include <QPushButton>

namespace nimbrel {

QStringList NBEnterPassphraseAssistant::orderedSteps() const
{
    return {texts::tr("Enter Password")};
}

void NBEnterPassphraseAssistant::start()
{
    moveRememberButton();
    controller()->prevButton()->setText(texts::tr("Cancel"));
    controller()->prevButton()->setEnabled(true);
    controller()->nextButton()->setText(texts::tr("OK"));
    controls().passphraseTextField->setFocus();
}

// The engine gives it back at each page change, hidden.
void NBEnterPassphraseAssistant::moveRememberButton()
{
    QCheckBox *button = controls().rememberButton;
    controller()->specialView()->layout()->addWidget(button);
    button->show();
}

void NBEnterPassphraseAssistant::nextPressed()
{
    if (controls().passphraseTextField->text().isEmpty()) {
        Util::showAlert(texts::tr("You did not enter any password."));
        controls().passphraseTextField->setFocus();
        return;
    }
    AssistantPage::nextPressed();
}

void NBEnterPassphraseAssistant::prevPressed()
{
    controller()->reset();
}

} // namespace nimbrel
