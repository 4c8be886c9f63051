#include "fs/MountOptions.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

using testing::ElementsAre;

TEST(NBMountOptionsTest, WithoutOptionsTheDiskIsNamedAndSafe)
{
    EXPECT_THAT(libfuseOptions({}, "/home/ann/Safe.nmc"),
                ElementsAre("fsname=/home/ann/Safe.nmc", "subtype=nimbrel", "nosuid", "nodev"));
}

TEST(NBMountOptionsTest, WhereOthersAreLetInTheKernelChecksThem)
{
    for (const char *word : {"allow_other", "allow_root"}) {
        EXPECT_TRUE(isShared({"ro", word}));
        EXPECT_THAT(libfuseOptions({"ro", word}, "/e"), testing::Contains("default_permissions"));
    }
    EXPECT_FALSE(isShared({"ro", "allow"}));
}

TEST(NBMountOptionsTest, AVolumesWholeListKeepsOnlyWhatLinuxHas)
{
    const std::vector<std::string> volume = {
        "volname=Safe",     "modules=iconv:volicon", "from_code=UTF-8", "to_code=UTF-8-MAC",
        "iconpath=/x.icns", "native_xattr",          "local",           "allow_other",
        "auto_cache",       "fssubtype=10"};
    EXPECT_THAT(libfuseOptions(volume, "/e"),
                ElementsAre("fsname=/e", "subtype=nimbrel", "nosuid", "nodev",
                            "default_permissions", "allow_other"));
}

TEST(NBMountOptionsTest, OtherOptionsPassInOrderAndOnceEach)
{
    EXPECT_THAT(libfuseOptions({"ro", "noatime", "ro", "nosuid", "max_read=4096"}, "/e"),
                ElementsAre("fsname=/e", "subtype=nimbrel", "nosuid", "nodev", "ro", "noatime",
                            "max_read=4096"));
}

TEST(NBMountOptionsTest, CommasAndBackslashesOfTheFolderAreEscaped)
{
    EXPECT_EQ(libfuseOptions({}, "/a,b\\c d")[0], "fsname=/a\\,b\\\\c d");
}

TEST(NBMountOptionsTest, ALabelWithACommaBringsNoOption)
{
    const auto options = libfuseOptions({"volname=Safe,allow_other"}, "/e");
    EXPECT_EQ(std::ranges::count(options, "allow_other"), 0);
    EXPECT_EQ(options.size(), 4U);
}

TEST(NBMountOptionsTest, NobodyElseNamesTheDisk)
{
    const auto options = libfuseOptions({"fsname=other", "subtype=other", "nonempty", ""}, "/e");
    EXPECT_EQ(options.size(), 4U);
    EXPECT_EQ(options[0], "fsname=/e");
}

TEST(NBMountOptionsTest, AWordThatOnlyBeginsLikeADroppedOnePasses)
{
    EXPECT_EQ(libfuseOptions({"locality"}, "/e").back(), "locality");
}

} // namespace
} // namespace nimbrel::test
