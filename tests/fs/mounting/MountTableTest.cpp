#include "fs/MountTable.h"

#include "OwnMounts.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace nimbrel::test {
namespace {

// The usual begin of a table; tests add their own lines.
std::string withRoot(const std::string &lines)
{
    return "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard\n" + lines;
}

TEST(NBMountTableTest, ReadsEveryFieldOfALine)
{
    const auto table = parseMountTable("36 35 98:7 /mnt1 /mnt2 rw,noatime master:1 shared:7 - "
                                       "fuse.nimbrel /home/ann/Safe.nmc rw,errors=continue\n");
    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(table[0].id, 36U);
    EXPECT_EQ(table[0].parent, 35U);
    EXPECT_EQ(table[0].device, makedev(98, 7));
    EXPECT_EQ(table[0].root, "/mnt1");
    EXPECT_EQ(table[0].point, "/mnt2");
    EXPECT_EQ(table[0].type, "fuse.nimbrel");
    EXPECT_EQ(table[0].source, "/home/ann/Safe.nmc");
}

TEST(NBMountTableTest, UndoesTheKernelsEscapes)
{
    const auto table = parseMountTable(
        "36 35 0:7 / /mnt/a\\040b\\011c\\012d\\134e\\043f rw - fuse.x x\\040y rw\n");
    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(table[0].point, "/mnt/a b\tc\nd\\e#f");
    EXPECT_EQ(table[0].source, "x y");
}

TEST(NBMountTableTest, AnEscapeIsUndoneOnce)
{
    const auto table = parseMountTable("36 35 0:7 / /a\\134040b\\9\\04 rw - t s rw\n");
    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(table[0].point, "/a\\040b\\9\\04");
}

TEST(NBMountTableTest, AnEmptySourceIsNoHole)
{
    const auto table = parseMountTable("36 35 0:7 / /a rw - tmpfs  rw\n");
    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(table[0].type, "tmpfs");
    EXPECT_EQ(table[0].source, "");
}

TEST(NBMountTableTest, LinesWithoutSenseAreLeftOut)
{
    EXPECT_TRUE(parseMountTable("").empty());
    EXPECT_TRUE(parseMountTable("\n\n").empty());
    EXPECT_TRUE(parseMountTable("36 35 0:7 / /a rw tmpfs x rw\n").empty());
    EXPECT_TRUE(parseMountTable("36 35 0:7 / /a rw - tmpfs\n").empty());
    EXPECT_TRUE(parseMountTable("x 35 0:7 / /a rw - tmpfs x rw\n").empty());
    EXPECT_TRUE(parseMountTable("36 35 07 / /a rw - tmpfs x rw\n").empty());
    EXPECT_TRUE(parseMountTable("36 35 0:7 / /a").empty());
}

TEST(NBMountTableTest, ALastLineWithoutItsEndCounts)
{
    EXPECT_EQ(parseMountTable("36 35 0:7 / /a rw - tmpfs x rw").size(), 1U);
}

TEST(NBMountTableTest, OnlyTheExactPathIsAMount)
{
    const auto table = parseMountTable(withRoot("30 27 0:9 / /mnt/a rw - fuse.nimbrel one rw\n"));
    EXPECT_TRUE(mountAt(table, "/mnt/a"));
    EXPECT_FALSE(mountAt(table, "/mnt"));
    EXPECT_FALSE(mountAt(table, "/mnt/ab"));
    EXPECT_FALSE(mountAt(table, "/mnt/a/b"));
    EXPECT_TRUE(mountAt(table, "/"));
}

TEST(NBMountTableTest, TheTopmostOfAStackIsFoundInAnyOrder)
{
    const std::string below = "30 27 0:9 / /mnt/a rw - fuse.nimbrel below rw\n";
    const std::string above = "31 30 0:10 / /mnt/a rw - fuse.nimbrel above rw\n";
    EXPECT_EQ(mountAt(parseMountTable(withRoot(below + above)), "/mnt/a")->source, "above");
    EXPECT_EQ(mountAt(parseMountTable(withRoot(above + below)), "/mnt/a")->source, "above");
}

TEST(NBMountTableTest, AMountThatAnotherCoversIsNotSeen)
{
    const auto table = parseMountTable(withRoot("30 27 0:9 / /mnt/a/b rw - tmpfs covered rw\n"
                                                "31 27 0:10 / /mnt/a rw - tmpfs cover rw\n"));
    EXPECT_FALSE(mountAt(table, "/mnt/a/b"));
    EXPECT_EQ(mountOf(table, "/mnt/a/b")->source, "cover");
}

TEST(NBMountTableTest, AMountOnTheCoverIsSeen)
{
    const auto table = parseMountTable(withRoot("30 27 0:9 / /mnt/a/b rw - tmpfs covered rw\n"
                                                "31 27 0:10 / /mnt/a rw - tmpfs cover rw\n"
                                                "32 31 0:11 / /mnt/a/b rw - tmpfs upper rw\n"));
    EXPECT_EQ(mountAt(table, "/mnt/a/b")->source, "upper");
}

TEST(NBMountTableTest, ARootOutsideOfTheTableIsNoObstacle)
{
    const auto table = parseMountTable("30 27 0:9 / /a rw - tmpfs one rw\n"
                                       "31 30 0:10 / /a/b rw - tmpfs two rw\n");
    EXPECT_EQ(mountAt(table, "/a/b")->source, "two");
    EXPECT_FALSE(mountOf(table, "/c"));
}

TEST(NBMountTableTest, ATableThatGoesInCirclesEnds)
{
    const auto table = parseMountTable("1 1 0:8 / / rw - tmpfs self rw\n"
                                       "2 3 0:9 / /a rw - tmpfs one rw\n"
                                       "3 2 0:9 / /a rw - tmpfs two rw\n");
    EXPECT_EQ(mountOf(table, "/a/b")->source, "self");
}

TEST(NBMountTableTest, KnowsFuseByItsType)
{
    for (const char *type : {"fuse", "fuseblk", "fuse.nimbrel", "fuseblk.ntfs"})
        EXPECT_TRUE(isFuse({.type = type})) << type;
    for (const char *type : {"fusectl", "ext4", "nfs", ""})
        EXPECT_FALSE(isFuse({.type = type})) << type;
}

TEST(NBMountTableTest, PathsAreComparedByComponents)
{
    EXPECT_TRUE(isAtOrBelow("/a/b", "/a/b"));
    EXPECT_TRUE(isAtOrBelow("/a/b/c", "/a/b"));
    EXPECT_TRUE(isAtOrBelow("/a", "/"));
    EXPECT_TRUE(isAtOrBelow("/", "/"));
    EXPECT_FALSE(isAtOrBelow("/a/bc", "/a/b"));
    EXPECT_FALSE(isAtOrBelow("/a", "/a/b"));
}

TEST(NBMountTableTest, TheKernelsOwnTableHasTheDeviceOfProc)
{
    struct stat proc = {};
    ASSERT_EQ(::stat("/proc", &proc), 0);
    const auto mount = mountAt("/proc");
    ASSERT_TRUE(mount);
    EXPECT_EQ(mount->type, "proc");
    EXPECT_EQ(mount->device, proc.st_dev);
}

TEST(NBMountTableTest, ARealMountWithAHardNameIsFound)
{
    NIMBREL_NEED_OWN_MOUNTS();
    const TempFolder temp;
    const std::string point = temp.makeFolder("a b\\040#\n\tc");
    EXPECT_FALSE(mountAt(point));
    mountMemory(point);
    const auto mount = mountAt(point);
    unmountAll(point);
    ASSERT_TRUE(mount);
    EXPECT_EQ(mount->source, "memory disk");
    EXPECT_FALSE(mountAt(point));
}

} // namespace
} // namespace nimbrel::test
