// Asks for the password of a folder that is being mounted.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/EnterPassphraseAssistantView.h"

namespace nimbrel {

// Doesn't prove the password: the mount does, and asks again.
class NBEnterPassphraseAssistant final : public AssistantPage<EnterPassphraseAssistantView>
{
    Q_OBJECT

public:
    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;
    void prevPressed() override; // cancels

private:
    void moveRememberButton();
};

} // namespace nimbrel
