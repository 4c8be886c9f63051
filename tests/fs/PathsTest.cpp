#include "fs/TestDelegate.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

std::string storedName(const TestDelegate &delegate, std::string_view name)
{
    return delegate->cryptor().encodeString(name).value();
}

TEST(PathsTest, TheRootIsTheFolderItselfInBothNameModes)
{
    for (const bool encrypted : {false, true}) {
        const TestDelegate delegate(4096, encrypted);
        EXPECT_EQ(delegate.onDisk("/"), delegate.root());
        EXPECT_EQ(delegate.onDisk("/"), delegate.root()); // now from the cache
    }
}

TEST(PathsTest, PlainNamesStandBehindTheRoot)
{
    const TestDelegate delegate(4096, false);
    EXPECT_EQ(delegate.onDisk("/a b/ü.txt"), delegate.root() + "/a b/ü.txt");
    EXPECT_EQ(delegate.onDisk("/a b/ü.txt"), delegate.root() + "/a b/ü.txt");
}

TEST(PathsTest, EachNameIsEncodedByItself)
{
    const TestDelegate delegate;
    const std::string a = storedName(delegate, "a");
    const std::string b = storedName(delegate, "b");
    EXPECT_EQ(delegate->_encodePath("/a/b/a"), "/" + a + "/" + b + "/" + a);
    EXPECT_EQ(delegate.onDisk("/a/b"), delegate.root() + "/" + a + "/" + b);
    EXPECT_EQ(delegate->_encodePath("/"), "/");
}

TEST(PathsTest, SlashesThatSeparateNothingFallAway)
{
    for (const bool encrypted : {false, true}) {
        const TestDelegate delegate(4096, encrypted);
        EXPECT_EQ(delegate.onDisk("/a/"), delegate.onDisk("/a"));
        EXPECT_EQ(delegate.onDisk("a"), delegate.onDisk("/a"));
        EXPECT_EQ(delegate.onDisk(""), delegate.root());
    }
    const TestDelegate delegate;
    EXPECT_EQ(delegate->_encodePath("//a///b//"), delegate->_encodePath("/a/b"));
}

TEST(PathsTest, ARelativePathStaysRelative)
{
    const TestDelegate delegate;
    EXPECT_EQ(delegate->_encodePath("a/b"), delegate->_encodePath("/a/b").substr(1));
    EXPECT_EQ(delegate->_encodePath(""), "");
}

TEST(PathsTest, TheRootFolderOfTheMachineMayBeTheRoot)
{
    const auto delegate = NBNimbrelFS::withRootPath("/", quickPreferences(4096, false));
    EXPECT_EQ(delegate->_securePathWithPath("/"), "/");
    EXPECT_EQ(delegate->_securePathWithPath("/etc"), "/etc");
    const auto slashed = NBNimbrelFS::withRootPath("/store/", quickPreferences(4096, false));
    EXPECT_EQ(slashed->_securePathWithPath("/a"), "/store/a");
}

TEST(PathsTest, AStoredNameDecodes)
{
    const TestDelegate delegate;
    EXPECT_EQ(delegate->_decodeFilename(storedName(delegate, "Übersicht")), "Übersicht");
}

TEST(PathsTest, AForeignNameComesBackUnchanged)
{
    const TestDelegate delegate;
    for (const std::string name : {"/", "", "x", "notes.txt", ".encfs6.xml"})
        EXPECT_EQ(delegate->_decodeFilename(name), name);
}

TEST(PathsTest, PlainNamesAreNotDecoded)
{
    const TestDelegate delegate(4096, false);
    const std::string stored = storedName(delegate, "a");
    EXPECT_EQ(delegate->_decodeFilename(stored), stored);
    EXPECT_EQ(delegate->_encodePath("/a"), "/a");
}

TEST(PathsTest, ARenameLeavesTheOldPathsTranslationRight)
{
    const TestDelegate delegate;
    const std::string before = delegate.onDisk("/a");
    delegate.create("/a", "content");
    ASSERT_TRUE(delegate->moveItemAtPath("/a", "/b"));
    EXPECT_EQ(delegate.onDisk("/a"), before);
    EXPECT_EQ(delegate->attributesOfItemAtPath("/a").code(), ENOENT);
    delegate.create("/a", "another");
    EXPECT_EQ(delegate.contentAt("/a"), "another");
    EXPECT_EQ(delegate.contentAt("/b"), "content");
}

TEST(PathsTest, AChangeOfTheNameModeCountsAtOnce)
{
    const TestDelegate delegate(4096, false);
    EXPECT_EQ(delegate.onDisk("/a"), delegate.root() + "/a");
    delegate->setAreFilenamesEncrypted(true);
    EXPECT_EQ(delegate.onDisk("/a"), delegate.root() + "/" + storedName(delegate, "a"));
}

} // namespace

} // namespace nimbrel::test
