#pragma once

namespace nimbrel {

class NBVolumesController;

// What windows and assistants know of the application's delegate. Main thread only.
class NBApplication
{
public:
    NBApplication() = default;
    virtual ~NBApplication() = default;
    NBApplication(const NBApplication &) = delete;
    NBApplication &operator=(const NBApplication &) = delete;

    // Simple mode serves one volume, advanced mode a list. Changes while the program runs, so it
    // is asked at each use.
    [[nodiscard]] virtual bool advancedMode() const = 0;
    [[nodiscard]] virtual NBVolumesController &volumesController() = 0;
};

} // namespace nimbrel
