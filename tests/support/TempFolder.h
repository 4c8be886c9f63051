#pragma once

#include <string>
#include <string_view>

namespace nimbrel::test {

// A new folder below the machine's temporary folder, removed with all it holds at its end. Every
// user may enter it (0755), so that tests may hand files to an ordinary user.
class TempFolder final
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    [[nodiscard]] const std::string &path() const noexcept { return _path; }
    // The path of `name` in it; nothing is made.
    [[nodiscard]] std::string operator/(std::string_view name) const;
    // A folder of that name in it, made.
    [[nodiscard]] std::string makeFolder(std::string_view name) const;

private:
    std::string _path;
};

} // namespace nimbrel::test
