// Links on the desktop, the sidebar, the trash, other programs.
#include "fs/OrdinaryRights.h"
#include "volume/VolumeFixture.h"

#include <sys/stat.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class HousekeepingTest : public VolumeFixture
{
protected:
    [[nodiscard]] std::string onDesktop(const std::string &name) const
    {
        return desk.home() + "/Desktop/" + name;
    }
    [[nodiscard]] static bool isLinkTo(const std::string &path, const QString &target)
    {
        return fs::is_symlink(path) && fs::read_symlink(path) == coreText(target);
    }
    // Mounts, and waits for what is made in the background.
    void mountWhole(const VolumePtr &volume)
    {
        EXPECT_TRUE(desk.mount(volume));
        settle();
    }
    [[nodiscard]] std::string bookmarks() const
    {
        const std::string path = desk.home() + "/.config/gtk-3.0/bookmarks";
        return fs::exists(path) ? readFile(path) : "";
    }
    [[nodiscard]] std::vector<std::string> desktopNames() const
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(desk.home() + "/Desktop"))
            names.push_back(entry.path().filename());
        return names;
    }
};

TEST_F(HousekeepingTest, AMountLinksTheDiskOnTheDesktopAndTheUnmountTakesTheLinkAway)
{
    const VolumePtr volume = ready();
    mountWhole(volume);
    EXPECT_TRUE(isLinkTo(onDesktop("Safe"), volume->mountPoint()));
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
}

TEST_F(HousekeepingTest, TwoVolumesWithOneLabelGetTwoLinks)
{
    const VolumePtr first = ready();
    mountWhole(first);
    const QString firstPoint = first->mountPoint();
    desk.preferences.setValue(preferencesKey::volumePrefix, true);
    const VolumePtr second = ready("Other");
    second->setLabel(QStringLiteral("Safe"));
    mountWhole(second);
    EXPECT_TRUE(isLinkTo(onDesktop("Safe"), firstPoint));
    EXPECT_TRUE(isLinkTo(onDesktop("Safe (1)"), second->mountPoint()));
    EXPECT_NE(firstPoint, second->mountPoint());
    EXPECT_EQ(coreText(first->aliasPath()), onDesktop("Safe (2)"));
    ASSERT_TRUE(desk.unmount(first));
    EXPECT_THAT(desktopNames(), ::testing::ElementsAre("Safe (1)"));
    ASSERT_TRUE(desk.unmount(second));
    EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
}

TEST_F(HousekeepingTest, ADesktopThatShowsDisksItselfGetsNoLinkAndTheSidebarItsEntry)
{
    desk.workspace.showsDisks = true;
    const VolumePtr volume = ready();
    mountWhole(volume);
    EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
    EXPECT_EQ(bookmarks(), "file://" + coreText(volume->mountPoint()) + "\n");
}

TEST_F(HousekeepingTest, WithoutThePreferenceThereIsNoLink)
{
    desk.preferences.setValue(preferencesKey::createAliases, false);
    mountWhole(ready());
    EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
    EXPECT_NE(bookmarks(), "");
}

TEST_F(HousekeepingTest, ASecondMountAddsNoSecondSidebarEntryAndTheEntryOutlivesTheDisk)
{
    const VolumePtr volume = ready("My Safe");
    mountWhole(volume);
    const std::string once = bookmarks();
    EXPECT_EQ(once, "file://" + desk.home() + "/Volumes/My%20Safe\n");
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_EQ(bookmarks(), once);
    mountWhole(volume);
    EXPECT_EQ(bookmarks(), once);
}

TEST_F(HousekeepingTest, TheSidebarKeepsWhatThePersonPutThere)
{
    const std::string own = "file:///home/ann/Music Songs\nsftp://host/home\n";
    fs::create_directories(desk.home() + "/.config/gtk-3.0");
    writeFile(desk.home() + "/.config/gtk-3.0/bookmarks", own);
    const VolumePtr volume = ready();
    mountWhole(volume);
    EXPECT_EQ(bookmarks(), own + "file://" + coreText(volume->mountPoint()) + "\n");
}

