// Records of the older kind, and what they become.
#include "volume/Volume.h"

#include "platform/KeyedArchive.h"
#include "support/Files.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class VolumeTest : public ::testing::Test
{
protected:
    // A folder with these files in it; its path.
    QString makeFolder(const std::string &name, const std::vector<std::string> &files)
    {
        std::filesystem::create_directories(desk.home() + "/" + name);
        for (const std::string &file : files)
            writeFile(desk.home() + "/" + name + "/" + file, "configuration");
        return desk.path(name);
    }

    static KeyedRecord record(const QString &root, const QString &configPath, qint64 version = 1)
    {
        KeyedRecord coder(QStringLiteral("Volume"));
        coder.encodeInteger(QStringLiteral("version"), version);
        coder.encodeObject(QStringLiteral("root"), root);
        coder.encodeObject(QStringLiteral("label"), QStringLiteral("Work"));
        coder.encodeObject(QStringLiteral("configPath"), configPath);
        coder.encodeBool(QStringLiteral("automount"), true);
        coder.encodeBool(QStringLiteral("storePassword"), true);
        coder.encodeBool(QStringLiteral("checkKey"), true);
        coder.encodeBool(QStringLiteral("spotlight"), true);
        return coder;
    }

    VolumePtr upgraded(const Volume &volume)
    {
        return desk.makeController().upgradeLegacyVolume(volume);
    }

    VolumeDesk desk;
};

TEST_F(VolumeTest, RecordWithItsConfigurationIsReadAsItStands)
{
    const QString root = makeFolder("Safe.nmc", {".encfs6.xml", "Keyfile.nmx"});
    const Volume volume(record(root, root + QStringLiteral("/.encfs6.xml")));
    EXPECT_EQ(volume.version, 1);
    EXPECT_EQ(volume.root, root);
    EXPECT_EQ(volume.label, QStringLiteral("Work"));
    EXPECT_EQ(volume.configPath, root + QStringLiteral("/.encfs6.xml"));
    EXPECT_TRUE(volume.automount && volume.storePassphrase && volume.checkKey && volume.spotlight);
    EXPECT_FALSE(volume.isMounted);
    EXPECT_TRUE(volume.mountPoint.isNull() && volume.passphrase.isNull());
}

TEST_F(VolumeTest, EachBooleanIsReadUnderItsOwnKey)
{
    const auto readWith = [](const char *key) {
        KeyedRecord coder(QStringLiteral("Volume"));
        coder.encodeInteger(QStringLiteral("version"), 1);
        coder.encodeBool(QLatin1String(key), true);
        const Volume volume(coder);
        return std::vector<bool>{volume.automount, volume.storePassphrase, volume.checkKey,
                                 volume.spotlight};
    };
    EXPECT_EQ(readWith("automount"), (std::vector<bool>{true, false, false, false}));
    EXPECT_EQ(readWith("storePassword"), (std::vector<bool>{false, true, false, false}));
    EXPECT_EQ(readWith("checkKey"), (std::vector<bool>{false, false, true, false}));
    EXPECT_EQ(readWith("spotlight"), (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(readWith("storePassphrase"), (std::vector<bool>{false, false, false, false}));
}

TEST_F(VolumeTest, RecordWhoseConfigurationHasGoneExpectsTheOldFileWhetherItIsThereOrNot)
{
    const QString bare = makeFolder("Bare.nmc", {".encfs6.xml"});
    EXPECT_EQ(Volume(record(bare, bare + QStringLiteral("/gone.xml"))).configPath,
              bare + QStringLiteral("/Keyfile.nmx"));
    const QString old = makeFolder("Old.nmc", {"Keyfile.nmx"});
    EXPECT_EQ(Volume(record(old, old + QStringLiteral("/gone.xml"))).configPath,
              old + QStringLiteral("/Keyfile.nmx"));
}

TEST_F(VolumeTest, OldExtensionOfARecordStays)
{
    const QString root = makeFolder("Safe.nm", {"Keyfile.nmx"});
    const Volume volume(record(root, root + QStringLiteral("/Keyfile.nmx")));
    EXPECT_EQ(volume.root, root);
    EXPECT_EQ(upgraded(volume)->path(), root);
    EXPECT_TRUE(std::filesystem::exists(coreText(root)));
}

TEST_F(VolumeTest, NewRecordWithoutAFolderHasNoConfiguration)
{
    const Volume volume;
    EXPECT_TRUE(volume.root.isNull());
    EXPECT_TRUE(volume.configPath.isNull());
    EXPECT_EQ(volume.label, QStringLiteral("Nimbrel"));
    EXPECT_EQ(volume.version, 1);
}

TEST_F(VolumeTest, NewRecordTakesTheConfigurationThatIsThere)
{
    const QString fresh = makeFolder("New.nmc", {".encfs6.xml"});
    EXPECT_EQ(Volume(fresh).configPath, fresh + QStringLiteral("/.encfs6.xml"));
    const QString old = makeFolder("Old.nmc", {});
    EXPECT_EQ(Volume(old).configPath, old + QStringLiteral("/Keyfile.nmx"));
}

TEST_F(VolumeTest, UpgradedRecordIsNotMountedAlthoughANewOneSaysSo)
{
    const Volume volume(makeFolder("Safe.nmc", {".encfs6.xml"}));
    EXPECT_TRUE(volume.isMounted);
    EXPECT_FALSE(upgraded(volume)->isMounted());
}

TEST_F(VolumeTest, UpgradeTakesOverWhatTheOldRecordHas)
{
    Volume volume;
    volume.root = QStringLiteral("/x/Safe.nmc");
    volume.label = QStringLiteral("Work");
    volume.configPath = QStringLiteral("/y/configuration");
    volume.automount = false;
    volume.storePassphrase = false;
    volume.checkKey = false;
    volume.spotlight = true;
    const VolumePtr made = upgraded(volume);
    EXPECT_EQ(made->path(), volume.root);
    EXPECT_EQ(made->label(), volume.label);
    EXPECT_EQ(made->configPath(), volume.configPath);
    EXPECT_FALSE(made->automount());
    EXPECT_FALSE(made->storePassphrase());
    EXPECT_FALSE(made->checkKey());
    EXPECT_TRUE(made->spotlight());
    EXPECT_FALSE(made->isLocal());
    EXPECT_FALSE(made->allowsAll());
    EXPECT_EQ(made->version(), 1);
}

TEST_F(VolumeTest, RecordOfAnotherVersionIsAVolumeWithoutPathAndLabel)
{
    const SystemLogLines log;
    const QString root = makeFolder("Safe.nmc", {".encfs6.xml"});
    const Volume volume(record(root, root + QStringLiteral("/.encfs6.xml"), 2));
    EXPECT_EQ(volume.version, 2);
    const VolumePtr made = upgraded(volume);
    EXPECT_TRUE(made->path().isNull());
    EXPECT_TRUE(made->label().isNull());
    EXPECT_TRUE(made->configPath().isNull());
    EXPECT_FALSE(made->automount());
    EXPECT_FALSE(made->storePassphrase());
    EXPECT_FALSE(made->checkKey());
    EXPECT_FALSE(made->spotlight());
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

} // namespace
} // namespace nimbrel::test
