// Changes the password of a mounted volume.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/ChangePassphraseAssistantView.h"

#include <memory>

namespace nimbrel {

class NBNimbrelVolume;
class PasswordField;

// Does its work itself, on the volume that it was given.
class NBChangePassphraseAssistant final : public AssistantPage<ChangePassphraseAssistantView>
{
    Q_OBJECT

public:
    [[nodiscard]] const std::shared_ptr<NBNimbrelVolume> &volume() const noexcept
    {
        return _volume;
    }
    void setVolume(std::shared_ptr<NBNimbrelVolume> volume); // before run()

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;
    void prevPressed() override; // cancels

private:
    [[nodiscard]] bool checkPassphrases(); // tells the user what is missing
    [[nodiscard]] bool changePassphrase();
    void complain(const QString &text, PasswordField &about);

    std::shared_ptr<NBNimbrelVolume> _volume;
};

} // namespace nimbrel