TEST_F(HousekeepingTest, APathOnTheDesktopIsTakenByFilesAndFolders)
{
    const VolumePtr volume = archived();
    EXPECT_EQ(coreText(volume->aliasPath()), onDesktop("Safe"));
    writeFile(onDesktop("Safe"), "a file");
    EXPECT_EQ(coreText(volume->aliasPath()), onDesktop("Safe (1)"));
    fs::create_directories(onDesktop("Safe (1)"));
    EXPECT_EQ(coreText(volume->aliasPath()), onDesktop("Safe (2)"));
}

TEST_F(HousekeepingTest, ALabelWithPercentSignsIsNumberedAsItIs)
{
    const VolumePtr volume = archived("100%@ %ld");
    fs::create_directories(onDesktop("100%@ %ld"));
    EXPECT_EQ(coreText(volume->aliasPath()), onDesktop("100%@ %ld (1)"));
}

TEST_F(HousekeepingTest, ADanglingLinkDoesNotCountAsTakenAndIsLeftAsItIs)
{
    const VolumePtr volume = ready();
    fs::create_symlink("/nowhere/at/all", onDesktop("Safe"));
    EXPECT_EQ(coreText(volume->aliasPath()), onDesktop("Safe"));
    mountWhole(volume);
    EXPECT_EQ(fs::read_symlink(onDesktop("Safe")), "/nowhere/at/all");
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_EQ(fs::read_symlink(onDesktop("Safe")), "/nowhere/at/all");
}

TEST_F(HousekeepingTest, ALinkOfAnEarlierRunIsTakenOver)
{
    const VolumePtr volume = ready();
    fs::create_symlink(coreText(volume->mountPoint()), onDesktop("Safe"));
    mountWhole(volume);
    EXPECT_THAT(desktopNames(), ::testing::ElementsAre("Safe"));
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
}

TEST_F(HousekeepingTest, AFolderPutInTheLinksPlaceOutlivesTheUnmount)
{
    const VolumePtr volume = ready();
    mountWhole(volume);
    fs::remove(onDesktop("Safe"));
    fs::create_directories(onDesktop("Safe"));
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_TRUE(fs::is_directory(onDesktop("Safe")));
}

TEST_F(HousekeepingTest, ALinkThatThePersonPointedElsewhereOutlivesTheUnmount)
{
    const VolumePtr volume = ready();
    mountWhole(volume);
    fs::remove(onDesktop("Safe"));
    fs::create_symlink(desk.home(), onDesktop("Safe"));
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_EQ(fs::read_symlink(onDesktop("Safe")), desk.home());
}

TEST_F(HousekeepingTest, AnUnmountRightAfterTheMountLeavesNoLink)
{
    const VolumePtr volume = ready();
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(desk.mount(volume));
        ASSERT_TRUE(desk.unmount(volume));
        settle();
        EXPECT_THAT(desktopNames(), ::testing::IsEmpty());
    }
}

TEST_F(HousekeepingTest, AMountPutsAnEmptyTrashFileOnTheDiskThatTheNextOneFinds)
{
    const VolumePtr volume = ready();
    mountWhole(volume);
    EXPECT_TRUE(fs::is_regular_file(onDisk(volume, ".Trashes")));
    EXPECT_EQ(readFile(onDisk(volume, ".Trashes")), "");
    const auto stored = [&] {
        return std::distance(fs::directory_iterator(coreText(volume->path())),
                             fs::directory_iterator());
    };
    EXPECT_EQ(stored(), 3); // configuration, information, the trash file
    ASSERT_TRUE(desk.unmount(volume));
    mountWhole(volume);
    EXPECT_EQ(stored(), 3);
}

TEST_F(HousekeepingTest, ATrashEntryThatIsThereStaysAsItIs)
{
    const VolumePtr volume = mounted();
    fs::remove(onDisk(volume, ".Trashes"));
    fs::create_directories(onDisk(volume, ".Trashes/501"));
    writeFile(onDisk(volume, ".Trashes/501/old.txt"), "thrown away");
    volume->disableTrash();
    EXPECT_EQ(readFile(onDisk(volume, ".Trashes/501/old.txt")), "thrown away");
    fs::remove_all(onDisk(volume, ".Trashes"));
    writeFile(onDisk(volume, ".Trashes"), "with content");
    volume->disableTrash();
    EXPECT_EQ(readFile(onDisk(volume, ".Trashes")), "with content");
}

