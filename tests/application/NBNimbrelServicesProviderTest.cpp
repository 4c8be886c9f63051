#include "app/NBNimbrelServicesProvider.h"

#include "app/ResolvedPaths.h"
#include "volume/VolumeFixture.h"

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class NBNimbrelServicesProviderTest : public VolumeFixture
{
protected:
    void TearDown() override
    {
        for (const VolumePtr &volume : volumes)
            if (volume->isMounted()) {
                EXPECT_TRUE(desk.unmount(volume));
            }
        settle();
    }
    VolumePtr mount(const std::string &label, bool encodeFilenames = true)
    {
        VolumePtr volume = desk.fromArchive(desk.makeVolume(label, rightPassword, encodeFilenames));
        volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
        EXPECT_TRUE(desk.mount(volume));
        volumes.append(volume);
        controller.addVolume(volume);
        return volume;
    }
    // A file on the disk, with the folders on the way; its path.
    static std::string makeFile(const VolumePtr &volume, const std::string &name)
    {
        const std::string path = onDisk(volume, name);
        fs::create_directories(fs::path(path).parent_path());
        writeFile(path, "plain text");
        return path;
    }
    void ask(const QString &url)
    {
        provider.showInFolderService(url);
        EXPECT_EQ(alertCount(), 0U); // it returns at once
        EXPECT_TRUE(desk.workspace.selected.isEmpty());
        QCoreApplication::processEvents();
        for (int step = 0; step < 3; ++step)
            settle();
    }
    void askForPath(const std::string &path) { ask(QUrl::fromLocalFile(qtText(path)).toString()); }
    // What was shown is the item behind `plain`.
    void expectShown(const std::string &plain)
    {
        EXPECT_EQ(alertCount(), 0U);
        ASSERT_EQ(desk.workspace.selected.size(), 1);
        struct stat one = {};
        struct stat other = {};
        ASSERT_EQ(::lstat(plain.c_str(), &one), 0) << plain;
        const std::string shown = coreText(desk.workspace.selected.first());
        ASSERT_EQ(::lstat(shown.c_str(), &other), 0) << shown;
        EXPECT_EQ(one.st_ino, other.st_ino) << shown;
        EXPECT_NE(one.st_dev, other.st_dev) << shown;
        EXPECT_EQ(coreText(desk.workspace.roots.first()), fs::path(shown).parent_path().string());
    }
    void expectNothingFound()
    {
        EXPECT_TRUE(desk.workspace.selected.isEmpty());
        ASSERT_EQ(alertCount(), 1U);
        EXPECT_EQ(headline(), "File not found!");
        EXPECT_EQ(detail(), "This file could not be located in any of the mounted Nimbrel disks.");
    }

    NBVolumesController &controller = desk.makeController();
    QList<VolumePtr> volumes;
    NBNimbrelServicesProvider provider{controller, desk.workspace};
};

TEST_F(NBNimbrelServicesProviderTest, AFileWithAnEncodedNameIsShown)
{
    const std::string file = makeFile(mount("Safe"), "folder/a file.txt");
    askForPath(file);
    expectShown(file);
    EXPECT_FALSE(desk.workspace.selected.value(0).contains(QStringLiteral("a file")));
}

TEST_F(NBNimbrelServicesProviderTest, AFileWithAPlainNameIsShown)
{
    const VolumePtr volume = mount("Safe", false);
    const std::string file = makeFile(volume, "folder/a.txt");
    askForPath(file);
    expectShown(file);
    EXPECT_EQ(desk.workspace.selected.value(0), volume->path() + QStringLiteral("/folder/a.txt"));
}

TEST_F(NBNimbrelServicesProviderTest, NamesWithSpecialCharactersAreDecodedOnce)
{
    const VolumePtr volume = mount("Safe");
    for (const char *name : {"100%25.txt", "a#b?c.txt", "\xC3\xBC b.txt", "%2F", "a+b;c"}) {
        desk.workspace.selected.clear();
        desk.workspace.roots.clear();
        const std::string file = makeFile(volume, name);
        ask(QString::fromLatin1(QUrl::fromLocalFile(qtText(file)).toEncoded()));
        expectShown(file);
    }
}

TEST_F(NBNimbrelServicesProviderTest, FoldersAndTheDiskItselfAreShownToo)
{
    const VolumePtr volume = mount("Safe");
    fs::create_directories(onDisk(volume, "folder"));
    askForPath(onDisk(volume, "folder/"));
    expectShown(onDisk(volume, "folder"));
    desk.workspace.selected.clear();
    askForPath(coreText(volume->mountPoint()));
    EXPECT_EQ(desk.workspace.selected, QStringList{volume->path()});
}

TEST_F(NBNimbrelServicesProviderTest, AFileOutsideOfEveryDiskGivesTheAlert)
{
    (void)mount("Safe");
    writeFile(desk.home() + "/outside.txt", "plain");
    askForPath(desk.home() + "/outside.txt");
    expectNothingFound();
}

TEST_F(NBNimbrelServicesProviderTest, AFileThatIsNotThereGivesTheAlert)
{
    askForPath(onDisk(mount("Safe"), "no/such/file"));
    expectNothingFound();
}

TEST_F(NBNimbrelServicesProviderTest, WithoutADiskThereIsTheAlert)
{
    askForPath(desk.home() + "/Volumes/Safe/a.txt");
    expectNothingFound();
}

