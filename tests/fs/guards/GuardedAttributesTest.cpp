#include "fs/guards/GuardedFolder.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr timespec someTime{1'234'567'890, 123'456'789};
constexpr timespec otherTime{987'654'321, 987'654'321};

bool operator==(const timespec &one, const timespec &other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// By path, and by an open file without a name.
class GuardedAttributesTest : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        if (GetParam()) {
            ASSERT_TRUE(folder.tree().removeFile("/file"));
        }
    }
    int set(const NBItemAttributes &attributes)
    {
        return GetParam() ? folder.tree().setAttributes(file, attributes).code()
                          : folder.tree().setAttributes("/file", attributes).code();
    }
    struct stat get() { return *folder.tree().attributes(file); }

    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "text");
};

} // namespace

TEST_P(GuardedAttributesTest, EachDateIsSetByItselfToTheNanosecond)
{
    NBItemAttributes both;
    both.accessDate = someTime;
    both.modificationDate = otherTime;
    ASSERT_EQ(set(both), 0);
    EXPECT_TRUE(get().st_atim == someTime);
    EXPECT_TRUE(get().st_mtim == otherTime);
    NBItemAttributes modification;
    modification.modificationDate = someTime;
    ASSERT_EQ(set(modification), 0);
    EXPECT_TRUE(get().st_atim == someTime);
    EXPECT_TRUE(get().st_mtim == someTime);
    NBItemAttributes access;
    access.accessDate = otherTime;
    ASSERT_EQ(set(access), 0);
    EXPECT_TRUE(get().st_atim == otherTime);
    EXPECT_TRUE(get().st_mtim == someTime);
}

TEST_P(GuardedAttributesTest, OneDateIsNowAndTheOtherStays)
{
    NBItemAttributes both;
    both.accessDate = someTime;
    both.modificationDate = someTime;
    ASSERT_EQ(set(both), 0);
    NBItemAttributes now;
    now.modificationDate = timespec{0, UTIME_NOW};
    ASSERT_EQ(set(now), 0);
    EXPECT_TRUE(get().st_atim == someTime);
    EXPECT_GT(get().st_mtim.tv_sec, someTime.tv_sec);
}

TEST_P(GuardedAttributesTest, PermissionsAndDatesInOneCall)
{
    NBItemAttributes attributes;
    attributes.posixPermissions = 04751;
    attributes.owner = ::geteuid();
    attributes.group = ::getegid();
    attributes.modificationDate = someTime;
    ASSERT_EQ(set(attributes), 0);
    EXPECT_EQ(get().st_mode & 07777U, 04751U); // the change of owner came first
    EXPECT_TRUE(get().st_mtim == someTime);
}

TEST_P(GuardedAttributesTest, OwnersChangeWhereTheProcessMay)
{
    NBItemAttributes attributes;
    attributes.owner = ::geteuid() + 1;
    EXPECT_EQ(set(attributes), ::geteuid() == 0 ? 0 : EPERM);
    EXPECT_EQ(get().st_uid, ::geteuid() == 0 ? 1U : ::geteuid());
}

TEST_P(GuardedAttributesTest, ASizeIsRefusedHere)
{
    NBItemAttributes attributes;
    attributes.size = 2;
    EXPECT_EQ(set(attributes), EINVAL);
    EXPECT_EQ(get().st_size, 4);
}

TEST_P(GuardedAttributesTest, NothingToSetIsDone)
{
    EXPECT_EQ(set({}), 0);
}

INSTANTIATE_TEST_SUITE_P(Ways, GuardedAttributesTest, testing::Bool(),
                         [](const auto &way) { return way.param ? "OfAnUnlinkedFile" : "ByPath"; });

TEST(GuardedLinkAttributesTest, AreTheLinksOwn)
{
    GuardedFolder folder;
    (void)folder.create("/file", "text");
    const struct stat before = *folder.tree().attributes("/file");
    ASSERT_TRUE(folder.tree().makeLink("/link", "file", thisUser()));
    NBItemAttributes attributes;
    attributes.modificationDate = someTime;
    ASSERT_TRUE(folder.tree().setAttributes("/link", attributes));
    EXPECT_TRUE(folder.tree().attributes("/link")->st_mtim == someTime);
    EXPECT_TRUE(folder.tree().attributes("/file")->st_mtim == before.st_mtim);
    NBItemAttributes mode;
    mode.posixPermissions = 0600;
    EXPECT_EQ(folder.tree().setAttributes("/link", mode).code(), EOPNOTSUPP);
}

