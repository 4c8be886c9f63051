// The flow that makes a new encrypted folder.
#include "config/NBNimbrelFSPreferences.h"
#include "support/MountInfo.h"
#include "support/Process.h"
#include "volume/Background.h"
#include "volume/StoredList.h"

#include <QSemaphore>
#include <QThreadPool>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const std::string password = "a new password";

class NewVolumeTest : public ::testing::Test
{
protected:
    // What the person wants; the password is theirs.
    NBNewVolumeSettings wanted(const std::string &folder)
    {
        return {.path = desk.path(folder), .passphrase = SecureBuffer::copyOf(password)};
    }

    // Where nothing can be made.
    NBNewVolumeSettings wantedInVain()
    {
        writeFile(desk.home() + "/file", "no folder");
        return wanted("file/New.nmc");
    }

    QStringList alertTexts() const
    {
        QStringList texts;
        for (const Alert &alert : desk.alerts.shown)
            texts.push_back(alert.messageText);
        return texts;
    }

    // A folder in the list that isn't the new one.
    VolumePtr addOther()
    {
        controller.volumes().append(desk.makeVolume("Other", "other password"));
        return controller.volumes().last();
    }

    VolumeDesk desk;
    NBVolumesController &controller = desk.makeController();
};

const QStringList notMade{QStringLiteral("Could not create the encrypted folder."),
                          QStringLiteral("The new Nimbrel Folder has not been created!")};

TEST_F(NewVolumeTest, PersonWhoCancelsChangesNothing)
{
    const VolumePtr other = addOther();
    for (const bool isAdvanced : {true, false}) {
        desk.person.isAdvanced = isAdvanced;
        controller.newVolume();
        EXPECT_EQ(controller.volumes(), QList<VolumePtr>{other});
    }
    EXPECT_TRUE(desk.alerts.shown.empty());
    EXPECT_TRUE(desk.person.shownAsNew.isEmpty());
    EXPECT_FALSE(fs::exists(preferencesPath(desk)));
}

// Whatever a person may type: what nothing could open again is never made.
TEST_F(NewVolumeTest, BlockSizesThatNoFolderCanHaveAreRefusedAndLeaveNothing)
{
    for (const qint64 blockSize : {0, -5, -16, std::numeric_limits<qint32>::max() - 15}) {
        desk.alerts.shown.clear();
        desk.person.wanted = wanted("Odd.nmc");
        desk.person.wanted->blockSize = blockSize;
        controller.newVolume();
        EXPECT_EQ(alertTexts().last(), notMade.last()) << blockSize;
        EXPECT_FALSE(fs::exists(desk.home() + "/Odd.nmc")) << blockSize;
        EXPECT_TRUE(controller.volumes().isEmpty());
    }
}

TEST_F(NewVolumeTest, FolderThatCannotBeMadeIsSaidAndJoinsNoList)
{
    const VolumePtr other = addOther();
    desk.person.wanted = wantedInVain();
    controller.newVolume();
    EXPECT_EQ(alertTexts(), notMade);
    EXPECT_EQ(controller.volumes(), QList<VolumePtr>{other});
    EXPECT_TRUE(desk.person.shownAsNew.isEmpty());
    EXPECT_FALSE(fs::exists(preferencesPath(desk)));
}

TEST_F(NewVolumeTest, InSimpleModeTheListIsStoredEmptyBeforeTheNewFolderIsWritten)
{
    addOther();
    controller.saveVolumes();
    ASSERT_EQ(storedLabels(), QStringList{QStringLiteral("Other")});
    desk.person.isAdvanced = false;
    desk.person.wanted = wantedInVain();
    std::vector<qsizetype> storedMeanwhile;
    desk.alerts.whileShown = [&](const Alert &) {
        storedMeanwhile.push_back(storedLabels().size());
    };
    controller.newVolume();
    EXPECT_EQ(alertTexts(), notMade);
    EXPECT_EQ(storedMeanwhile, (std::vector<qsizetype>{0, 0}));
    EXPECT_TRUE(controller.volumes().isEmpty()) << "it stays so";
    EXPECT_TRUE(fs::exists(desk.home() + "/Other.nmc/.encfs6.xml"));
}

TEST_F(NewVolumeTest, InSimpleModeAnEmptyListIsNothingToClear)
{
    desk.person.isAdvanced = false;
    desk.person.wanted = wantedInVain();
    controller.newVolume();
    EXPECT_EQ(alertTexts(), notMade);
    EXPECT_FALSE(storedArchive().isEmpty());
    EXPECT_TRUE(storedLabels().isEmpty());
}

