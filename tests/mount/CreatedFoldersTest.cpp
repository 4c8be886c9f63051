#include "mount/MountedFolder.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <tuple>
#include <unistd.h>

namespace nimbrel::test {
namespace {

// Sizes around a block's ends, where the form of the last block changes.
std::vector<std::size_t> sizesAround(std::size_t block)
{
    return {0, 1, 15, 16, 17, block - 1, block, block + 1, 2 * block, 2 * block + 3};
}

class CreatedFoldersTest : public testing::TestWithParam<std::tuple<int, long>>
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }
};

TEST_P(CreatedFoldersTest, OpenAgainWithAllTheyHold)
{
    const auto [keySize, blockSize] = GetParam();
    const auto sizes = sizesAround(static_cast<std::size_t>(blockSize));
    MountedFolder disk({.keySize = keySize, .blockSize = blockSize});
    for (const std::size_t size : sizes)
        writeFile(disk / std::to_string(size), noise(size, size));
    ASSERT_EQ(::symlink("a target", (disk / "link").c_str()), 0);
    const Tree before = treeOf(disk.plain());
    disk.remount();
    EXPECT_EQ(differences(before, treeOf(disk.plain())), "");
    for (const std::size_t size : sizes)
        EXPECT_TRUE(readFile(disk / std::to_string(size)) == noise(size, size)) << size;
}

TEST_P(CreatedFoldersTest, HoldNoPlainText)
{
    NIMBREL_NEED_ENCRYPTED_DISK();
    const auto [keySize, blockSize] = GetParam();
    const std::string secret = "a sentence that nobody else may read";
    MountedFolder disk({.keySize = keySize, .blockSize = blockSize});
    std::string text;
    while (text.size() < static_cast<std::size_t>(blockSize) * 2 + 100)
        text += secret;
    writeFile(disk / secret, text);
    disk.remount();
    for (const std::string &name : namesIn(disk.encrypted())) {
        EXPECT_EQ(name.find("sentence"), std::string::npos) << name;
        EXPECT_EQ(readFile(disk.encrypted() + "/" + name).find("nobody"), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(All, CreatedFoldersTest,
                         testing::Combine(testing::Values(128, 192, 256),
                                          testing::Values(16L, 1024L, 4096L, 65536L, 1048576L)),
                         [](const auto &each) {
                             return "Key" + std::to_string(std::get<0>(each.param)) + "Block" +
                                    std::to_string(std::get<1>(each.param));
                         });

TEST(CreatedFolderTest, WithPlainNamesKeepsNamesAndHidesContents)
{
    NIMBREL_NEED_FUSE();
    NIMBREL_NEED_ENCRYPTED_DISK();
    MountedFolder disk({.plainNames = true});
    writeFile(disk / "a plain name.txt", std::string(5000, 'x'));
    disk.remount();
    EXPECT_EQ(readFile(disk / "a plain name.txt"), std::string(5000, 'x'));
    const std::string stored = readFile(disk.encrypted() + "/a plain name.txt");
    EXPECT_EQ(stored.size(), 5000U);
    EXPECT_EQ(stored.find("xxxx"), std::string::npos);
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{"a plain name.txt"});
}

TEST(CreatedFolderTest, IsEmptyAtFirst)
{
    NIMBREL_NEED_FUSE();
    const MountedFolder disk;
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{});
}

} // namespace
} // namespace nimbrel::test
