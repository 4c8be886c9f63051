#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

TEST(LinksTest, AHardLinkIsTheSameItem)
{
    const TestDelegate delegate;
    delegate.create("/a", "content");
    ASSERT_TRUE(delegate->linkItemAtPath("/a", "/b"));
    EXPECT_EQ(delegate->attributesOfItemAtPath("/a")->st_ino,
              delegate->attributesOfItemAtPath("/b")->st_ino);
    EXPECT_EQ(delegate->attributesOfItemAtPath("/b")->st_nlink, 2U);
    EXPECT_EQ(delegate.contentAt("/b"), "content");
    EXPECT_EQ(delegate->linkItemAtPath("/a", "/b").code(), EEXIST);
}

// Kept: plain names or not, the whole target is one token on disk.
TEST(LinksTest, ATargetIsOneTokenOnDiskInBothNameModes)
{
    for (const bool encrypted : {false, true}) {
        const TestDelegate delegate(4096, encrypted);
        for (const std::string target : {"a", "../x/y.txt", "/etc/hostname", "ü/✓", "a//b/"}) {
            ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", target));
            const std::string stored = std::filesystem::read_symlink(delegate.onDisk("/link"));
            EXPECT_EQ(stored, delegate->cryptor().encodeString(target));
            EXPECT_EQ(stored.find('/'), std::string::npos);
            const NBErrnoOr<std::string> read = delegate->destinationOfSymbolicLinkAtPath("/link");
            ASSERT_TRUE(read);
            EXPECT_EQ(*read, target);
            ASSERT_TRUE(delegate->removeItemAtPath("/link"));
        }
    }
}

// Kept: the link's own size, not that of the plain target; the binding tells the latter.
TEST(LinksTest, ALinkReportsTheSizeOfItsStoredTarget)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "abc"));
    EXPECT_EQ(delegate->attributesOfItemAtPath("/link")->st_size, 7);
}

TEST(LinksTest, AForeignLinkFailsAndNothingTellsWhy)
{
    const TestDelegate delegate;
    ASSERT_EQ(::symlink("../somewhere", delegate.onDisk("/link").c_str()), 0);
    const NBErrnoOr<std::string> read = delegate->destinationOfSymbolicLinkAtPath("/link");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().code, 0);
}

TEST(LinksTest, WhatIsNoLinkGivesItsError)
{
    const TestDelegate delegate;
    delegate.create("/file");
    EXPECT_EQ(delegate->destinationOfSymbolicLinkAtPath("/file").code(), EINVAL);
    EXPECT_EQ(delegate->destinationOfSymbolicLinkAtPath("/missing").code(), ENOENT);
}

TEST(LinksTest, ALinkIsMadeOnceAndOnlyInAFolder)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "a"));
    EXPECT_EQ(delegate->createSymbolicLinkAtPath("/link", "b").code(), EEXIST);
    EXPECT_EQ(delegate->createSymbolicLinkAtPath("/no/link", "b").code(), ENOENT);
    EXPECT_EQ(delegate->createSymbolicLinkAtPath("/long", std::string(4000, 'x')).code(),
              ENAMETOOLONG);
}

TEST(LinksTest, TheLongestTargetThatTheStoreTakesReadsBack)
{
    const TestDelegate delegate;
    const std::string target(3069, 'x'); // 4095 characters on disk
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", target));
    const NBErrnoOr<std::string> read = delegate->destinationOfSymbolicLinkAtPath("/link");
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, target);
}

TEST(LinksTest, AttributesAreTheLinksOwn)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "nowhere"));
    EXPECT_TRUE(S_ISLNK(delegate->attributesOfItemAtPath("/link")->st_mode));
    ASSERT_TRUE(delegate->setAttributes(
        {.owner = ::geteuid(), .modificationDate = timespec{1234, 5}}, "/link", nullptr));
    EXPECT_EQ(delegate->attributesOfItemAtPath("/link")->st_mtim.tv_sec, 1234);
    EXPECT_EQ(delegate->setAttributes({.posixPermissions = 0600}, "/link", nullptr).code(),
              EOPNOTSUPP);
}

} // namespace

} // namespace nimbrel::test