TEST_F(NewVolumeTest, FolderThatIsAnEncryptedOneAlreadyKeepsItsKey)
{
    const VolumePtr other = addOther();
    const std::string configuration = readFile(coreText(other->configPath()));
    controller.volumes().clear();
    desk.person.wanted = wanted("Other.nmc");
    controller.newVolume();
    EXPECT_EQ(readFile(coreText(other->configPath())), configuration);
    EXPECT_EQ(alertTexts(), QStringList{notMade.last()});
    EXPECT_TRUE(controller.volumes().isEmpty());
}

class NewVolumePasswordTest : public ::testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    std::optional<std::string> stored(const VolumePtr &volume)
    {
        const auto found = desk.secrets.find(volume->keychainServiceName(), volume->path());
        return found ? std::optional(std::string(found->text())) : std::nullopt;
    }

    void replace()
    {
        desk.person.isAdvanced = false;
        writeFile(desk.home() + "/file", "no folder");
        desk.person.wanted = NBNewVolumeSettings{.path = desk.path("file/New.nmc"),
                                                 .passphrase = SecureBuffer::copyOf(password)};
        controller.newVolume();
    }

    VolumeDesk desk{{.bus = true, .keyring = true}};
    NBVolumesController &controller = desk.makeController();
};

TEST_F(NewVolumePasswordTest, InSimpleModeTheMountedVolumeIsUnmountedAndItsPasswordForgotten)
{
    const VolumePtr old = desk.makeVolume("Old", "old password");
    controller.volumes().append(old);
    ASSERT_TRUE(desk.mount(old));
    ASSERT_EQ(stored(old), "old password");
    replace();
    EXPECT_EQ(stored(old), std::nullopt);
    EXPECT_EQ(old->passphrase(), "");
    EXPECT_TRUE(controller.volumes().isEmpty());
    EXPECT_TRUE(eventLoopUntil([&] { return !old->isMounted() && desk.hasNoMounts(); }));
    EXPECT_TRUE(fs::exists(coreText(old->configPath())));
}

TEST_F(NewVolumePasswordTest, InSimpleModeThePasswordOfAnUnmountedVolumeStays)
{
    const VolumePtr old = desk.makeVolume("Old", "old password");
    old->doStorePassphrase();
    controller.volumes().append(old);
    replace();
    EXPECT_TRUE(controller.volumes().isEmpty());
    EXPECT_EQ(stored(old), "old password");
    EXPECT_EQ(old->passphrase(), "old password");
}

class MountedNewVolumeTest : public NewVolumeTest
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // Makes what is wanted, and waits for its disk.
    VolumePtr make(NBNewVolumeSettings settings)
    {
        desk.person.wanted = std::move(settings);
        controller.newVolume();
        if (controller.volumes().isEmpty())
            throw std::runtime_error("nothing was made");
        VolumePtr volume = controller.volumes().last();
        EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
        return volume;
    }

    static std::int64_t configured(const VolumePtr &volume, std::string_view key)
    {
        NBPreferencesError error;
        const auto read =
            NBNimbrelFSPreferences().preferencesWithURL(coreText(volume->configPath()), &error);
        return read ? read->integer(key).value_or(-1) : -2;
    }
};

TEST_F(MountedNewVolumeTest, NewFolderIsWrittenMountedListedSavedAndShown)
{
    const VolumePtr other = addOther();
    const VolumePtr volume = make(wanted("Cloud/New.nmc"));
    EXPECT_EQ(controller.volumes(), (QList<VolumePtr>{other, volume}));
    EXPECT_EQ(storedLabels(), (QStringList{QStringLiteral("Other"), QStringLiteral("Nimbrel")}));
    EXPECT_EQ(desk.person.shownAsNew, QStringList{desk.path("Cloud/New.nmc/.encfs6.xml")});
    EXPECT_TRUE(fs::exists(coreText(volume->configPath())));
    EXPECT_EQ(mountedAt(fs::canonical(desk.home()).string() + "/Volumes/Nimbrel"), "fuse.nimbrel");
    EXPECT_TRUE(desk.alerts.shown.empty());
    EXPECT_TRUE(desk.workspace.selected.isEmpty());
}

