// The cloud's client changes the encrypted folder while it is mounted: it brings files in, replaces
// them, removes them and leaves files of its own.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Programs.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class CloudTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        _here = std::make_unique<MountedFolder>();
        // Another machine with the same folder.
        _thereStore = _temp / "there";
        ASSERT_TRUE(worked(run({"cp", "-a", _here->encrypted(), _thereStore})));
        _there =
            std::make_unique<MountedFolder>(MountedFolderOptions{.existingFolder = _thereStore});
    }

    // The client makes this machine's folder equal to the other's: each file is written beside its
    // place first and then renamed over it.
    void synchronise() const
    {
        const RunResult result =
            run({"rsync", "-aH", "--checksum", "--delete-after", "--exclude=/.encfs6.xml",
                 _thereStore + "/", _here->encrypted() + "/"});
        ASSERT_TRUE(worked(result));
    }

    // The stored name of the only item on the disk.
    [[nodiscard]] std::string onlyStoredName() const
    {
        std::string only;
        for (const std::string &name : namesIn(_here->encrypted()))
            if (name.find('.') == std::string::npos)
                only = name;
        return only;
    }

    [[nodiscard]] std::set<std::string> namesHere() const
    {
        const std::vector<std::string> names = namesIn(_here->plain());
        return {names.begin(), names.end()};
    }

    // A second at most for what the kernel remembers; the rest is for slow machines.
    [[nodiscard]] bool comesToShow(const std::string &name, const std::string &text) const
    {
        return eventually([&] { return exists(*_here / name) && readFile(*_here / name) == text; });
    }

    TempFolder _temp;
    std::string _thereStore;
    std::unique_ptr<MountedFolder> _here;
    std::unique_ptr<MountedFolder> _there;
};

