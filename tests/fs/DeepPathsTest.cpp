#include "fs/OnDiskPath.h"
#include "fs/TestDelegate.h"

#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// Folders one in the other until the plain path is about `length` bytes; gives the innermost.
std::string makeDeepFolder(const TestDelegate &delegate, std::size_t length)
{
    std::string path;
    while (path.size() < length) {
        path += "/" + std::string(180, 'f');
        EXPECT_EQ(delegate->createDirectoryAtPath(path, {}).code(), 0) << path.size();
        if (testing::Test::HasFailure())
            break;
    }
    return path;
}

class DeepPathsTest : public testing::TestWithParam<std::size_t>
{
protected:
    void SetUp() override
    {
        ASSERT_GT(delegate.onDisk(deep).size(), static_cast<std::size_t>(PATH_MAX));
    }

    TestDelegate delegate;
    std::string deep = makeDeepFolder(delegate, GetParam());
};

TEST_P(DeepPathsTest, FilesAreMadeWrittenReadAndRemoved)
{
    NBFileHandle file = delegate.create(deep + "/file", "content");
    EXPECT_EQ(delegate.contentAt(deep + "/file"), "content");
    EXPECT_TRUE(delegate->setAttributes({.size = 3}, deep + "/file", nullptr));
    EXPECT_EQ(delegate.content(file), "con");
    EXPECT_TRUE(delegate->setAttributes({.size = 0}, deep + "/file", nullptr));
    EXPECT_TRUE(delegate->removeItemAtPath(deep + "/file"));
    EXPECT_EQ(delegate->attributesOfItemAtPath(deep + "/file").code(), ENOENT);
}

TEST_P(DeepPathsTest, NamesAreListedMovedLinkedAndExchanged)
{
    delegate.create(deep + "/a", "of a");
    delegate.create(deep + "/b", "of b");
    EXPECT_TRUE(delegate->moveItemAtPath(deep + "/a", deep + "/c"));
    EXPECT_TRUE(delegate->moveItemAtPath(deep + "/c", "/c"));
    EXPECT_TRUE(delegate->moveItemAtPath("/c", deep + "/a"));
    EXPECT_TRUE(delegate->exchangeDataOfItemAtPath(deep + "/a", deep + "/b"));
    EXPECT_TRUE(delegate->linkItemAtPath(deep + "/a", deep + "/hard"));
    EXPECT_TRUE(delegate->createSymbolicLinkAtPath(deep + "/soft", "target"));
    EXPECT_EQ(*delegate->destinationOfSymbolicLinkAtPath(deep + "/soft"), "target");
    EXPECT_EQ(delegate.contentAt(deep + "/hard"), "of b");
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath(deep).names,
                testing::UnorderedElementsAre("a", "b", "hard", "soft"));
    EXPECT_EQ(delegate->removeDirectoryAtPath(deep).code(), ENOTEMPTY);
}

TEST_P(DeepPathsTest, AttributesAreSetAndRead)
{
    delegate.create(deep + "/file", "content");
    EXPECT_TRUE(delegate->setAttributes(
        {.posixPermissions = 0600, .owner = ::geteuid(), .modificationDate = timespec{77, 8}},
        deep + "/file", nullptr));
    const NBErrnoOr<struct stat> attributes = delegate->attributesOfItemAtPath(deep + "/file");
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->st_mtim.tv_sec, 77);
    EXPECT_EQ(attributes->st_mode & 0777U, 0600U);
    EXPECT_TRUE(delegate->attributesOfFileSystemForPath(deep));
    EXPECT_TRUE(delegate->extendedAttributesOfItemAtPath(deep + "/file"));
}

TEST_P(DeepPathsTest, WhatIsMissingOnTheWayIsTold)
{
    const std::string missing = "/no" + deep + "/file";
    EXPECT_EQ(delegate->openFileAtPath(missing, O_RDONLY).code(), ENOENT);
    EXPECT_EQ(delegate->attributesOfItemAtPath(missing).code(), ENOENT);
    EXPECT_EQ(delegate->contentsOfDirectoryAtPath(missing).error, ENOENT);
    EXPECT_EQ(delegate->removeItemAtPath(missing).code(), ENOENT);
    EXPECT_EQ(delegate->moveItemAtPath("/", missing).code(), ENOENT);
}

TEST_P(DeepPathsTest, ATreeIsRemoved)
{
    delegate.create(deep + "/file", "content");
    const std::string top = deep.substr(0, deep.find('/', 1));
    ASSERT_TRUE(delegate->removeItemAtPath(top));
    EXPECT_TRUE(std::filesystem::is_empty(delegate.root()));
}

// Too long on disk alone, and far too long.
INSTANTIATE_TEST_SUITE_P(Lengths, DeepPathsTest, testing::Values(3600, 12000));

TEST(OnDiskPathTest, AShortPathStaysAsItIs)
{
    const OnDiskPath path("/some/where");
    EXPECT_TRUE(path);
    EXPECT_STREQ(path.get(), "/some/where");
    const std::string longest = "/" + std::string(PATH_MAX - 2, 'x');
    EXPECT_EQ(OnDiskPath(longest).get(), longest);
}

TEST(OnDiskPathTest, ANameThatNoFilesystemTakesIsTooLong)
{
    const OnDiskPath path("/" + std::string(PATH_MAX, 'x'));
    EXPECT_FALSE(path);
    EXPECT_EQ(path.error().code, ENAMETOOLONG);
}

TEST(OnDiskPathTest, NoDescriptorStaysOpen)
{
    const TestDelegate delegate;
    const std::string deep = delegate.onDisk(makeDeepFolder(delegate, 12000));
    std::string through;
    {
        const OnDiskPath path(deep);
        ASSERT_TRUE(path);
        EXPECT_LT(std::string(path.get()).size(), static_cast<std::size_t>(PATH_MAX));
        through = path.get();
        EXPECT_EQ(::access(through.c_str(), F_OK), 0);
    }
    EXPECT_NE(::access(through.c_str(), F_OK), 0);
}

} // namespace

} // namespace nimbrel::test
