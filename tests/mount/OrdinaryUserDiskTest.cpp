// A disk that an ordinary user mounts: his alone, and his to take away.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/Nimbrelctl.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/OrdinaryUser.h"
#include "mount/Tree.h"
#include "support/Files.h"
#include "support/MountInfo.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class OrdinaryUserDiskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        NIMBREL_NEED_ACCOUNT();
        MountedFolderOptions options;
        options.user = nobody();
        _disk = std::make_unique<MountedFolder>(options);
    }

    [[nodiscard]] static OrdinaryUser owner()
    {
        const uid_t number = nobody().value_or(0);
        return {.user = number, .group = static_cast<gid_t>(number)};
    }
    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

private:
    std::unique_ptr<MountedFolder> _disk;
};

TEST_F(OrdinaryUserDiskTest, FilesWork)
{
    const std::string text = noise(100'000, 1);
    const auto write = [&] {
        writeFile(path("file"), text);
        must(::mkdir(path("folder").c_str(), 0755), "mkdir");
        must(::rename(path("file").c_str(), path("folder/file").c_str()), "rename");
        must(::symlink("folder/file", path("link").c_str()), "symlink");
        must(::chmod(path("folder/file").c_str(), 0640), "chmod");
        return 0;
    };
    EXPECT_EQ(as(owner(), write), 0);
    disk().remount();
    const auto check = [&] {
        const struct stat status = statusOf(path("folder/file"));
        const bool good = readFile(path("link")) == text && namesIn(disk().plain()).size() == 2 &&
                          (status.st_mode & 07777U) == 0640 && status.st_uid == ::getuid() &&
                          status.st_gid == ::getgid();
        return good ? 0 : 1;
    };
    EXPECT_EQ(as(owner(), check), 0);
}

TEST_F(OrdinaryUserDiskTest, OthersDoNotSeeIt)
{
    ASSERT_EQ(as(owner(), [&] { return writeFile(path("file"), "text"), 0; }), 0);
    const auto look = [&](const std::string &what) {
        return errnoOf([&] { return ::open(what.c_str(), O_RDONLY | O_CLOEXEC); });
    };
    for (const OrdinaryUser &other : {ann(), OrdinaryUser{.user = 0, .group = 0}}) {
        EXPECT_EQ(as(other, [&] { return look(disk().plain()); }), EACCES) << other.user;
        EXPECT_EQ(as(other, [&] { return look(path("file")); }), EACCES) << other.user;
    }
}

TEST_F(OrdinaryUserDiskTest, OthersDoNotUnmountIt)
{
    const TempFolder temp;
    const Nimbrelctl tool(temp, annsNumber);
    const RunResult refused = tool({"unmount", disk().plain()});
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.error, "");
    EXPECT_EQ(mountedAt(disk().plain()), "fuse.nimbrel");
    EXPECT_EQ(as(owner(), [&] { return writeFile(path("file"), "text"), 0; }), 0);
}

TEST_F(OrdinaryUserDiskTest, ItsOwnerUnmountsIt)
{
    EXPECT_TRUE(disk().unmount());
    EXPECT_FALSE(mountedAt(disk().plain()));
}

TEST_F(OrdinaryUserDiskTest, RootMayUnmountIt)
{
    const TempFolder temp;
    const RunResult result = Nimbrelctl(temp)({"unmount", disk().plain()});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_FALSE(mountedAt(disk().plain()));
    EXPECT_EQ(disk().process().wait(std::chrono::seconds(60)), 0);
}

TEST_F(OrdinaryUserDiskTest, UnlinkedFilesWork)
{
    const auto work = [&] {
        const OpenFile file(path("file"), O_CREAT | O_RDWR);
        must(::unlink(path("file").c_str()), "unlink");
        file.writeAt("text", 5000);
        file.truncate(5002);
        file.sync();
        return file.readAt(10, 5000) == "te" && file.status().st_nlink == 0 ? 0 : 1;
    };
    EXPECT_EQ(as(owner(), work), 0);
}

// Nobody but the store is asked what its user may.
TEST_F(OrdinaryUserDiskTest, PermissionsAreThoseOfTheStore)
{
    const auto work = [&] {
        writeFile(path("file"), "text");
        const auto access = [&](int mask) {
            return errnoOf([&] { return ::access(path("file").c_str(), mask); });
        };
        const auto open = [&](int flags) {
            return errnoOf([&] { return ::open(path("file").c_str(), flags); });
        };
        must(::chmod(path("file").c_str(), 0400), "chmod");
        if (access(R_OK) != 0 || access(W_OK) != EACCES || access(X_OK) != EACCES ||
            open(O_RDONLY) != 0 || open(O_WRONLY) != EACCES || open(O_RDWR) != EACCES)
            return 1;
        must(::chmod(path("file").c_str(), 0200), "chmod");
        if (access(R_OK) != EACCES || access(W_OK) != 0 || open(O_RDONLY) != EACCES ||
            open(O_WRONLY) != 0)
            return 2;
        must(::chmod(path("file").c_str(), 0), "chmod");
        return access(F_OK) == 0 && open(O_RDONLY) == EACCES && open(O_WRONLY) == EACCES ? 0 : 3;
    };
    EXPECT_EQ(as(owner(), work), 0);
}

TEST_F(OrdinaryUserDiskTest, FilesOfOtherOwnersInTheFolderStayClosed)
{
    const std::vector<std::string> before = namesIn(disk().encrypted());
    ASSERT_EQ(as(owner(), [&] { return writeFile(path("file"), "text"), 0; }), 0);
    for (const std::string &name : namesIn(disk().encrypted())) {
        const std::string stored = disk().encrypted() + "/" + name;
        if (std::find(before.begin(), before.end(), name) == before.end()) {
            must(::chown(stored.c_str(), 0, 0), "chown");
            must(::chmod(stored.c_str(), 0600), "chmod");
        }
    }
    disk().remount();
    const auto open = [&] {
        return errnoOf([&] { return ::open(path("file").c_str(), O_RDONLY); });
    };
    EXPECT_EQ(as(owner(), open), EACCES);
    EXPECT_EQ(as(owner(), [&] { return static_cast<int>(namesIn(disk().plain()).size()); }), 1);
}

// Mounting for others takes an administrator's consent in fuse.conf.
TEST_F(OrdinaryUserDiskTest, AMountForOthersIsRefusedWithAReasonOrWorks)
{
    ASSERT_TRUE(disk().unmount());
    const std::string configuration =
        exists("/etc/fuse.conf") ? "\n" + readFile("/etc/fuse.conf") : "";
    const bool allowed = configuration.find("\nuser_allow_other") != std::string::npos;
    MountedFolderOptions options;
    options.user = nobody();
    options.existingFolder = disk().encrypted();
    options.mountArguments = {"--allow-other"};
    std::string reason;
    try {
        const MountedFolder second(options);
        EXPECT_EQ(as(ann(), [&] { return ::access(second.plain().c_str(), X_OK) == 0 ? 0 : 1; }),
                  0);
    } catch (const std::runtime_error &error) {
        reason = error.what();
    }
    EXPECT_EQ(reason.empty(), allowed) << reason;
    EXPECT_EQ(reason.find("allow_other") != std::string::npos, !allowed) << reason;
}

} // namespace

} // namespace nimbrel::test
