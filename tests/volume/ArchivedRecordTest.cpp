// The record of a volume as the archive brings and keeps it.
#include "platform/KeyedArchive.h"
#include "support/Files.h"
#include "volume/StoredList.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;
using Values = QList<std::pair<QString, KeyedRecord::Value>>;

class ArchivedRecordTest : public ::testing::Test
{
protected:
    // In the order of writing. The booleans alternate, so that none stands for its neighbour.
    static KeyedRecord record(const QString &root, const QString &configPath, bool first = true)
    {
        KeyedRecord coder(recordClassName);
        coder.encodeInteger(QStringLiteral("version"), 1);
        coder.encodeObject(QStringLiteral("root"), root);
        coder.encodeObject(QStringLiteral("label"), QStringLiteral("Work"));
        coder.encodeObject(QStringLiteral("configPath"), configPath);
        for (const char *const key :
             {"storePassword", "automount", "checkKey", "spotlight", "local", "allowsAll"}) {
            coder.encodeBool(QLatin1String(key), first);
            first = !first;
        }
        return coder;
    }

    VolumePtr read(const KeyedRecord &coder) { return NBNimbrelVolume::withCoder(services, coder); }

    static Values encoded(const VolumePtr &volume)
    {
        KeyedRecord coder(recordClassName);
        volume->encode(coder);
        return coder.values();
    }

    VolumeDesk desk;
    VolumeServices &services = desk.services;
};

const QString usual = QStringLiteral("/.encfs6.xml");
const QString old = QStringLiteral("/Keyfile.nmx");

TEST_F(ArchivedRecordTest, RecordIsReadAsItStands)
{
    const QString root = desk.makeFolder("Safe.nmc", {"mine.xml"});
    const VolumePtr volume = read(record(root, root + QStringLiteral("/mine.xml")));
    EXPECT_EQ(volume->version(), 1);
    EXPECT_EQ(volume->path(), root);
    EXPECT_EQ(volume->label(), QStringLiteral("Work"));
    EXPECT_EQ(volume->configPath(), root + QStringLiteral("/mine.xml"));
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_FALSE(volume->automount());
    EXPECT_TRUE(volume->checkKey());
    EXPECT_FALSE(volume->spotlight());
    EXPECT_TRUE(volume->isLocal());
    EXPECT_FALSE(volume->allowsAll());
    EXPECT_FALSE(volume->isMounted());
    EXPECT_EQ(volume->passphrase(), "");
}

TEST_F(ArchivedRecordTest, EachBooleanHasItsOwnKey)
{
    const QString root = desk.makeFolder("Safe.nmc", {".encfs6.xml"});
    const VolumePtr volume = read(record(root, root + usual, false));
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_TRUE(volume->automount());
    EXPECT_FALSE(volume->checkKey());
    EXPECT_TRUE(volume->spotlight());
    EXPECT_FALSE(volume->isLocal());
    EXPECT_TRUE(volume->allowsAll());
}

TEST_F(ArchivedRecordTest, ConfigurationThatHasGoneIsExpectedInTheFolderUnderItsUsualName)
{
    const QString bare = desk.makeFolder("Bare.nmc");
    EXPECT_EQ(read(record(bare, bare + QStringLiteral("/gone.xml")))->configPath(), bare + usual);
    const QString withOld = desk.makeFolder("Old.nmc", {"Keyfile.nmx"});
    EXPECT_EQ(read(record(withOld, withOld + QStringLiteral("/gone.xml")))->configPath(),
              withOld + usual);
}

TEST_F(ArchivedRecordTest, OldConfigurationThatIsStoredAndThereStays)
{
    const QString root = desk.makeFolder("Safe.nmc", {"Keyfile.nmx", ".encfs6.xml"});
    EXPECT_EQ(read(record(root, root + old))->configPath(), root + old);
}

TEST_F(ArchivedRecordTest, OldConfigurationThatHasGoneBecomesTheUsualOne)
{
    const QString root = desk.makeFolder("Safe.nmc");
    EXPECT_EQ(read(record(root, root + old))->configPath(), root + usual);
}

TEST_F(ArchivedRecordTest, FolderWithTheOldExtensionIsRenamedAndItsConfigurationFollows)
{
    const QString root = desk.makeFolder("Safe.nm", {"Keyfile.nmx"});
    const VolumePtr volume = read(record(root, root + old));
    EXPECT_EQ(volume->path(), desk.path("Safe.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc/Keyfile.nmx"));
    EXPECT_FALSE(fs::exists(coreText(root)));
}

TEST_F(ArchivedRecordTest, RenamedFolderLooksForItsConfigurationWithinItself)
{
    const QString elsewhere =
        desk.makeFolder("Elsewhere", {"mine.xml"}) + QStringLiteral("/mine.xml");
    const QString root = desk.makeFolder("Safe.nm", {".encfs6.xml"});
    EXPECT_EQ(read(record(root, elsewhere))->configPath(), desk.path("Safe.nmc") + usual);
}

TEST_F(ArchivedRecordTest, FolderWithTheOldExtensionThatHasGoneTakesTheNewPath)
{
    const VolumePtr volume = read(record(desk.path("Safe.nm"), desk.path("Safe.nm") + old));
    EXPECT_EQ(volume->path(), desk.path("Safe.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Safe.nmc") + usual);
    EXPECT_FALSE(fs::exists(desk.home() + "/Safe.nmc"));
}