TEST_F(MountedNewVolumeTest, SimpleSettingsAreTheUsualOnes)
{
    desk.person.isAdvanced = false;
    const VolumePtr volume = make(wanted("New.nmc"));
    EXPECT_EQ(volume->label(), QStringLiteral("Nimbrel"));
    EXPECT_EQ(volume->keySize(), 256);
    EXPECT_EQ(volume->blockSize(), 4096);
    EXPECT_TRUE(volume->encodeFilenames());
    EXPECT_TRUE(volume->automount());
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_FALSE(volume->spotlight());
    EXPECT_FALSE(volume->isLocal());
    EXPECT_FALSE(volume->allowsAll());
    EXPECT_EQ(volume->configPath(), desk.path("New.nmc/.encfs6.xml"));
    EXPECT_EQ(volume->passphrase(), password);
}

TEST_F(MountedNewVolumeTest, AdvancedSettingsReachTheVolumeAndItsConfiguration)
{
    NBNewVolumeSettings settings = wanted("New.nmc");
    settings.label = u"Trésor"_qs;
    settings.keySize = 192;
    settings.blockSize = 1024;
    settings.encodeFilenames = false;
    settings.automount = false;
    settings.storePassphrase = false;
    settings.local = true;
    settings.configPath = desk.path("Elsewhere.xml");
    const VolumePtr volume = make(std::move(settings));
    EXPECT_EQ(volume->label(), u"Trésor"_qs);
    EXPECT_EQ(volume->mountPoint(), desk.path("Volumes/") + u"Trésor"_qs);
    EXPECT_EQ(volume->configPath(), desk.path("Elsewhere.xml"));
    EXPECT_EQ(desk.person.shownAsNew, QStringList{desk.path("Elsewhere.xml")});
    EXPECT_EQ(configured(volume, preferenceKey::keySize), 192);
    EXPECT_EQ(configured(volume, preferenceKey::blockSize), 1024);
    EXPECT_FALSE(volume->encodeFilenames());
    EXPECT_FALSE(volume->automount());
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_TRUE(volume->isLocal());
    EXPECT_FALSE(volume->allowsAll());
}

TEST_F(MountedNewVolumeTest, IndexedVolumeIsLocalAndOpenToAllWhateverElseIsWanted)
{
    NBNewVolumeSettings settings = wanted("New.nmc");
    settings.spotlight = true;
    settings.local = false;
    settings.allowAll = false;
    desk.person.wanted = std::move(settings);
    controller.newVolume();
    const VolumePtr volume = controller.lastVolume();
    ASSERT_NE(volume, nullptr);
    EXPECT_TRUE(volume->spotlight());
    EXPECT_TRUE(volume->isLocal());
    EXPECT_TRUE(volume->allowsAll());
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); })); // may be refused to a user
}

TEST_F(MountedNewVolumeTest, WhatIsWrittenToTheNewDiskComesBackAfterTheNextMount)
{
    const VolumePtr volume = make(wanted("New.nmc"));
    const std::string file = coreText(volume->mountPoint()) + "/kept.txt";
    writeFile(file, "kept words");
    ASSERT_TRUE(desk.unmount(volume));
    ASSERT_FALSE(fs::exists(file));
    controller.saveVolumes();

    Session next(desk);
    const VolumePtr again = next.controller.lastVolume();
    again->setPassphrase(SecureBuffer::copyOf(password));
    ASSERT_TRUE(desk.mount(again));
    EXPECT_EQ(readFile(file), "kept words");
    EXPECT_TRUE(desk.unmount(again));
}

TEST_F(MountedNewVolumeTest, PersonWhoWantsToSeeTheDiskIsShownItsFirstPages)
{
    fs::create_directories(desk.home() + "/resources/en");
    writeFile(desk.home() + "/resources/en/Getting Started.pdf", "first pages");
    desk.person.wantsToSeeNewVolumes = true;
    const VolumePtr volume = make(wanted("New.nmc"));
    const QString pages = volume->mountPoint() + QStringLiteral("/Getting Started.pdf");
    EXPECT_EQ(desk.workspace.selected, QStringList{pages});
    EXPECT_EQ(desk.workspace.roots, QStringList{volume->mountPoint()});
    EXPECT_EQ(readFile(coreText(pages)), "first pages");
}

