// The record of a volume that is made.
#include "support/Files.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class RecordTest : public ::testing::Test
{
protected:
    VolumePtr withPath(const QString &path = {}) const
    {
        return NBNimbrelVolume::withPath(services, path);
    }

    VolumeDesk desk;
    VolumeServices &services = desk.services;
};

TEST_F(RecordTest, NewRecordHasTheUsualSettings)
{
    const VolumePtr volume = withPath(desk.makeFolder("Safe.nmc"));
    EXPECT_EQ(volume->version(), 1);
    EXPECT_EQ(volume->label(), QStringLiteral("Nimbrel"));
    EXPECT_EQ(volume->path(), desk.path("Safe.nmc"));
    EXPECT_TRUE(volume->automount());
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_TRUE(volume->checkKey());
    EXPECT_FALSE(volume->spotlight());
    EXPECT_FALSE(volume->isLocal());
    EXPECT_FALSE(volume->allowsAll());
    EXPECT_FALSE(volume->isMounted());
    EXPECT_FALSE(volume->isBusy());
    EXPECT_EQ(volume->delegate(), nullptr);
    EXPECT_EQ(volume->passphrase(), "");
}

TEST_F(RecordTest, NewRecordOfAFolderWithTheOldExtensionRenamesIt)
{
    desk.makeFolder("Safe.nm", {".encfs6.xml"});
    const VolumePtr volume = withPath(desk.path("Safe.nm"));
    EXPECT_EQ(volume->path(), desk.path("Safe.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc/.encfs6.xml"));
    EXPECT_TRUE(fs::exists(desk.home() + "/Safe.nmc/.encfs6.xml"));
    EXPECT_FALSE(fs::exists(desk.home() + "/Safe.nm"));
}

TEST_F(RecordTest, NewRecordOfTheOldExtensionWithNothingThereTakesTheNewOne)
{
    const VolumePtr volume = withPath(desk.path("Safe.nm"));
    EXPECT_EQ(volume->path(), desk.path("Safe.nmc"));
    EXPECT_FALSE(fs::exists(desk.home() + "/Safe.nmc"));
}

TEST_F(RecordTest, FolderThatCannotBeRenamedKeepsItsNameWithoutAWord)
{
    desk.makeFolder("Safe.nm", {".encfs6.xml"});
    desk.makeFolder("Safe.nmc");
    const SystemLogLines log;
    const VolumePtr volume = withPath(desk.path("Safe.nm"));
    EXPECT_EQ(volume->path(), desk.path("Safe.nm"));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nm/.encfs6.xml"));
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(RecordTest, NewRecordOfAFolderWithOnlyTheOldConfigurationTakesThat)
{
    const VolumePtr volume = withPath(desk.makeFolder("Safe.nmc", {"Keyfile.nmx"}));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc/Keyfile.nmx"));
}

TEST_F(RecordTest, OfTwoConfigurationsTheNewOneIsTaken)
{
    const VolumePtr volume = withPath(desk.makeFolder("Safe.nmc", {"Keyfile.nmx", ".encfs6.xml"}));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc/.encfs6.xml"));
}

// Kept: what is to be written under the new name is set by those who make a folder.
TEST_F(RecordTest, FolderWithoutAConfigurationExpectsTheOldOne)
{
    const VolumePtr volume = withPath(desk.makeFolder("Safe.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc/Keyfile.nmx"));
}

TEST_F(RecordTest, FolderInTheConfigurationsPlaceIsNone)
{
    desk.makeFolder("Safe.nmc/.encfs6.xml");
    EXPECT_EQ(withPath(desk.path("Safe.nmc"))->configPath(), desk.path("Safe.nmc/Keyfile.nmx"));
}

TEST_F(RecordTest, NewRecordWithoutAPathHasNoConfigurationEither)
{
    const VolumePtr volume = withPath();
    EXPECT_TRUE(volume->path().isNull());
    EXPECT_TRUE(volume->configPath().isNull());
    EXPECT_EQ(volume->label(), QStringLiteral("Nimbrel"));
}

TEST_F(RecordTest, SizesAreTheFilesystemsOwn)
{
    EXPECT_EQ(withPath(desk.path("Safe.nmc"))->keySize(), 256);
    EXPECT_EQ(withPath(desk.path("Safe.nmc"))->blockSize(), 4096);
    const VolumePtr volume =
        NBNimbrelVolume::withPath(services, desk.path("Safe.nmc"), {}, 192, 1024);
    EXPECT_EQ(volume->keySize(), 192);
    EXPECT_EQ(volume->blockSize(), 1024);
    volume->setKeySize(128);
    volume->setBlockSize(2048);
    EXPECT_EQ(volume->keySize(), 128);
    EXPECT_EQ(volume->blockSize(), 2048);
}

TEST_F(RecordTest, NamesAreEncodedWhenTheFilesystemIsToldSo)
{
    const VolumePtr volume = withPath(desk.path("Safe.nmc"));
    volume->setEncodeFilenames(true);
    EXPECT_TRUE(volume->encodeFilenames());
    volume->setEncodeFilenames(false);
    EXPECT_FALSE(volume->encodeFilenames());
}

TEST_F(RecordTest, RecordOutOfTheArchiveHasNoFilesystemBeforeItsFirstMount)
{
    const VolumePtr volume = desk.fromArchive(withPath(desk.makeFolder("Safe.nmc")));
    volume->setEncodeFilenames(true);
    volume->setKeySize(128);
    volume->setBlockSize(1024);
    EXPECT_FALSE(volume->encodeFilenames());
    EXPECT_EQ(volume->keySize(), 0);
    EXPECT_EQ(volume->blockSize(), 0);
    EXPECT_TRUE(volume->pathOfFileWithURL(QStringLiteral("/a")).isNull());
    EXPECT_FALSE(volume->writePreferencesToDisk());
}

TEST_F(RecordTest, PassphraseOfTheConstructionIsInMemory)
{
    const VolumePtr volume =
        NBNimbrelVolume::withPath(services, desk.path("Safe.nmc"), SecureBuffer::copyOf("secret"));
    EXPECT_EQ(volume->passphrase(), "secret");
}

TEST_F(RecordTest, DisksAreMountedUnderTheirLabels)
{
    const VolumePtr volume = withPath(desk.path("Safe.nmc"));
    EXPECT_EQ(volume->mountPoint(), desk.path("Volumes/Nimbrel"));
    volume->setLabel(u"Trésor 文"_qs);
    EXPECT_EQ(volume->mountPoint(), desk.path("Volumes/") + u"Trésor 文"_qs);
}

TEST_F(RecordTest, PreferencePutsTheUsersNameInFrontOfTheLabel)
{
    const VolumePtr volume = withPath(desk.path("Safe.nmc"));
    desk.preferences.setValue(preferencesKey::volumePrefix, true);
    EXPECT_EQ(volume->mountPoint(),
              desk.path("Volumes/") + systemFacts::userName() + QStringLiteral("-Nimbrel"));
    desk.preferences.setValue(preferencesKey::volumePrefix, false);
    EXPECT_EQ(volume->mountPoint(), desk.path("Volumes/Nimbrel"));
}

TEST_F(RecordTest, VolumesOfOneLabelShareAMountPoint)
{
    EXPECT_EQ(withPath(desk.path("One.nmc"))->mountPoint(),
              withPath(desk.path("Two.nmc"))->mountPoint());
}

} // namespace
} // namespace nimbrel::test
