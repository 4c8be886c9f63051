#pragma once

#include "volume/NBVolumesUserInterface.h"

namespace nimbrel {

class NBApplication;

// Answers the volumes' questions with assistants on the screen. What the manager window does is
// left to a subclass.
class NBAssistantsUserInterface : public NBVolumesUserInterface
{
public:
    explicit NBAssistantsUserInterface(NBApplication &application) : _application(application) {}

    [[nodiscard]] std::optional<PassphraseAnswer>
    passphraseFor(const NBNimbrelVolume &volume) override;
    [[nodiscard]] bool advancedMode() const override;
    [[nodiscard]] std::optional<NBNewVolumeSettings> newVolumeSettings() override;
    [[nodiscard]] bool showSuccess(const NBNimbrelVolume &volume) override;

private:
    NBApplication &_application;
};

} // namespace nimbrel
