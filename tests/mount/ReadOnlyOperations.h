// Everything that changes a disk, to see it refused.
#pragma once

#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace nimbrel::test {

// What the operations below work on.
inline void makeItemsToChange(const MountedFolder &disk)
{
    writeFile(disk / "file", "text");
    must(::mkdir((disk / "folder").c_str(), 0755), "mkdir");
    must(::symlink("file", (disk / "link").c_str()), "symlink");
}

inline void expectUnchangedItems(const MountedFolder &disk)
{
    EXPECT_EQ(readFile(disk / "file"), "text");
    EXPECT_EQ(readFile(disk / "link"), "text");
    EXPECT_TRUE(exists(disk / "folder"));
}

struct Change
{
    const char *what;
    std::function<long()> make;
};

inline std::vector<Change> changesOf(const MountedFolder &disk)
{
    const std::string file = disk / "file";
    const std::string folder = disk / "folder";
    const std::string added = disk / "new";
    const auto open = [](const std::string &path, int flags) {
        return [=] { return UniqueFd(::open(path.c_str(), flags | O_CLOEXEC, 0600)) ? 0L : -1L; };
    };
    return {
        {"open for writing", open(file, O_WRONLY)},
        {"open for both", open(file, O_RDWR)},
        {"open and cut", open(file, O_WRONLY | O_TRUNC)},
        {"create", open(added, O_WRONLY | O_CREAT)},
        {"mkdir", [=] { return ::mkdir(added.c_str(), 0755); }},
        {"symlink", [=] { return ::symlink("x", added.c_str()); }},
        {"mkfifo", [=] { return ::mkfifo(added.c_str(), 0600); }},
        {"link", [=] { return ::link(file.c_str(), added.c_str()); }},
        {"rename", [=] { return ::rename(file.c_str(), added.c_str()); }},
        {"unlink", [=] { return ::unlink(file.c_str()); }},
        {"rmdir", [=] { return ::rmdir(folder.c_str()); }},
        {"chmod", [=] { return ::chmod(file.c_str(), 0600); }},
        {"chown", [=] { return ::chown(file.c_str(), ::getuid(), ::getgid()); }},
        {"truncate", [=] { return ::truncate(file.c_str(), 1); }},
        {"utimensat", [=] { return ::utimensat(AT_FDCWD, file.c_str(), nullptr, 0); }},
        {"setxattr", [=] { return ::setxattr(file.c_str(), "user.a", "b", 1, 0); }},
    };
}

} // namespace nimbrel::test
