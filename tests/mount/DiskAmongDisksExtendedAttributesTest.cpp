#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Programs.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <set>
#include <sys/xattr.h>

namespace nimbrel::test {

namespace {

int setError(const std::string &path, const std::string &name, std::string_view value,
             int flags = 0)
{
    return errnoOf(
        [&] { return ::lsetxattr(path.c_str(), name.c_str(), value.data(), value.size(), flags); });
}

std::string valueOf(const std::string &path, const std::string &name)
{
    std::string value(65'536, '\0');
    const ssize_t size =
        must(::lgetxattr(path.c_str(), name.c_str(), value.data(), value.size()), "lgetxattr");
    return value.substr(0, static_cast<std::size_t>(size));
}

std::set<std::string> attributesIn(const std::string &path)
{
    std::string list(65'536, '\0');
    const ssize_t size = must(::llistxattr(path.c_str(), list.data(), list.size()), "llistxattr");
    list.resize(static_cast<std::size_t>(size));
    std::set<std::string> names;
    for (std::size_t at = 0; at < list.size(); at += std::string(list.c_str() + at).size() + 1) {
        const std::string name = list.c_str() + at;
        if (name.starts_with("user."))
            names.insert(name);
    }
    return names;
}

class DiskAmongDisksExtendedAttributesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
        if (setError(_disk->encrypted(), "user.probe", "1") != 0)
            GTEST_SKIP() << "the store below TMPDIR has no extended attributes";
        writeFile(path("file"), "text");
        must(::mkdir(path("folder").c_str(), 0755), "mkdir");
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

private:
    std::unique_ptr<MountedFolder> _disk;
};

TEST_F(DiskAmongDisksExtendedAttributesTest, AreKeptOverRenamesAndMounts)
{
    const std::string bytes = noise(500, 1);
    for (const char *name : {"file", "folder"}) {
        EXPECT_EQ(setError(path(name), "user.text", "value"), 0);
        EXPECT_EQ(setError(path(name), "user.bytes", bytes), 0);
        EXPECT_EQ(setError(path(name), "user.empty", ""), 0);
        EXPECT_EQ(setError(path(name), "user.größe", "ü"), 0);
    }
    must(::rename(path("file").c_str(), path("folder/file").c_str()), "rename");
    disk().remount();
    for (const char *name : {"folder/file", "folder"}) {
        EXPECT_EQ(attributesIn(path(name)),
                  (std::set<std::string>{"user.text", "user.bytes", "user.empty", "user.größe"}));
        EXPECT_EQ(valueOf(path(name), "user.text"), "value");
        EXPECT_TRUE(valueOf(path(name), "user.bytes") == bytes);
        EXPECT_EQ(valueOf(path(name), "user.empty"), "");
        EXPECT_EQ(valueOf(path(name), "user.größe"), "ü");
    }
}

TEST_F(DiskAmongDisksExtendedAttributesTest, AreReplacedAndRemoved)
{
    EXPECT_EQ(setError(path("file"), "user.a", "one"), 0);
    EXPECT_EQ(setError(path("file"), "user.a", "another"), 0);
    EXPECT_EQ(valueOf(path("file"), "user.a"), "another");
    const auto remove = [&] { return ::lremovexattr(path("file").c_str(), "user.a"); };
    EXPECT_EQ(errnoOf(remove), 0);
    EXPECT_EQ(errnoOf(remove), ENODATA);
    EXPECT_TRUE(attributesIn(path("file")).empty());
    EXPECT_EQ(readFile(path("file")), "text");
}

TEST_F(DiskAmongDisksExtendedAttributesTest, FlagsDecideWhetherOneMayBeThere)
{
    EXPECT_EQ(setError(path("file"), "user.a", "one", XATTR_REPLACE), ENODATA);
    EXPECT_EQ(setError(path("file"), "user.a", "one", XATTR_CREATE), 0);
    EXPECT_EQ(setError(path("file"), "user.a", "two", XATTR_CREATE), EEXIST);
    EXPECT_EQ(valueOf(path("file"), "user.a"), "one");
    EXPECT_EQ(setError(path("file"), "user.a", "two", XATTR_REPLACE), 0);
    EXPECT_EQ(valueOf(path("file"), "user.a"), "two");
}

TEST_F(DiskAmongDisksExtendedAttributesTest, SizesAreAskedFirst)
{
    ASSERT_EQ(setError(path("file"), "user.a", "value"), 0);
    char little[2] = {};
    const std::string name = path("file");
    EXPECT_EQ(::lgetxattr(name.c_str(), "user.a", nullptr, 0), 5);
    EXPECT_EQ(errnoOf([&] { return ::lgetxattr(name.c_str(), "user.a", little, 2); }), ERANGE);
    EXPECT_GE(::llistxattr(name.c_str(), nullptr, 0), 7);
    EXPECT_EQ(errnoOf([&] { return ::llistxattr(name.c_str(), little, 2); }), ERANGE);
    EXPECT_EQ(errnoOf([&] { return ::lgetxattr(name.c_str(), "user.b", nullptr, 0); }), ENODATA);
}

TEST_F(DiskAmongDisksExtendedAttributesTest, OfAnOpenFileWork)
{
    const OpenFile file(path("file"), O_RDWR);
    must(::fsetxattr(file.id(), "user.a", "value", 5, 0), "fsetxattr");
    EXPECT_EQ(valueOf(path("file"), "user.a"), "value");
    must(::fremovexattr(file.id(), "user.a"), "fremovexattr");
    EXPECT_TRUE(attributesIn(path("file")).empty());
}

TEST_F(DiskAmongDisksExtendedAttributesTest, WhatTheStoreRefusesIsRefusedAlike)
{
    const std::string stored = disk().encrypted() + "/direct";
    writeFile(stored, "text");
    const std::string large(60'000, 'v');
    EXPECT_EQ(setError(path("file"), "user.a", large), setError(stored, "user.a", large));
    EXPECT_EQ(setError(path("file"), "nonsense", "v"), setError(stored, "nonsense", "v"));
    EXPECT_EQ(setError(path("file"), "user.", "v"), setError(stored, "user.", "v"));
    must(::symlink("file", path("link").c_str()), "symlink");
    EXPECT_NE(setError(path("link"), "user.a", "v"), 0);
    EXPECT_TRUE(attributesIn(path("file")).empty() || setError(stored, "user.a", large) == 0);
}

TEST_F(DiskAmongDisksExtendedAttributesTest, ProgramsCopyThem)
{
    NIMBREL_NEED_PROGRAM("getfattr");
    ASSERT_EQ(setError(path("file"), "user.a", "value"), 0);
    const RunResult result = shell("cp --preserve=all file copy && mv copy folder/moved && "
                                   "getfattr --only-values -n user.a folder/moved",
                                   {.folder = disk().plain()});
    EXPECT_EQ(result.output, "value") << result.error;
}

} // namespace

} // namespace nimbrel::test
