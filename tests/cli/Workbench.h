// What a test of the command line tool works with.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

// The user and group number that an ordinary user of a test has; needs no entry anywhere.
inline constexpr uid_t ordinaryUser = 65534;

// One test's folders, passwords and calls of the program. Backups stay in it, too.
class Workbench final
{
public:
    // With `user` (needs root) a copy of the program runs as that user, who owns the workbench.
    explicit Workbench(std::optional<uid_t> user = {});

    // Where everything of the test lies.
    [[nodiscard]] std::string operator/(std::string_view name) const { return _temp / name; }
    [[nodiscard]] std::string makeFolder(std::string_view name) const;
    [[nodiscard]] std::string backups() const { return _temp / "state/Nimbrel/backups"; }

    // The program with these arguments; `input` is its standard input.
    [[nodiscard]] RunResult nimbrelctl(std::vector<std::string> arguments,
                                       const std::string &input = {}) const;
    [[nodiscard]] const std::string &program() const noexcept { return _program; }
    [[nodiscard]] RunOptions runOptions(const std::string &input = {}) const;

    // A file whose first line is `password`; its path.
    [[nodiscard]] std::string passwordFile(std::string_view password) const;
    // An encrypted folder, made with `nimbrelctl create` and `arguments`; its path.
    [[nodiscard]] std::string encryptedFolder(std::string_view password = "a test's password",
                                              std::vector<std::string> arguments = {}) const;

private:
    TempFolder _temp;
    std::optional<uid_t> _user;
    std::string _program;
    mutable int _made = 0;
};

// One complaint of one line, with `status`, that says `text`, and nothing on standard output.
void expectComplaint(const RunResult &result, int status, std::string_view text);

// Every item below `folder` with its kind, permissions, time and content: equal texts, equal trees.
[[nodiscard]] std::string snapshot(const std::string &folder);

// A folder of tests/data/folders.tar.xz, unpacked on the workbench; its password is `nimbrel
// vectors`.
[[nodiscard]] std::string unpackedFolder(const Workbench &bench, const std::string &name);

} // namespace nimbrel::test
