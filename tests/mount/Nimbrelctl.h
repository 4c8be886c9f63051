// The command line tool as a test runs it.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

// Runs the tool with a home of its own below `temp`, so that its backups never reach a person's.
// With a user the tool is first copied to where that user can run it: the build folder may be
// closed to others.
class Nimbrelctl final
{
public:
    // `temp` outlives this.
    explicit Nimbrelctl(const TempFolder &temp, std::optional<uid_t> user = {});

    [[nodiscard]] std::vector<std::string> command(const std::vector<std::string> &words) const;
    [[nodiscard]] RunOptions options() const;
    [[nodiscard]] RunResult operator()(const std::vector<std::string> &words) const;

    // A file for --password-file, readable for that user alone; its path.
    [[nodiscard]] std::string passwordFile(const std::string &name,
                                           const std::string &password) const;
    // Gives an item to that user; nothing to do without one.
    void give(const std::string &path) const;

private:
    const TempFolder &_temp;
    std::optional<uid_t> _user;
    std::string _program;
    std::string _home;
};

} // namespace nimbrel::test