TEST_F(HousekeepingTest, ATaskGivesItsFirstTextFromEitherOutput)
{
    const auto output = [](const char *script) {
        return coreText(NBNimbrelVolume::runTask(QStringLiteral("/bin/sh"),
                                                 {QStringLiteral("-c"), QLatin1String(script)}));
    };
    EXPECT_EQ(output("echo '  to the output  '"), "to the output");
    EXPECT_EQ(output("echo 'to the error' >&2"), "to the error");
    EXPECT_EQ(output("sleep 0.2; echo late"), "late");
    EXPECT_EQ(output("echo first; sleep 2; echo second"), "first");
    EXPECT_EQ(output("exit 3"), "");
}

TEST_F(HousekeepingTest, ATaskIsWaitedForAlsoAfterItsFirstText)
{
    const QString file = desk.path("done");
    (void)NBNimbrelVolume::runTask(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("echo first; sleep 0.5; : > \"$0\""), file});
    EXPECT_TRUE(fs::exists(coreText(file)));
}

TEST_F(HousekeepingTest, ATaskNeedsNoArgumentsAndOneThatIsNotThereGivesNothing)
{
    EXPECT_EQ(coreText(NBNimbrelVolume::runTask(QStringLiteral("/bin/pwd"))),
              fs::current_path().string());
    EXPECT_EQ(coreText(NBNimbrelVolume::runTask(QStringLiteral("/no/such/program"))), "");
}

TEST_F(HousekeepingTest, AFilesPathIsThatOfTheRealFileOnDisk)
{
    const VolumePtr volume = mounted();
    fs::create_directories(onDisk(volume, "folder"));
    writeFile(onDisk(volume, "folder/a.txt"), "0123456789");
    struct stat plain = {};
    struct stat real = {};
    const QString path = volume->pathOfFileWithURL(QStringLiteral("/folder/a.txt"));
    EXPECT_TRUE(path.startsWith(volume->path() + u'/')) << coreText(path);
    ASSERT_EQ(::stat(onDisk(volume, "folder/a.txt").c_str(), &plain), 0);
    ASSERT_EQ(::stat(coreText(path).c_str(), &real), 0) << coreText(path);
    EXPECT_EQ(plain.st_ino, real.st_ino);
    EXPECT_EQ(real.st_size, 10);
    EXPECT_NE(readFile(coreText(path)), "0123456789");
    EXPECT_EQ(volume->pathOfFileWithURL(QStringLiteral("/")), volume->path());
}

TEST_F(HousekeepingTest, BeforeTheFirstMountNoPathIsKnown)
{
    EXPECT_TRUE(archived()->pathOfFileWithURL(QStringLiteral("/a.txt")).isNull());
}

TEST_F(HousekeepingTest, MendingDamagedFilesReturnsAtOnceAndHarmsNothing)
{
    const VolumePtr volume = mounted();
    writeFile(onDisk(volume, "a.txt"), "kept");
    volume->fixDamagedFiles();
    EXPECT_EQ(readFile(onDisk(volume, "a.txt")), "kept");
    ASSERT_TRUE(desk.unmount(volume));
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_EQ(readFile(onDisk(volume, "a.txt")), "kept");
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(HousekeepingTest, TheMountPointIsOnlyDeletedWhereItCannotBeListed)
{
    const VolumePtr volume = archived();
    const std::string path = coreText(volume->mountPoint());
    EXPECT_FALSE(volume->deleteMountPoint());
    EXPECT_EQ(headline(0), "The mount point does not exist.");
    fs::create_directories(desk.home() + "/Volumes");
    writeFile(path, "a file");
    EXPECT_FALSE(volume->deleteMountPoint());
    EXPECT_EQ(headline(1), "The mount point is not a directory.");
    fs::remove(path);
    fs::create_directories(path);
    EXPECT_FALSE(volume->deleteMountPoint());
    EXPECT_EQ(headline(2), "The mount point is not empty.");

    const OrdinaryRights ordinary;
    fs::permissions(path, fs::perms::none);
    fs::permissions(desk.home() + "/Volumes", fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(volume->deleteMountPoint());
    EXPECT_EQ(headline(3), "Could not delete the mount point.");
    fs::permissions(desk.home() + "/Volumes", fs::perms::owner_all);
    EXPECT_TRUE(volume->deleteMountPoint());
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(alertCount(), 4U);
}

} // namespace
} // namespace nimbrel::test
