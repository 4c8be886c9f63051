// The new folder's password.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/PasswordAssistantView.h"

namespace nimbrel {

class NBApplication;

class NBPasswordAssistant final : public AssistantPage<PasswordAssistantView>
{
    Q_OBJECT

public:
    explicit NBPasswordAssistant(NBApplication &application) : _application(application) {}

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;

    // Tells the user what is missing. Any password that isn't empty will do.
    [[nodiscard]] bool checkPassphrase();

private:
    NBApplication &_application;
};

} // namespace nimbrel
