// A disk that root has mounted for all users of the machine.
#pragma once

#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryUser.h"
#include "support/Files.h"

#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

class SharedDisk : public testing::Test
{
protected:
    void SetUp() override
    {
        _umask = ::umask(022);
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_USERS();
        MountedFolderOptions options;
        options.mountArguments = {"--allow-other"};
        _disk = std::make_unique<MountedFolder>(options);
        must(::chmod(_disk->plain().c_str(), 0777), "chmod");
    }
    void TearDown() override { ::umask(_umask); }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

    // An item of root's, given to somebody.
    void make(const std::string &name, mode_t mode, uid_t owner = 0, gid_t group = 0) const
    {
        writeFile(path(name), "text");
        give(name, mode, owner, group);
    }
    void makeFolder(const std::string &name, mode_t mode, uid_t owner = 0, gid_t group = 0) const
    {
        must(::mkdir(path(name).c_str(), 0755), "mkdir " + name);
        give(name, mode, owner, group);
    }

    // 0 or the errno with which that user can't.
    [[nodiscard]] int openError(const OrdinaryUser &user, const std::string &name, int flags) const
    {
        return as(user, [&] {
            return errnoOf([&] { return ::open(path(name).c_str(), flags | O_CLOEXEC, 0666); });
        });
    }
    [[nodiscard]] static int errorOf(const OrdinaryUser &user, const std::function<long()> &call)
    {
        return as(user, [&] { return errnoOf(call); });
    }

private:
    void give(const std::string &name, mode_t mode, uid_t owner, gid_t group) const
    {
        must(::chown(path(name).c_str(), owner, group), "chown " + name);
        must(::chmod(path(name).c_str(), mode), "chmod " + name);
    }

    mode_t _umask = 022;
    std::unique_ptr<MountedFolder> _disk;
};

} // namespace nimbrel::test
