#pragma once

#include <string>

namespace nimbrel {

// A folder that is about to become an encrypted one, and the way back when that fails: only what
// this made, or found empty, is removed. A folder with files in it keeps them.
class NewFolder final
{
public:
    explicit NewFolder(std::string path);

    [[nodiscard]] bool holdsConfiguration() const;
    // With all missing parents; one that exists is no failure. False when it can't be made.
    [[nodiscard]] bool make();
    void takeBack();

private:
    std::string _path;
    bool _wasEmpty = false; // or not there
};

} // namespace nimbrel
