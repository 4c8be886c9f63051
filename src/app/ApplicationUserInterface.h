#pragma once

#include "assistants/NBAssistantsUserInterface.h"

#include <functional>

namespace nimbrel {

// Answers the volumes' questions with the application's own windows.
class ApplicationUserInterface final : public NBAssistantsUserInterface
{
public:
    using AddVolume = std::function<void()>;

    // `addVolume` takes the folder that the application was handed (`openFile`).
    ApplicationUserInterface(NBApplication &application, AddVolume addVolume)
        : NBAssistantsUserInterface(application), _addVolume(std::move(addVolume))
    {
    }

    // At the end nobody answers: what would be asked counts as cancelled.
    void stopAsking() { _isAsking = false; }

    [[nodiscard]] std::optional<PassphraseAnswer>
    passphraseFor(const NBNimbrelVolume &volume) override
    {
        return _isAsking ? NBAssistantsUserInterface::passphraseFor(volume) : std::nullopt;
    }
    [[nodiscard]] bool showSuccess(const NBNimbrelVolume &volume) override
    {
        return _isAsking && NBAssistantsUserInterface::showSuccess(volume);
    }

    // The path is ignored (kept): the manager window works from `openFile`.
    void addVolumeAtPath(const QString & /*path*/) override { _addVolume(); }

private:
    AddVolume _addVolume;
    bool _isAsking = true;
};

} // namespace nimbrel
