// Disks that the program mounts in tests.
#pragma once

#include "cli/Workbench.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

// Why no disk can be mounted on this machine; empty where it can.
[[nodiscard]] std::string whyNoDisk();

// Ends a test, visibly skipped, where no disk can be mounted.
#define NIMBREL_NEED_DISK()                                                                        \
    if (const std::string why = nimbrel::test::whyNoDisk(); !why.empty())                          \
    GTEST_SKIP() << why

// A mount point on a workbench; whatever is still mounted there goes at its end.
class Disk final
{
public:
    explicit Disk(const Workbench &bench, std::string_view name = "disk");
    ~Disk();
    Disk(const Disk &) = delete;
    Disk &operator=(const Disk &) = delete;

    [[nodiscard]] const std::string &path() const noexcept { return _path; }
    [[nodiscard]] std::string operator/(std::string_view name) const
    {
        return _path + "/" + std::string(name);
    }
    // `nimbrelctl mount` with the password "p", into the background.
    [[nodiscard]] RunResult mount(const std::string &folder,
                                  std::vector<std::string> arguments = {}) const;
    [[nodiscard]] RunResult unmount() const { return _bench.nimbrelctl({"unmount", _path}); }
    [[nodiscard]] bool isMounted() const;
    // The processes that were started for it: their arguments name its path.
    [[nodiscard]] std::vector<pid_t> processes() const;
    // Leaves a dead disk: its server dies, and the keeper that would clear it away, too.
    [[nodiscard]] bool killServer() const;

private:
    const Workbench &_bench;
    std::string _path;
};

} // namespace nimbrel::test
