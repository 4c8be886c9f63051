#pragma once

class QString;

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
    virtual void setAdvancedMode(bool isAdvanced) = 0; // for this run; the caller stores it
    [[nodiscard]] virtual NBVolumesController &volumesController() = 0;

    // application:openFile:
    // Takes a folder that is handed over, dropped or picked outside; true always.
    virtual bool application(const QString &openFile) = 0;
    // That folder until the manager window's addVolume has taken it; null for none.
    [[nodiscard]] virtual QString openFile() const = 0;
    virtual void setOpenFile(const QString &path) = 0;
};

} // namespace nimbrel
