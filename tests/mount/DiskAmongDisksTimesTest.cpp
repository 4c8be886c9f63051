// Each timestamp is set, left alone or "now" by itself, to the nanosecond.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

namespace nimbrel::test {

namespace {

class DiskAmongDisksTimesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
        writeFile(path("file"), "text");
        must(::mkdir(path("folder").c_str(), 0755), "mkdir");
        must(::symlink("nowhere", path("link").c_str()), "symlink");
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

private:
    std::unique_ptr<MountedFolder> _disk;
};

constexpr timespec first{.tv_sec = 1'000'000'001, .tv_nsec = 123'456'789};
constexpr timespec second{.tv_sec = 1'222'333'444, .tv_nsec = 987'654'321};
constexpr timespec third{.tv_sec = 1'700'000'000, .tv_nsec = 1};
constexpr timespec leave{.tv_sec = 0, .tv_nsec = UTIME_OMIT};
constexpr timespec now{.tv_sec = 0, .tv_nsec = UTIME_NOW};

void setTimes(const std::string &path, timespec access, timespec modification)
{
    const timespec times[] = {access, modification};
    must(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), "utimensat " + path);
}

bool operator==(const timespec &one, const timespec &other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

bool isBefore(const timespec &one, const timespec &other)
{
    return one.tv_sec != other.tv_sec ? one.tv_sec < other.tv_sec : one.tv_nsec < other.tv_nsec;
}

// File systems use the clock that moves in ticks.
timespec clockNow()
{
    timespec time{};
    must(::clock_gettime(CLOCK_REALTIME_COARSE, &time), "clock_gettime");
    return time;
}

testing::AssertionResult isRecent(const timespec &time, const timespec &before)
{
    timespec after{};
    must(::clock_gettime(CLOCK_REALTIME, &after), "clock_gettime");
    if (!isBefore(time, before) && !isBefore(after, time))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << time.tv_sec << "." << time.tv_nsec;
}

TEST_F(DiskAmongDisksTimesTest, BothAreSetToTheNanosecond)
{
    for (const char *name : {"file", "folder", "link"})
        setTimes(path(name), first, second);
    for (int round = 0; round < 2; ++round) {
        for (const char *name : {"file", "folder", "link"}) {
            EXPECT_TRUE(statusOf(path(name)).st_atim == first) << name;
            EXPECT_TRUE(statusOf(path(name)).st_mtim == second) << name;
        }
        disk().remount();
    }
}

TEST_F(DiskAmongDisksTimesTest, EachIsSetByItself)
{
    for (const char *name : {"file", "folder", "link"}) {
        setTimes(path(name), first, second);
        setTimes(path(name), third, leave);
        EXPECT_TRUE(statusOf(path(name)).st_atim == third) << name;
        EXPECT_TRUE(statusOf(path(name)).st_mtim == second) << name;
        setTimes(path(name), leave, first);
        EXPECT_TRUE(statusOf(path(name)).st_atim == third) << name;
        EXPECT_TRUE(statusOf(path(name)).st_mtim == first) << name;
        setTimes(path(name), leave, leave);
        EXPECT_TRUE(statusOf(path(name)).st_atim == third) << name;
        EXPECT_TRUE(statusOf(path(name)).st_mtim == first) << name;
    }
}

TEST_F(DiskAmongDisksTimesTest, EachIsNowByItself)
{
    for (const char *name : {"file", "folder", "link"}) {
        const timespec before = clockNow();
        setTimes(path(name), first, second);
        setTimes(path(name), now, leave);
        EXPECT_TRUE(isRecent(statusOf(path(name)).st_atim, before)) << name;
        EXPECT_TRUE(statusOf(path(name)).st_mtim == second) << name;
        setTimes(path(name), first, now);
        EXPECT_TRUE(statusOf(path(name)).st_atim == first) << name;
        EXPECT_TRUE(isRecent(statusOf(path(name)).st_mtim, before)) << name;
        setTimes(path(name), now, now);
        EXPECT_TRUE(isRecent(statusOf(path(name)).st_atim, before)) << name;
    }
}

TEST_F(DiskAmongDisksTimesTest, AnOpenFileTakesThemToo)
{
    const OpenFile file(path("file"), O_RDWR);
    const timespec times[] = {first, second};
    must(::futimens(file.id(), times), "futimens");
    const timespec accessOnly[] = {third, leave};
    must(::futimens(file.id(), accessOnly), "futimens");
    EXPECT_TRUE(file.status().st_atim == third);
    EXPECT_TRUE(file.status().st_mtim == second);
}

// As cp, tar and rsync do: write, set the time, close. What is still to be written must not
// change it afterwards.
TEST_F(DiskAmongDisksTimesTest, ATimeSetBeforeClosingStays)
{
    {
        OpenFile file(path("copy"), O_CREAT | O_RDWR);
        file.writeAt(noise(100'000, 1), 0);
        const timespec times[] = {first, second};
        must(::futimens(file.id(), times), "futimens");
        file.close();
    }
    EXPECT_TRUE(statusOf(path("copy")).st_mtim == second);
    disk().remount();
    EXPECT_TRUE(statusOf(path("copy")).st_mtim == second);
}

TEST_F(DiskAmongDisksTimesTest, DatesFarAwayAreKept)
{
    for (const time_t seconds : {time_t{-1}, time_t{-1'000'000'000}, time_t{0},
                                 time_t{2'147'483'648}, time_t{4'000'000'000}}) {
        const timespec time{.tv_sec = seconds, .tv_nsec = 5};
        const timespec times[] = {time, time};
        must(::utimensat(AT_FDCWD, disk().encrypted().c_str(), times, 0), "utimensat");
        if (!(statusOf(disk().encrypted()).st_mtim == time))
            continue; // the store itself can't keep it
        setTimes(path("file"), time, time);
        disk().remount();
        EXPECT_TRUE(statusOf(path("file")).st_mtim == time) << seconds;
        EXPECT_TRUE(statusOf(path("file")).st_atim == time) << seconds;
    }
}

TEST_F(DiskAmongDisksTimesTest, WritingMovesThem)
{
    const std::vector<std::function<void()>> changes = {
        [&] { OpenFile(path("file"), O_WRONLY).writeAt("new", 0); },
        [&] { must(::truncate(path("file").c_str(), 2), "truncate"); },
        [&] { must(::truncate(path("file").c_str(), 5000), "truncate"); },
        [&] { OpenFile(path("file"), O_WRONLY | O_TRUNC).close(); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const timespec before = clockNow();
        setTimes(path("file"), first, second);
        changes[i]();
        EXPECT_TRUE(isRecent(statusOf(path("file")).st_mtim, before)) << i;
        EXPECT_TRUE(isRecent(statusOf(path("file")).st_ctim, before)) << i;
    }
}

TEST_F(DiskAmongDisksTimesTest, ReadingAndRenamingLeaveTheModificationAlone)
{
    setTimes(path("file"), first, second);
    EXPECT_EQ(readFile(path("file")), "text");
    must(::chmod(path("file").c_str(), 0600), "chmod");
    must(::rename(path("file").c_str(), path("folder/file").c_str()), "rename");
    must(::link(path("folder/file").c_str(), path("file").c_str()), "link");
    EXPECT_TRUE(statusOf(path("file")).st_mtim == second);
    disk().remount();
    EXPECT_TRUE(statusOf(path("file")).st_mtim == second);
}

TEST_F(DiskAmongDisksTimesTest, AChangeInAFolderMovesItsTime)
{
    const std::string inner = path("folder/inner");
    const std::vector<std::function<void()>> changes = {
        [&] { writeFile(inner, "text"); },
        [&] { must(::rename(inner.c_str(), path("outside").c_str()), "rename"); },
        [&] { must(::link(path("outside").c_str(), inner.c_str()), "link"); },
        [&] { must(::unlink(inner.c_str()), "unlink"); },
        [&] { must(::mkdir(inner.c_str(), 0755), "mkdir"); },
        [&] { must(::rmdir(inner.c_str()), "rmdir"); },
        [&] { must(::symlink("x", inner.c_str()), "symlink"); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const timespec before = clockNow();
        setTimes(path("folder"), first, second);
        changes[i]();
        EXPECT_TRUE(isRecent(statusOf(path("folder")).st_mtim, before)) << i;
    }
}

} // namespace

} // namespace nimbrel::test
