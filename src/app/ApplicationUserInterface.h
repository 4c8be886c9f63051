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

    // The path is ignored (kept): the manager window works from `openFile`.
    void addVolumeAtPath(const QString & /*path*/) override { _addVolume(); }

private:
    AddVolume _addVolume;
};

} // namespace nimbrel