TEST_F(NBNimbrelServicesProviderTest, ADiskThatIsOffTheListOrUnmountedDoesNotCount)
{
    const VolumePtr volume = mount("Safe");
    const std::string file = makeFile(volume, "a.txt");
    ASSERT_TRUE(desk.unmount(volume));
    askForPath(file);
    expectNothingFound();
}

TEST_F(NBNimbrelServicesProviderTest, WhatIsNoFilesURLGivesTheAlert)
{
    const std::string file = makeFile(mount("Safe"), "a.txt");
    const QString path = qtText(file);
    for (const QString &url :
         {QString(), path, QStringLiteral("http://127.0.0.1") + path,
          QStringLiteral("file://elsewhere") + path, QStringLiteral("file:a.txt"),
          QStringLiteral("file://") + path + QStringLiteral("?query"),
          QStringLiteral("file://") + path + QStringLiteral("#part"),
          QStringLiteral("file://") + path + QStringLiteral("%00")}) {
        ask(url);
        expectNothingFound();
        desk.alerts.shown.clear();
    }
    ask(QStringLiteral("file://localhost") + path);
    expectShown(file);
}

TEST_F(NBNimbrelServicesProviderTest, WithTwoMatchingMountPointsTheLastDecides)
{
    (void)mount("A");
    const std::string file = makeFile(mount("AB"), "f.txt");
    askForPath(file);
    expectShown(file); // "B/f.txt" isn't on A
}

TEST_F(NBNimbrelServicesProviderTest, AWrongLastMatchGivesTheAlertThoughTheFileWasShown)
{
    const VolumePtr second = mount("AB");
    (void)mount("A");
    askForPath(makeFile(second, "f.txt"));
    EXPECT_EQ(desk.workspace.selected.size(), 1);
    EXPECT_EQ(alertCount(), 1U);
}

TEST_F(NBNimbrelServicesProviderTest, TheFirstMatchDoesNotEndTheSearch)
{
    const VolumePtr first = mount("A");
    (void)makeFile(first, "B/f.txt");
    askForPath(makeFile(mount("AB"), "f.txt"));
    EXPECT_EQ(desk.workspace.selected.size(), 2);
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(NBNimbrelServicesProviderTest, AMountPointThatOccursTwiceIsRemovedTwice)
{
    const VolumePtr volume = mount("Safe");
    const std::string point = coreText(volume->mountPoint());
    const std::string outer = makeFile(volume, "f.txt");
    (void)makeFile(volume, point.substr(1) + "/f.txt");
    askForPath(point + point + "/f.txt");
    expectShown(outer);
}

TEST_F(NBNimbrelServicesProviderTest, TheLinkOnTheDesktopLeadsToTheDisk)
{
    const VolumePtr volume = mount("Safe");
    const std::string file = makeFile(volume, "folder/a.txt");
    ASSERT_TRUE(eventLoopUntil([&] { return fs::is_symlink(desk.home() + "/Desktop/Safe"); }));
    askForPath(desk.home() + "/Desktop/Safe/folder/../folder/a.txt");
    expectShown(file);
}

TEST_F(NBNimbrelServicesProviderTest, LinksOnTheDiskAreFollowedButTheItemItself)
{
    const VolumePtr volume = mount("Safe");
    const std::string file = makeFile(volume, "folder/a.txt");
    fs::create_symlink("folder", onDisk(volume, "way"));
    fs::create_symlink("folder/a.txt", onDisk(volume, "link"));
    askForPath(onDisk(volume, "way/a.txt"));
    expectShown(file);
    desk.workspace.selected.clear();
    desk.workspace.roots.clear();
    askForPath(onDisk(volume, "link"));
    expectShown(onDisk(volume, "link"));
}

TEST_F(NBNimbrelServicesProviderTest, ItMayEndBeforeItHasAnswered)
{
    const std::string file = makeFile(mount("Safe"), "a.txt");
    auto own = std::make_unique<NBNimbrelServicesProvider>(controller, desk.workspace);
    own->showInFolderService(QUrl::fromLocalFile(qtText(file)).toString());
    QCoreApplication::processEvents(); // the background has it
    own.reset();
    settle();
    EXPECT_TRUE(desk.workspace.selected.isEmpty());
    EXPECT_EQ(alertCount(), 0U);
}

TEST(ResolvedPathsTest, TheWayIsFollowedAndTheItemIsNot)
{
    const TempFolder folder;
    const std::string top = fs::canonical(folder.path()).string();
    (void)folder.makeFolder("real");
    fs::create_symlink("real", top + "/way");
    fs::create_symlink("item", top + "/real/item");
    const QString way = qtText(top + "/way");
    const ResolvedPaths paths = resolvePaths(way + QStringLiteral("/item"), {way});
    EXPECT_EQ(coreText(paths.item), top + "/real/item");
    EXPECT_EQ(coreText(paths.folder(way)), top + "/real");
    EXPECT_EQ(coreText(paths.folder(QStringLiteral("/other"))), "/other");
}

TEST(ResolvedPathsTest, OddPathsStayPaths)
{
    const auto item = [](const char *path) {
        return coreText(resolvePaths(QLatin1String(path), {}).item);
    };
    EXPECT_EQ(item("/"), "/");
    EXPECT_EQ(item("/no-such-folder//x/"), "/no-such-folder/x");
    EXPECT_EQ(item("/no-such-folder/x/.."), "/no-such-folder");
    EXPECT_EQ(item("/-m\n"), "/-m\n");
    EXPECT_EQ(item("/a/.."), "/");
}

} // namespace
} // namespace nimbrel::test
