#pragma once

#include <string>
#include <vector>

namespace nimbrel {

// A folder in the making: what was made of it goes again unless it is kept. What existed before is
// never touched.
class NewFolder final
{
public:
    // Makes the folder, with its missing parents, or takes an empty one. Throws CommandError.
    explicit NewFolder(const std::string &path);

    // Judges without making anything: throws CommandError where a new folder can't be at `path`.
    static void requirePlaceFor(const std::string &path);

    [[nodiscard]] const std::string &path() const noexcept { return _path; } // canonical
    // A file of this name is about to be made in the folder; its path.
    std::string willHold(std::string_view name);
    void keep() noexcept { _made.paths.clear(); }

private:
    // Removes at its end what it names, also when making the folder fails halfway.
    struct MadePaths
    {
        MadePaths() = default;
        ~MadePaths();
        MadePaths(const MadePaths &) = delete;
        MadePaths &operator=(const MadePaths &) = delete;
        std::vector<std::string> paths = {}; // in the order of their making
    };

    void makeWithParents(const std::string &path);

    MadePaths _made;
    std::string _path;
};

} // namespace nimbrel