TEST_F(CloudTest, FilesThatComeInAreSeen)
{
    NIMBREL_NEED_PROGRAM("rsync");
    EXPECT_FALSE(exists(*_here / "file")); // and the kernel remembers that
    ASSERT_EQ(::mkdir((*_there / "folder").c_str(), 0755), 0);
    writeFile(*_there / "file", noise(10'000, 1));
    writeFile(*_there / "folder/inner", "inner");
    ASSERT_EQ(::symlink("file", (*_there / "link").c_str()), 0);
    synchronise();
    EXPECT_TRUE(comesToShow("file", noise(10'000, 1)));
    EXPECT_TRUE(comesToShow("folder/inner", "inner"));
    EXPECT_TRUE(eventually([&] {
        return namesHere() == std::set<std::string>{"file", "folder", "link"};
    }));
    EXPECT_EQ(readFile(*_here / "link"), noise(10'000, 1));
}

// The kernel may keep what it read of a folder, but not over a change.
TEST_F(CloudTest, AFolderThatWasReadShowsWhatCameInAtItsNextOpening)
{
    NIMBREL_NEED_PROGRAM("rsync");
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(namesHere().size(), static_cast<std::size_t>(i));
        EXPECT_EQ(namesHere().size(), static_cast<std::size_t>(i));
        writeFile(*_there / ("file-" + std::to_string(i)), "text");
        synchronise();
        EXPECT_EQ(namesHere().count("file-" + std::to_string(i)), 1U) << i;
    }
}

TEST_F(CloudTest, ACachedFileThatIsReplacedIsSeenSoon)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "file", noise(50'000, 1));
    synchronise();
    ASSERT_TRUE(comesToShow("file", noise(50'000, 1)));
    for (const std::size_t size : {50'000U, 70'000U, 100U, 0U, 50'000U}) {
        (void)readFile(*_here / "file"); // now in the kernel's cache
        const std::string text = noise(size, size + 2);
        writeFile(*_there / "file", text);
        synchronise();
        EXPECT_TRUE(comesToShow("file", text)) << size;
    }
}

TEST_F(CloudTest, ACachedFileThatIsReplacedIsReadAnewAtTheNextOpen)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "file", noise(50'000, 1));
    synchronise();
    ASSERT_TRUE(comesToShow("file", noise(50'000, 1)));
    for (const std::uint64_t round : {2U, 3U, 4U, 5U}) {
        EXPECT_EQ(readFile(*_here / "file").size(), 50'000U); // now in the kernel's cache
        writeFile(*_there / "file", noise(50'000, round));
        synchronise();
        EXPECT_TRUE(readFile(*_here / "file") == noise(50'000, round)) << round;
    }
}

TEST_F(CloudTest, AReplacedFileOfAnotherSizeIsWholeAtTheNextOpen)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "file", noise(50'000, 1));
    synchronise();
    ASSERT_TRUE(comesToShow("file", noise(50'000, 1)));
    for (const std::size_t size : {70'000U, 100U, 4096U, 90'000U, 0U, 5U}) {
        writeFile(*_there / "file", noise(size, size));
        synchronise();
        EXPECT_TRUE(readFile(*_here / "file") == noise(size, size)) << size;
    }
}

TEST_F(CloudTest, AFileChangedInPlaceIsReadAnew)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "file", noise(50'000, 1));
    synchronise();
    ASSERT_TRUE(comesToShow("file", noise(50'000, 1)));
    OpenFile(*_there / "file", O_WRONLY).writeAt("changed", 20'000);
    ASSERT_TRUE(worked(run(
        {"rsync", "-aH", "--inplace", "--checksum", _thereStore + "/", _here->encrypted() + "/"})));
    EXPECT_TRUE(comesToShow("file", noise(50'000, 1).replace(20'000, 7, "changed")));
}

TEST_F(CloudTest, AnOpenFileThatIsReplacedStaysWholeForItsReader)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "file", noise(50'000, 1));
    synchronise();
    ASSERT_TRUE(comesToShow("file", noise(50'000, 1)));
    const OpenFile open(*_here / "file");
    EXPECT_TRUE(open.readAt(1000, 0) == noise(50'000, 1).substr(0, 1000));
    writeFile(*_there / "file", noise(90'000, 2));
    synchronise();
    EXPECT_TRUE(comesToShow("file", noise(90'000, 2)));
    EXPECT_TRUE(open.readAt(50'000, 0) == noise(50'000, 1));
}

TEST_F(CloudTest, FilesThatAreRemovedDisappear)
{
    NIMBREL_NEED_PROGRAM("rsync");
    ASSERT_EQ(::mkdir((*_there / "folder").c_str(), 0755), 0);
    writeFile(*_there / "folder/file", "text");
    writeFile(*_there / "other", "other");
    synchronise();
    ASSERT_TRUE(comesToShow("folder/file", "text"));
    std::filesystem::remove_all(*_there / "folder");
    synchronise();
    EXPECT_TRUE(eventually([&] { return !exists(*_here / "folder"); }));
    EXPECT_TRUE(eventually([&] { return namesHere() == std::set<std::string>{"other"}; }));
    EXPECT_EQ(errnoOf([&] { return ::access((*_here / "folder/file").c_str(), F_OK); }), ENOENT);
}

TEST_F(CloudTest, AFileTurnedFolderIsAFolder)
{
    NIMBREL_NEED_PROGRAM("rsync");
    writeFile(*_there / "item", "file");
    synchronise();
    ASSERT_TRUE(comesToShow("item", "file"));
    ASSERT_EQ(::unlink((*_there / "item").c_str()), 0);
    ASSERT_EQ(::mkdir((*_there / "item").c_str(), 0755), 0);
    writeFile(*_there / "item/inner", "inner");
    synchronise();
    EXPECT_TRUE(eventually([&] {
        struct stat status = {};
        return ::lstat((*_here / "item").c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    }));
    EXPECT_TRUE(comesToShow("item/inner", "inner"));
}

TEST_F(CloudTest, TwoDisksOfOneFolderSeeEachOther)
{
    const MountedFolder second({.existingFolder = _here->encrypted()});
    writeFile(*_here / "file", noise(30'000, 1));
    EXPECT_TRUE(eventually([&] { return exists(second / "file"); }));
    EXPECT_TRUE(readFile(second / "file") == noise(30'000, 1));
    OpenFile(second / "file", O_WRONLY | O_APPEND).write("more");
    EXPECT_TRUE(comesToShow("file", noise(30'000, 1) + "more"));
    ASSERT_EQ(::rename((second / "file").c_str(), (second / "renamed").c_str()), 0);
    EXPECT_TRUE(comesToShow("renamed", noise(30'000, 1) + "more"));
    EXPECT_TRUE(eventually([&] { return !exists(*_here / "file"); }));
}

TEST_F(CloudTest, ItsOwnFilesStayOutOfSight)
{
    writeFile(*_here / "file", "text");
    for (const char *name : {"desktop.ini", ".DS_Store", ".sync", "Icon\r", "~$lock.tmp",
                             "not ours.txt", ".encfs6.xml.bak"})
        writeFile(_here->encrypted() + "/" + name, "of the client");
    EXPECT_EQ(namesHere(), std::set<std::string>{"file"});
    EXPECT_FALSE(exists(*_here / "desktop.ini"));
    EXPECT_FALSE(exists(*_here / ".DS_Store"));
    _here->remount();
    EXPECT_EQ(namesHere(), std::set<std::string>{"file"});
}

TEST_F(CloudTest, AFolderWithItsFilesIsNotRemovedOverThem)
{
    ASSERT_EQ(::mkdir((*_here / "folder").c_str(), 0755), 0);
    const std::string foreign = _here->encrypted() + "/" + onlyStoredName() + "/desktop.ini";
    writeFile(foreign, "of the client");
    EXPECT_EQ(namesIn(*_here / "folder"), std::vector<std::string>{});
    EXPECT_EQ(errnoOf([&] { return ::rmdir((*_here / "folder").c_str()); }), ENOTEMPTY);
    EXPECT_EQ(readFile(foreign), "of the client");
}

TEST_F(CloudTest, ConflictCopiesDisturbNothing)
{
    writeFile(*_here / "file", "mine");
    const std::string stored = _here->encrypted() + "/" + onlyStoredName();
    for (const char *tail :
         {" (conflicted copy 2026-01-01)", ".sync-conflict-20260101-120000-ABCDEF", " (1)", ".tmp"})
        std::filesystem::copy_file(stored, stored + tail);
    EXPECT_EQ(namesHere(), std::set<std::string>{"file"});
    EXPECT_EQ(readFile(*_here / "file"), "mine");
    _here->remount();
    EXPECT_EQ(namesHere(), std::set<std::string>{"file"});
    writeFile(*_here / "file", "changed");
    EXPECT_EQ(readFile(*_here / "file"), "changed");
    EXPECT_TRUE(exists(stored + " (1)")); // and none of them is lost
}

TEST_F(CloudTest, AHalfArrivedFileReadsWithoutAnError)
{
    writeFile(*_here / "file", noise(20'000, 1));
    const std::string stored = _here->encrypted() + "/" + onlyStoredName();
    ASSERT_EQ(::truncate(stored.c_str(), 4096 * 2 + 100), 0);
    std::string seen;
    EXPECT_TRUE(eventually([&] {
        seen = readFile(*_here / "file");
        return seen.size() == 4096 * 2 + 100;
    }));
    EXPECT_TRUE(seen.substr(0, 4096 * 2) == noise(20'000, 1).substr(0, 4096 * 2));
}

} // namespace
} // namespace nimbrel::test
