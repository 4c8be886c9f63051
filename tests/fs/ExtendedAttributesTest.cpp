#include "fs/TestDelegate.h"

#include <gmock/gmock.h>
#include <sys/xattr.h>

namespace nimbrel::test {

namespace {

using testing::Contains;
using testing::ElementsAre;

class ExtendedAttributesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        delegate.create("/file");
        const std::string path = delegate.onDisk("/file");
        if (::lsetxattr(path.c_str(), "user.probe", "", 0, 0) != 0)
            GTEST_SKIP() << "the temporary folder's filesystem takes no extended attributes";
        ASSERT_EQ(::lremovexattr(path.c_str(), "user.probe"), 0);
    }
    NBDone set(const std::string &name, std::string_view value, int options = 0)
    {
        return delegate->setExtendedAttribute(name, "/file", bytesOf(value), options);
    }
    // The names that a user may set; a system may add some of its own.
    std::vector<std::string> userNames()
    {
        const auto names = delegate->extendedAttributesOfItemAtPath("/file");
        EXPECT_EQ(names.code(), 0);
        std::vector<std::string> found;
        for (const std::string &name : names ? *names : std::vector<std::string>())
            if (name.empty() || name.starts_with("user."))
                found.push_back(name);
        return found;
    }

    TestDelegate delegate;
};

TEST_F(ExtendedAttributesTest, AValueIsStoredInTheClearOnTheOnDiskItem)
{
    ASSERT_TRUE(set("user.colour", "blue"));
    std::array<char, 16> value{};
    ASSERT_EQ(
        ::lgetxattr(delegate.onDisk("/file").c_str(), "user.colour", value.data(), value.size()),
        4);
    EXPECT_STREQ(value.data(), "blue");
    const NBErrnoOr<Bytes> read = delegate->valueOfExtendedAttribute("user.colour", "/file");
    ASSERT_TRUE(read);
    EXPECT_EQ(textOf(*read), "blue");
}

TEST_F(ExtendedAttributesTest, AnEmptyValueIsAValue)
{
    ASSERT_TRUE(set("user.empty", ""));
    const NBErrnoOr<Bytes> read = delegate->valueOfExtendedAttribute("user.empty", "/file");
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->empty());
    EXPECT_THAT(userNames(), ElementsAre("user.empty"));
}

TEST_F(ExtendedAttributesTest, AMissingValueGivesItsError)
{
    EXPECT_EQ(delegate->valueOfExtendedAttribute("user.none", "/file").code(), ENODATA);
    EXPECT_EQ(delegate->removeExtendedAttribute("user.none", "/file").code(), ENODATA);
    EXPECT_EQ(delegate->extendedAttributesOfItemAtPath("/missing").code(), ENOENT);
}

TEST_F(ExtendedAttributesTest, AnItemWithoutAttributesListsNone)
{
    EXPECT_THAT(userNames(), testing::IsEmpty());
}

TEST_F(ExtendedAttributesTest, NamesAreListed)
{
    ASSERT_TRUE(set("user.a", "1"));
    ASSERT_TRUE(set("user.bb", "2"));
    EXPECT_THAT(userNames(), testing::UnorderedElementsAre("user.a", "user.bb"));
}

TEST_F(ExtendedAttributesTest, AnAttributeIsRemoved)
{
    ASSERT_TRUE(set("user.a", "1"));
    ASSERT_TRUE(delegate->removeExtendedAttribute("user.a", "/file"));
    EXPECT_THAT(userNames(), testing::IsEmpty());
}

TEST_F(ExtendedAttributesTest, TheOptionsOfSettingPassThrough)
{
    EXPECT_EQ(set("user.a", "1", XATTR_REPLACE).code(), ENODATA);
    ASSERT_TRUE(set("user.a", "1", XATTR_CREATE));
    EXPECT_EQ(set("user.a", "2", XATTR_CREATE).code(), EEXIST);
    ASSERT_TRUE(set("user.a", "3", XATTR_REPLACE));
    EXPECT_EQ(textOf(*delegate->valueOfExtendedAttribute("user.a", "/file")), "3");
}

TEST_F(ExtendedAttributesTest, ALinksAttributesAreItsOwn)
{
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "file"));
    // Users may not give links attributes; what counts is that the call isn't made on the target.
    EXPECT_EQ(delegate->setExtendedAttribute("user.a", "/link", {}, 0).code(), EPERM);
    EXPECT_TRUE(delegate->extendedAttributesOfItemAtPath("/link"));
}

// Kept: behind a name that isn't ASCII the scan begins inside it. One name alone shows no harm.
TEST_F(ExtendedAttributesTest, ANameThatIsNotAsciiPutsTheNextOneOutOfStep)
{
    ASSERT_TRUE(set("user.ü", "1"));
    // One byte short: the zero byte at the name's end reads as an empty name.
    EXPECT_THAT(userNames(), ElementsAre("user.ü", ""));
    ASSERT_TRUE(delegate->removeExtendedAttribute("user.ü", "/file"));
    // Two bytes short: the last byte of the character is no text, then the same.
    ASSERT_TRUE(set("user.日", "1"));
    EXPECT_THAT(userNames(), ElementsAre("user.日", ""));
    ASSERT_TRUE(delegate->removeExtendedAttribute("user.日", "/file"));
    // Four bytes that count as two: the last letter reads as a name of its own.
    ASSERT_TRUE(set("user.😀abc", "1"));
    const auto names = delegate->extendedAttributesOfItemAtPath("/file");
    ASSERT_TRUE(names);
    EXPECT_THAT(*names, Contains("c"));
}

// A name of the original platform, which Linux has no namespace for.
TEST(QuarantineTest, ItsValueIsNeverReadable)
{
    const TestDelegate delegate;
    delegate.create("/file");
    EXPECT_EQ(delegate->valueOfExtendedAttribute("com.apple.quarantine", "/file").code(), ENOTSUP);
    EXPECT_EQ(delegate->valueOfExtendedAttribute("com.apple.quarantine", "/missing").code(),
              ENOTSUP);
    // Neither setting nor removing is refused by us: the store's own answer comes back.
    const std::string path = delegate.onDisk("/file");
    const int direct = ::lsetxattr(path.c_str(), "com.apple.quarantine", "", 0, 0) == 0 ? 0 : errno;
    EXPECT_EQ(delegate->setExtendedAttribute("com.apple.quarantine", "/file", {}, 0).code(),
              direct);
}

TEST(NoExtendedAttributesTest, AFilesystemWithoutThemGivesItsOwnError)
{
    const auto delegate = NBNimbrelFS::withRootPath("/proc/self", quickPreferences(4096, false));
    EXPECT_EQ(delegate->valueOfExtendedAttribute("user.a", "/status").code(), EOPNOTSUPP);
    EXPECT_EQ(delegate->removeExtendedAttribute("user.a", "/comm").code(), EOPNOTSUPP);
    EXPECT_EQ(delegate->setExtendedAttribute("user.a", "/comm", {}, 0).code(), EOPNOTSUPP);
}

} // namespace

} // namespace nimbrel::test