TEST(GuardedFolderAttributesTest, ErrorsArePassedOn)
{
    GuardedFolder folder;
    EXPECT_EQ(folder.tree().attributes("/none").code(), ENOENT);
    (void)folder.create("/file");
    EXPECT_EQ(folder.tree().attributes("/file/below").code(), ENOTDIR);
    EXPECT_EQ(
        folder.tree().setAttributes("/none", NBItemAttributes{.posixPermissions = 0600}).code(),
        ENOENT);
    EXPECT_EQ(folder.tree().fileSystem("/none").code(), ENOENT);
    EXPECT_EQ(folder.tree().attributes(NBFileHandle{}).code(), EBADF);
}

namespace {

class GuardedExtendedAttributesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const NBDone done =
            folder.tree().setExtendedAttribute("/file", "user.one", bytesOf("1"), 0);
        if (done.code() == EOPNOTSUPP)
            GTEST_SKIP() << "this store has no extended attributes";
        ASSERT_TRUE(done);
    }
    std::vector<std::string> names()
    {
        std::vector<std::string> found = *folder.tree().extendedAttributes("/file");
        std::erase_if(found, [](const std::string &name) { return !name.starts_with("user."); });
        std::sort(found.begin(), found.end());
        return found;
    }

    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "text");
};

} // namespace

TEST_F(GuardedExtendedAttributesTest, AreSetReadListedAndRemoved)
{
    GuardedTree &tree = folder.tree();
    EXPECT_EQ(textOf(*tree.extendedAttribute("/file", "user.one")), "1");
    EXPECT_TRUE(tree.setExtendedAttribute("/file", "user.empty", {}, 0));
    EXPECT_TRUE(tree.extendedAttribute("/file", "user.empty")->empty());
    EXPECT_EQ(tree.setExtendedAttribute("/file", "user.one", bytesOf("2"), XATTR_CREATE).code(),
              EEXIST);
    EXPECT_EQ(tree.setExtendedAttribute("/file", "user.two", bytesOf("2"), XATTR_REPLACE).code(),
              ENODATA);
    EXPECT_EQ(names(), (std::vector<std::string>{"user.empty", "user.one"}));
    EXPECT_TRUE(tree.removeExtendedAttribute("/file", "user.empty"));
    EXPECT_EQ(tree.removeExtendedAttribute("/file", "user.empty").code(), ENODATA);
    EXPECT_EQ(tree.extendedAttribute("/file", "user.empty").code(), ENODATA);
    EXPECT_EQ(tree.extendedAttributes("/none").code(), ENOENT);
}

TEST_F(GuardedExtendedAttributesTest, NamesBehindOneThatIsNotAsciiAreWhole)
{
    for (const std::string name : {"user.Größe", "user.after", "user.日本", "user.zz"})
        ASSERT_TRUE(folder.tree().setExtendedAttribute("/file", name, bytesOf("x"), 0));
    EXPECT_EQ(names(), (std::vector<std::string>{"user.Größe", "user.after", "user.one", "user.zz",
                                                 "user.日本"}));
    // The delegate alone loses its way among them.
    const std::vector<std::string> all = *folder.tree().extendedAttributes("/file");
    for (const std::string &name : all)
        EXPECT_TRUE(folder.tree().extendedAttribute("/file", name)) << name;
}

TEST_F(GuardedExtendedAttributesTest, AccessControlListsPass)
{
    // One entry for a user by number, and the mask that it needs.
    const Bytes list = {2, 0, 0,   0,   1,   0,   6,    0, 255, 255, 255, 255, 2,   0,    4,
                        0, 1, 4,   0,   0,   4,   0,    4, 0,   255, 255, 255, 255, 0x10, 0,
                        6, 0, 255, 255, 255, 255, 0x20, 0, 0,   0,   255, 255, 255, 255};
    const NBDone set =
        folder.tree().setExtendedAttribute("/file", "system.posix_acl_access", list, 0);
    if (set.code() == EOPNOTSUPP)
        GTEST_SKIP() << "this store has no access control lists";
    ASSERT_TRUE(set);
    EXPECT_EQ(*folder.tree().extendedAttribute("/file", "system.posix_acl_access"), list);
    EXPECT_EQ(folder.tree().attributes("/file")->st_mode & 0777U, 0660U); // the mask
}

} // namespace nimbrel::test
