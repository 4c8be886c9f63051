// With plain names the configuration lies among the disk's own files; losing it loses everything.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

class ProtectedConfigurationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        MountedFolderOptions options;
        options.plainNames = true;
        _disk = std::make_unique<MountedFolder>(options);
        _text = readFile(stored());
        writeFile(path("a"), "text");
    }

    // Whatever a test tried: the file is as it was, and the disk opens with it.
    void TearDown() override
    {
        if (!_disk)
            return;
        EXPECT_EQ(readFile(stored()), _text);
        _disk->remount();
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }
    [[nodiscard]] std::string configuration() const { return path(".encfs6.xml"); }
    [[nodiscard]] std::string stored() const { return _disk->encrypted() + "/.encfs6.xml"; }

    [[nodiscard]] int openError(int flags) const
    {
        return errnoOf([&] {
            return UniqueFd(::open(configuration().c_str(), flags | O_CLOEXEC, 0600)) ? 0 : -1;
        });
    }

private:
    std::unique_ptr<MountedFolder> _disk;
    std::string _text;
};

TEST_F(ProtectedConfigurationTest, ItIsNotListed)
{
    EXPECT_EQ(namesIn(disk().plain()), std::vector<std::string>{"a"});
}

TEST_F(ProtectedConfigurationTest, ItOpensForReading)
{
    EXPECT_EQ(openError(O_RDONLY), 0);
}

TEST_F(ProtectedConfigurationTest, ItDoesNotOpenForWriting)
{
    EXPECT_EQ(openError(O_WRONLY), EPERM);
    EXPECT_EQ(openError(O_RDWR), EPERM);
    EXPECT_EQ(openError(O_WRONLY | O_TRUNC), EPERM);
    EXPECT_EQ(openError(O_WRONLY | O_APPEND), EPERM);
    EXPECT_EQ(openError(O_WRONLY | O_CREAT | O_TRUNC), EPERM);
    EXPECT_NE(openError(O_RDONLY | O_TRUNC), 0);
}

TEST_F(ProtectedConfigurationTest, ItIsNotCutShort)
{
    EXPECT_EQ(errnoOf([&] { return ::truncate(configuration().c_str(), 0); }), EPERM);
}

TEST_F(ProtectedConfigurationTest, ItIsNotRemoved)
{
    EXPECT_EQ(errnoOf([&] { return ::unlink(configuration().c_str()); }), EPERM);
}

TEST_F(ProtectedConfigurationTest, ItIsNotRenamed)
{
    EXPECT_EQ(errnoOf([&] { return ::rename(configuration().c_str(), path("b").c_str()); }), EPERM);
    EXPECT_FALSE(exists(path("b")));
}

TEST_F(ProtectedConfigurationTest, NothingIsRenamedOverIt)
{
    EXPECT_EQ(errnoOf([&] { return ::rename(path("a").c_str(), configuration().c_str()); }), EPERM);
    EXPECT_EQ(readFile(path("a")), "text");
}

TEST_F(ProtectedConfigurationTest, NothingIsExchangedWithIt)
{
    const auto exchange = [](const std::string &one, const std::string &other) {
        return errnoOf([&] {
            return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
        });
    };
    EXPECT_EQ(exchange(path("a"), configuration()), EPERM);
    EXPECT_EQ(exchange(configuration(), path("a")), EPERM);
    EXPECT_EQ(readFile(path("a")), "text");
}

// Through a second name it could be written after all.
TEST_F(ProtectedConfigurationTest, ItGetsNoSecondName)
{
    EXPECT_EQ(errnoOf([&] { return ::link(configuration().c_str(), path("b").c_str()); }), EPERM);
    EXPECT_FALSE(exists(path("b")));
}

TEST_F(ProtectedConfigurationTest, ItDoesNotComeBackOnceMissing)
{
    const std::string aside = disk().encrypted() + "/aside";
    std::filesystem::rename(stored(), aside);
    const std::string name = configuration();
    // What the kernel knew of the name lasts for a moment.
    EXPECT_TRUE(eventually([&] { return openError(O_RDONLY) == ENOENT; }));
    EXPECT_EQ(openError(O_WRONLY | O_CREAT), EPERM);
    EXPECT_EQ(errnoOf([&] { return ::mkdir(name.c_str(), 0755); }), EPERM);
    EXPECT_EQ(errnoOf([&] { return ::symlink("x", name.c_str()); }), EPERM);
    EXPECT_EQ(errnoOf([&] { return ::mkfifo(name.c_str(), 0600); }), EPERM);
    EXPECT_EQ(errnoOf([&] { return ::link(path("a").c_str(), name.c_str()); }), EPERM);
    EXPECT_EQ(errnoOf([&] { return ::rename(path("a").c_str(), name.c_str()); }), EPERM);
    std::filesystem::rename(aside, stored());
}

TEST_F(ProtectedConfigurationTest, ACleanUpOfEverythingLeavesIt)
{
    (void)shell("rm -rf -- * .[!.]* .encfs6.xml", {.folder = disk().plain()});
    (void)run({"find", disk().plain(), "-mindepth", "1", "-delete"});
    EXPECT_TRUE(namesIn(disk().plain()).empty());
}

TEST_F(ProtectedConfigurationTest, BelowTheRootTheNameIsFree)
{
    must(::mkdir(path("folder").c_str(), 0755), "mkdir");
    const std::string inner = path("folder/.encfs6.xml");
    writeFile(inner, "mine");
    EXPECT_EQ(namesIn(path("folder")), std::vector<std::string>{".encfs6.xml"});
    EXPECT_EQ(readFile(inner), "mine");
    EXPECT_EQ(errnoOf([&] { return ::rename(inner.c_str(), path("b").c_str()); }), 0);
    EXPECT_EQ(readFile(path("b")), "mine");
    EXPECT_EQ(errnoOf([&] { return ::rename(path("b").c_str(), configuration().c_str()); }), EPERM);
}

TEST(EncryptedConfigurationNameTest, WithEncryptedNamesTheNameIsFree)
{
    NIMBREL_NEED_FUSE();
    NIMBREL_NEED_ENCRYPTED_DISK();
    MountedFolder disk;
    const std::string path = disk / ".encfs6.xml";
    const std::string stored = readFile(disk.encrypted() + "/.encfs6.xml");
    EXPECT_FALSE(exists(path));
    writeFile(path, "mine");
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{".encfs6.xml"});
    EXPECT_EQ(errnoOf([&] { return ::unlink(path.c_str()); }), 0);
    EXPECT_EQ(readFile(disk.encrypted() + "/.encfs6.xml"), stored);
    disk.remount();
}

} // namespace

} // namespace nimbrel::test