TEST_F(MountedNewVolumeTest, DiskThatDoesNotMountLeavesTheVolumeListedAndShown)
{
    fs::create_directories(desk.home() + "/Volumes");
    writeFile(desk.home() + "/Volumes/Nimbrel", "in the way");
    desk.person.wanted = wanted("New.nmc");
    controller.newVolume();
    const VolumePtr volume = controller.lastVolume();
    ASSERT_NE(volume, nullptr);
    EXPECT_TRUE(eventLoopUntil([&] { return !desk.alerts.shown.empty(); }));
    EXPECT_EQ(alertTexts(), QStringList{QStringLiteral("\"Nimbrel\" could not be mounted.")});
    EXPECT_FALSE(volume->isMounted());
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_EQ(desk.person.shownAsNew.size(), 1);
}

TEST_F(MountedNewVolumeTest, InSimpleModeTheNewDiskTakesTheOldOnesPlace)
{
    desk.person.isAdvanced = false;
    const VolumePtr old = make(wanted("Old.nmc"));
    writeFile(coreText(old->mountPoint()) + "/old.txt", "old words");
    const VolumePtr volume = make(wanted("New.nmc"));
    EXPECT_NE(volume, old);
    EXPECT_EQ(controller.volumes(), QList<VolumePtr>{volume});
    EXPECT_FALSE(old->isMounted());
    EXPECT_TRUE(volume->isMounted());
    EXPECT_FALSE(fs::exists(coreText(volume->mountPoint()) + "/old.txt"));
    EXPECT_TRUE(fs::exists(desk.home() + "/Old.nmc/.encfs6.xml"));
    EXPECT_EQ(alertTexts(), QStringList());
}

TEST_F(MountedNewVolumeTest, InSimpleModeTheNewDiskWaitsForASlowUnmountOfTheOldOne)
{
    desk.person.isAdvanced = false;
    const VolumePtr old = make(wanted("Old.nmc"));
    settle();
    QThreadPool &pool = backgroundPool();
    QSemaphore mayGoOn;
    for (int i = 0; i < pool.maxThreadCount(); ++i) // nobody is left for the unmount
        pool.start([&mayGoOn] { mayGoOn.acquire(); });
    desk.person.wanted = wanted("New.nmc");
    controller.newVolume();
    EXPECT_TRUE(old->isMounted());
    EXPECT_EQ(desk.person.shownAsNew.size(), 2) << "the success page doesn't wait";
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    mayGoOn.release(pool.maxThreadCount());
    const VolumePtr volume = controller.lastVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_FALSE(old->isMounted());
    EXPECT_EQ(alertTexts(), QStringList());
}

TEST_F(MountedNewVolumeTest, InSimpleModeADiskInUseKeepsTheNewOneOutUntilItIsFree)
{
    desk.person.isAdvanced = false;
    const VolumePtr old = make(wanted("Old.nmc"));
    settle();
    const std::string file = coreText(old->mountPoint()) + "/open.txt";
    writeFile(file, "old words");
    {
        const std::ifstream open(file);
        desk.person.wanted = wanted("New.nmc");
        controller.newVolume();
        EXPECT_TRUE(eventLoopUntil([&] { return desk.alerts.shown.size() == 1U; }));
    }
    EXPECT_EQ(alertTexts(), QStringList{QStringLiteral("\"Nimbrel\" could not be unmounted.")});
    EXPECT_TRUE(old->isMounted());
    EXPECT_EQ(readFile(file), "old words");
    const VolumePtr volume = controller.lastVolume();
    controller.mountVolume(volume);
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_FALSE(old->isMounted());
}

TEST_F(MountedNewVolumeTest, InSimpleModeADiskInUseStaysThoughNobodyElseHoldsItsRecord)
{
    desk.person.isAdvanced = false;
    const std::string disk = coreText(make(wanted("Old.nmc"))->mountPoint());
    settle();
    std::fstream open(disk + "/open.txt", std::ios::out);
    open << "before" << std::flush;
    desk.person.wanted = wanted("New.nmc");
    controller.newVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return desk.alerts.shown.size() == 1U; }));
    settle();
    open << " and after" << std::flush;
    EXPECT_TRUE(open.good());
    EXPECT_EQ(readFile(disk + "/open.txt"), "before and after");
    open.close();
    EXPECT_EQ(run({"fusermount3", "-u", disk}).status, 0);
    EXPECT_TRUE(eventLoopUntil([&] { return desk.hasNoMounts(); }));
}

} // namespace
} // namespace nimbrel::test
