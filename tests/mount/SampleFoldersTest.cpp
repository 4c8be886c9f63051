// Encrypted folders made long ago, with every way of naming, key size and block size in use.
#include "mount/MountedFolder.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Programs.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

constexpr const char *samplePassword = "nimbrel vectors";

class SampleFoldersTest : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        const std::string plain = _temp.makeFolder("expected");
        ASSERT_TRUE(worked(run({"tar", "-xpf", dataFile("plain.tar"), "-C", plain})));
        ASSERT_TRUE(worked(run({"tar", "-xpJf", dataFile("folders.tar.xz"), "--no-same-owner", "-C",
                                _temp.makeFolder("samples")})));
        _expected = treeOf(plain);
    }

    [[nodiscard]] MountedFolderOptions sample(const std::string &password = samplePassword) const
    {
        return {.existingFolder = _temp / ("samples/" + GetParam() + ".nmc"), .password = password};
    }

    [[nodiscard]] testing::AssertionResult changesPassword(const std::string &from,
                                                           const std::string &to) const
    {
        const Nimbrelctl nimbrelctl(_temp);
        return worked(nimbrelctl({"passwd", sample().existingFolder, "--password-file",
                                  nimbrelctl.passwordFile("from", from), "--new-password-file",
                                  nimbrelctl.passwordFile("to", to)}));
    }

    TempFolder _temp;
    Tree _expected;
};

TEST_P(SampleFoldersTest, ShowsThePlainTree)
{
    const MountedFolder disk(sample());
    EXPECT_EQ(differences(_expected, treeOf(disk.plain())), "");
}

TEST_P(SampleFoldersTest, KeepsWhatIsWrittenIntoIt)
{
    MountedFolder disk(sample());
    writeFile(disk / "new.bin", noise(150001, 1));
    writeFile(disk / "a.txt", noise(4999, 2)); // shorter by one than it was
    writeFile(disk / "empty folder/now it isn't.txt", noise(1, 3));
    ASSERT_EQ(::rename((disk / "block.bin").c_str(), (disk / "Reports/moved.bin").c_str()), 0);
    const Tree before = treeOf(disk.plain());
    disk.remount();
    EXPECT_EQ(differences(before, treeOf(disk.plain())), "");
    EXPECT_EQ(readFile(disk / "new.bin"), noise(150001, 1));
    EXPECT_EQ(readFile(disk / "a.txt"), noise(4999, 2));
    EXPECT_EQ(readFile(disk / "empty folder/now it isn't.txt"), noise(1, 3));
}

TEST_P(SampleFoldersTest, OpensAfterTwoPasswordChanges)
{
    ASSERT_TRUE(changesPassword(samplePassword, "a second one"));
    {
        const MountedFolder disk(sample("a second one"));
        EXPECT_EQ(differences(_expected, treeOf(disk.plain())), "");
    }
    ASSERT_TRUE(changesPassword("a second one", "a third one, \xc3\xbc"
                                                "ber alles"));
    const MountedFolder disk(sample("a third one, \xc3\xbc"
                                    "ber alles"));
    EXPECT_EQ(differences(_expected, treeOf(disk.plain())), "");
}

TEST_P(SampleFoldersTest, TheOldPasswordOpensNoMoreAfterAChange)
{
    ASSERT_TRUE(changesPassword(samplePassword, "a second one"));
    const Nimbrelctl nimbrelctl(_temp);
    const RunResult result =
        nimbrelctl({"mount", sample().existingFolder, _temp.makeFolder("nowhere"),
                    "--password-file", nimbrelctl.passwordFile("old", samplePassword)});
    EXPECT_EQ(result.status, 10) << result.error;
}

INSTANTIATE_TEST_SUITE_P(All, SampleFoldersTest,
                         testing::Values("null-256-4096", "stream-128-1024", "stream-192-65536",
                                         "stream-256-4096", "stream-256-4096-longsalt"),
                         [](const auto &each) {
                             std::string name = each.param;
                             std::erase(name, '-');
                             return name;
                         });

} // namespace
} // namespace nimbrel::test