TEST_F(ArchivedRecordTest, FolderThatCannotBeRenamedKeepsPathAndConfigurationWithoutAWord)
{
    const QString root = desk.makeFolder("Safe.nm", {"Keyfile.nmx"});
    desk.makeFolder("Safe.nmc");
    const SystemLogLines log;
    const VolumePtr volume = read(record(root, root + old));
    EXPECT_EQ(volume->path(), root);
    EXPECT_EQ(volume->configPath(), root + old);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ArchivedRecordTest, RecordOfAnotherVersionIsEmptyAndLogged)
{
    const QString root = desk.makeFolder("Safe.nm", {".encfs6.xml"});
    KeyedRecord coder = record(root, root + usual);
    coder.encodeInteger(QStringLiteral("version"), 2);
    const SystemLogLines log;
    const VolumePtr volume = read(coder);
    EXPECT_EQ(volume->version(), 2);
    EXPECT_TRUE(volume->path().isNull());
    EXPECT_TRUE(volume->label().isNull());
    EXPECT_TRUE(volume->configPath().isNull());
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_FALSE(volume->automount());
    EXPECT_TRUE(fs::exists(coreText(root)));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(
        log.lines().first().startsWith(QStringLiteral("-[NBNimbrelVolume initWithCoder:] [Line ")));
    EXPECT_TRUE(
        log.lines().first().endsWith(QStringLiteral("] Unsupported Nimbrel Volume version: 2")));
}

TEST_F(ArchivedRecordTest, RecordWithoutAVersionIsEmptyToo)
{
    const SystemLogLines log;
    const VolumePtr volume = read(KeyedRecord(recordClassName));
    EXPECT_TRUE(volume->path().isNull());
    EXPECT_EQ(log.count(QStringLiteral("Unsupported Nimbrel Volume version: 0")), 1);
}

TEST_F(ArchivedRecordTest, RecordWithNothingButItsVersionIsReadable)
{
    KeyedRecord coder(recordClassName);
    coder.encodeInteger(QStringLiteral("version"), 1);
    coder.encodeObject(QStringLiteral("configPath"), desk.path("gone.xml"));
    const VolumePtr volume = read(coder);
    EXPECT_TRUE(volume->path().isNull());
    EXPECT_TRUE(volume->label().isNull());
    EXPECT_TRUE(volume->configPath().isNull());
}

TEST_F(ArchivedRecordTest, EncodingAgainGivesTheSameValuesInTheirOrder)
{
    const QString root = desk.makeFolder("Safe.nmc", {"mine.xml"});
    for (const bool first : {true, false}) {
        const KeyedRecord coder = record(root, root + QStringLiteral("/mine.xml"), first);
        EXPECT_EQ(encoded(read(coder)), coder.values());
    }
}

TEST_F(ArchivedRecordTest, EncodingAgainChangesTheConfigurationThatHasGoneAndNothingElse)
{
    const QString root = desk.makeFolder("Safe.nmc");
    const KeyedRecord coder = record(root, root + QStringLiteral("/gone.xml"));
    EXPECT_EQ(encoded(read(coder)), record(root, root + usual).values());
}

TEST_F(ArchivedRecordTest, EncodingAgainChangesTheRenamedFoldersPathsAndNothingElse)
{
    const QString root = desk.makeFolder("Safe.nm", {"Keyfile.nmx"});
    const KeyedRecord coder = record(root, root + old);
    const QString renamed = desk.path("Safe.nmc");
    EXPECT_EQ(encoded(read(coder)), record(renamed, renamed + old).values());
}

TEST_F(ArchivedRecordTest, MissingTextsAreWrittenAsMissing)
{
    const Values values = encoded(NBNimbrelVolume::withPath(services));
    ASSERT_EQ(values.size(), 10);
    EXPECT_EQ(values[1], Values::value_type(QStringLiteral("root"), std::monostate()));
    EXPECT_EQ(values[3], Values::value_type(QStringLiteral("configPath"), std::monostate()));
}

TEST_F(ArchivedRecordTest, PasswordIsNoPartOfTheArchive)
{
    const VolumePtr volume = desk.makeVolume("Safe", "not to be written");
    KeyedRecord coder(recordClassName);
    volume->encode(coder);
    EXPECT_FALSE(archivedData({coder}).contains("not to be written"));
    EXPECT_EQ(desk.fromArchive(volume)->passphrase(), "");
}

TEST_F(ArchivedRecordTest, ArchiveOfOurOwnComesBackByteForByte)
{
    const QString one = desk.makeFolder("One.nmc", {".encfs6.xml"});
    const QString two = desk.makeFolder("Two.nmc", {"Keyfile.nmx"});
    const QByteArray archive =
        archivedData({record(one, one + usual), record(two, two + old, false)});
    const auto records = unarchivedRecords(archive);
    QList<KeyedRecord> again;
    for (const KeyedRecord &coder : std::get<QList<KeyedRecord>>(records)) {
        again.append(KeyedRecord(recordClassName));
        read(coder)->encode(again.last());
    }
    EXPECT_EQ(archivedData(again), archive);
}

} // namespace
} // namespace nimbrel::test
