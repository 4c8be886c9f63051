// An encrypted folder, mounted as a user would.
#pragma once

#include "mount/Nimbrelctl.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

// Why FUSE can't be used on this machine; empty where it can. As root it opens /dev/fuse to all
// users first, as every desktop's does.
[[nodiscard]] std::string whyNoFuse();

// Ends a test, visibly skipped, on a machine without FUSE.
#define NIMBREL_NEED_FUSE()                                                                        \
    if (const std::string why = nimbrel::test::whyNoFuse(); !why.empty())                          \
    GTEST_SKIP() << why

struct MountedFolderOptions
{
    int keySize = 256;     // bits
    long blockSize = 4096; // bytes
    bool plainNames = false;
    std::string existingFolder = {}; // use this encrypted folder, make none
    std::string backing = {};        // make the encrypted folder below this path
    std::string password = "a test's own password";
    std::vector<std::string> mountArguments = {}; // added to `nimbrelctl mount`
    std::optional<uid_t> user = {};               // who creates and mounts (needs root)
};

// Makes a folder with `nimbrelctl create`, mounts it with `nimbrelctl mount --foreground`, unmounts
// and removes everything at its end, also after a failure. Throws std::runtime_error, with what the
// program said, when the disk doesn't come up.
class MountedFolder final
{
public:
    explicit MountedFolder(MountedFolderOptions options = {});
    ~MountedFolder();
    MountedFolder(const MountedFolder &) = delete;
    MountedFolder &operator=(const MountedFolder &) = delete;

    [[nodiscard]] const std::string &plain() const noexcept { return _plain; } // mount point
    [[nodiscard]] const std::string &encrypted() const noexcept { return _encrypted; } // folder
    [[nodiscard]] std::string operator/(const std::string &name) const
    {
        return _plain + "/" + name;
    }
    [[nodiscard]] pid_t daemon() const;
    [[nodiscard]] RunningProcess &process() { return *_process; }

    void mount();
    // Unmounts with `nimbrelctl unmount` and waits for the program; false when it is refused.
    [[nodiscard]] bool unmount();
    // unmount, then mount: what is read afterwards comes from the encrypted folder.
    void remount();
    void kill(); // SIGKILL to the program that serves the disk

private:
    void create();
    void leave();    // takes the disk away, in an orderly way where that is possible
    void awaitEnd(); // of the program; throws when it didn't end well

    TempFolder _temp;
    MountedFolderOptions _options;
    Nimbrelctl _nimbrelctl;
    std::string _encrypted;
    std::string _plain;
    std::string _passwordFile;
    std::unique_ptr<RunningProcess> _process;
};

} // namespace nimbrel::test
