// The list of volumes in the preferences, and their passwords at the program's start.
#include "volume/StoredList.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <filesystem>
#include <gtest/gtest.h>
#include <random>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Wrapped = ArchivedRecord::Wrapped;

const QString damageTitle = QStringLiteral("The list of volumes could not be read.");

QJsonObject storedInfo()
{
    const QVariant info = SettingsFile().value(preferencesKey::volumesInfo);
    return QJsonDocument::fromJson(info.toString().toUtf8()).object();
}

// An alert that tells of a list that can't be read, and names this copy.
void expectDamageAlert(const VolumeDesk &desk, const std::string &copy)
{
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.alerts.shown.front().messageText, damageTitle);
    EXPECT_TRUE(desk.alerts.shown.front().informativeText.contains(qtText(copy)))
        << coreText(desk.alerts.shown.front().informativeText);
}

class ControllerStoreTest : public ::testing::Test
{
protected:
    // A record for a folder that isn't there, on the list.
    VolumePtr add(NBVolumesController &controller, const QString &label, const std::string &folder)
    {
        const VolumePtr volume = NBNimbrelVolume::withPath(desk.services, desk.path(folder));
        volume->setLabel(label);
        volume->setStorePassphrase(false);
        controller.volumes().append(volume);
        return volume;
    }

    ListedVolume listed(const std::string &label, const std::string &folder)
    {
        return {.root = desk.home() + "/" + folder, .label = label};
    }

    VolumeDesk desk;
};

TEST_F(ControllerStoreTest, FirstStartHasAnEmptyListAndSaysNothing)
{
    EXPECT_TRUE(desk.makeController().volumes().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
    EXPECT_FALSE(fs::exists(preferencesPath(desk)));
}

TEST_F(ControllerStoreTest, SavedListComesBackInItsOrderWithItsFlags)
{
    NBVolumesController &controller = desk.makeController();
    const VolumePtr first = add(controller, u"Trésor 文"_qs, "One.nmc");
    const VolumePtr second = add(controller, QStringLiteral("Work"), "Two.nmc");
    add(controller, QStringLiteral("Plain"), "Three.nmc");
    first->setAutomount(false);
    first->setSpotlight(true);
    second->setCheckKey(false);
    second->setLocal(true);
    second->setAllowAll(true);
    controller.saveVolumes();

    Session next(desk);
    const QList<VolumePtr> &volumes = next.controller.volumes();
    ASSERT_EQ(labelsOf(volumes), labelsOf(controller.volumes()));
    for (qsizetype i = 0; i < volumes.size(); ++i) {
        KeyedRecord before(recordClassName);
        KeyedRecord after(recordClassName);
        controller.volumes()[i]->encode(before);
        volumes[i]->encode(after);
        // None of the folders is there, so each configuration is expected under its usual name.
        before.encodeObject(QStringLiteral("configPath"),
                            volumes[i]->path() + QStringLiteral("/.encfs6.xml"));
        EXPECT_EQ(after.values(), before.values()) << i;
    }
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, EmptyListIsArchivedAndLeavesNoInformation)
{
    NBVolumesController &controller = desk.makeController();
    add(controller, QStringLiteral("Work"), "Work.nmc");
    controller.saveVolumes();
    EXPECT_FALSE(storedInfo().isEmpty());
    controller.volumes().clear();
    controller.saveVolumes();
    EXPECT_FALSE(storedArchive().isEmpty());
    EXPECT_TRUE(storedLabels().isEmpty());
    EXPECT_FALSE(SettingsFile().value(preferencesKey::volumesInfo).isValid());
    EXPECT_EQ(readFile(preferencesPath(desk)).find("NBVolumesInfo"), std::string::npos);
}

TEST_F(ControllerStoreTest, InformationForOthersIsOneObjectOfMountPointsAndFolders)
{
    NBVolumesController &controller = desk.makeController();
    const VolumePtr one = add(controller, u"Trésor \"=;"_qs, "One.nmc");
    const VolumePtr two = add(controller, QStringLiteral("Work"), "Two.nmc");
    controller.saveVolumes();
    EXPECT_EQ(storedInfo(),
              (QJsonObject{{one->mountPoint(), one->path()}, {two->mountPoint(), two->path()}}));
}

TEST_F(ControllerStoreTest, OfTwoVolumesWithOneMountPointTheLaterFolderStands)
{
    NBVolumesController &controller = desk.makeController();
    add(controller, QStringLiteral("Work"), "One.nmc");
    const VolumePtr later = add(controller, QStringLiteral("Work"), "Two.nmc");
    controller.saveVolumes();
    EXPECT_EQ(storedInfo(), (QJsonObject{{later->mountPoint(), later->path()}}));
    EXPECT_EQ(storedLabels().size(), 2);
}

TEST_F(ControllerStoreTest, OtherPreferencesStayWhenTheListIsSaved)
{
    desk.preferences.setValue(preferencesKey::advanced, true);
    NBVolumesController &controller = desk.makeController();
    add(controller, QStringLiteral("Work"), "Work.nmc");
    controller.saveVolumes();
    EXPECT_TRUE(SettingsFile().boolValue(preferencesKey::advanced));
}

TEST_F(ControllerStoreTest, ListThatCannotBeSavedIsSaid)
{
    NBVolumesController &controller = desk.makeController();
    add(controller, QStringLiteral("Work"), "Work.nmc");
    fs::create_directories(desk.home() + "/.config");
    writeFile(desk.home() + "/.config/Nimbrel", "no folder");
    controller.saveVolumes();
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.alerts.shown.front().messageText,
              QStringLiteral("The list of volumes could not be saved."));
    EXPECT_FALSE(desk.alerts.shown.front().informativeText.isEmpty());
    fs::remove(desk.home() + "/.config/Nimbrel");
    controller.saveVolumes();
    EXPECT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Work")});
}

TEST_F(ControllerStoreTest, LastVolumeOfAnEmptyListIsNone)
{
    NBVolumesController &controller = desk.makeController();
    EXPECT_EQ(controller.lastVolume(), nullptr);
    const VolumePtr volume = NBNimbrelVolume::withPath(desk.services, desk.path("One.nmc"));
    controller.setLastVolume(volume);
    EXPECT_EQ(controller.volumes(), QList<VolumePtr>{volume});
    EXPECT_EQ(controller.lastVolume(), volume);
    EXPECT_FALSE(fs::exists(preferencesPath(desk))) << "nothing is saved";
}

TEST_F(ControllerStoreTest, LastVolumeIsTheFirstAndIsReplacedAlone)
{
    NBVolumesController &controller = desk.makeController();
    const VolumePtr first = add(controller, QStringLiteral("First"), "One.nmc");
    const VolumePtr second = add(controller, QStringLiteral("Second"), "Two.nmc");
    const VolumePtr third = add(controller, QStringLiteral("Third"), "Three.nmc");
    EXPECT_EQ(controller.lastVolume(), first);
    const VolumePtr other = NBNimbrelVolume::withPath(desk.services, desk.path("Other.nmc"));
    controller.setLastVolume(other);
    EXPECT_EQ(controller.volumes(), (QList<VolumePtr>{other, second, third}));
}

TEST_F(ControllerStoreTest, AddingAppendsWithoutSavingAndRemovingDoesNothing)
{
    NBVolumesController &controller = desk.makeController();
    const VolumePtr first = add(controller, QStringLiteral("First"), "One.nmc");
    const VolumePtr added = NBNimbrelVolume::withPath(desk.services, desk.path("Two.nmc"));
    controller.addVolume(added);
    EXPECT_EQ(controller.volumes(), (QList<VolumePtr>{first, added}));
    controller.removeVolume(added);
    EXPECT_EQ(controller.volumes(), (QList<VolumePtr>{first, added}));
    EXPECT_FALSE(fs::exists(preferencesPath(desk)));
}

// Lists of the original platform.

TEST_F(ControllerStoreTest, ListOfTheOriginalPlatformIsReadAsItStands)
{
    storeRecords({newRecord({.root = "/Users/ann/Dropbox/Safe.nmc",
                             .label = Wrapped{"Tax 2012"},
                             .configPath = "/Users/ann/Dropbox/Safe.nmc/.encfs6.xml",
                             .automount = false,
                             .spotlight = true}),
                  newRecord({.root = "/Users/ann/Gone.nmc",
                             .label = std::u16string(u"Trésor 文 \U0001F600"),
                             .configPath = "/Users/ann/Gone.nmc/Keyfile.nmx",
                             .local = true,
                             .allowsAll = true})});
    Session session(desk);
    const QList<VolumePtr> &read = session.controller.volumes();
    ASSERT_EQ(read.size(), 2);
    EXPECT_EQ(read[0]->label(), QStringLiteral("Tax 2012"));
    EXPECT_EQ(read[0]->path(), QStringLiteral("/Users/ann/Dropbox/Safe.nmc"));
    EXPECT_FALSE(read[0]->automount());
    EXPECT_TRUE(read[0]->spotlight());
    EXPECT_EQ(read[1]->label(), u"Trésor 文 \U0001F600"_qs);
    EXPECT_EQ(read[1]->configPath(), QStringLiteral("/Users/ann/Gone.nmc/.encfs6.xml"));
    EXPECT_TRUE(read[1]->isLocal() && read[1]->allowsAll() && read[1]->automount());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, FoldersThatAreGoneStayOnTheList)
{
    storeRecords({newRecord(listed("Gone", "Gone.nmc"))});
    Session session(desk);
    ASSERT_EQ(session.controller.volumes().size(), 1);
    EXPECT_EQ(session.controller.lastVolume()->path(), desk.path("Gone.nmc"));
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, OldAndNewRecordsStandInOneListInTheirOrder)
{
    storeRecords({newRecord(listed("First", "One.nmc")), oldRecord(listed("Second", "Two.nmc")),
                  newRecord(listed("Third", "Three.nmc"))});
    Session session(desk);
    EXPECT_EQ(
        labelsOf(session.controller.volumes()),
        (QStringList{QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")}));
    EXPECT_EQ(session.controller.volumes()[0]->configPath(), desk.path("One.nmc/.encfs6.xml"));
    EXPECT_EQ(session.controller.volumes()[1]->configPath(), desk.path("Two.nmc/Keyfile.nmx"));
    EXPECT_EQ(session.controller.volumes()[1]->keySize(), 256) << "made, not read";
    EXPECT_EQ(session.controller.volumes()[2]->keySize(), 0);
}

TEST_F(ControllerStoreTest, RecordOfAnotherVersionStaysOnTheListEmpty)
{
    ListedVolume newer = listed("Newer", "Newer.nmc");
    newer.version = 2;
    newer.storePassword = true;
    storeRecords({newRecord(listed("First", "One.nmc")), newRecord(newer)});
    Session session(desk);
    ASSERT_EQ(session.controller.volumes().size(), 2);
    EXPECT_EQ(session.controller.volumes()[0]->label(), QStringLiteral("First"));
    EXPECT_TRUE(session.controller.volumes()[1]->path().isNull());
    EXPECT_TRUE(session.controller.volumes()[1]->label().isNull());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, ArchivedNothingIsAnEmptyListWithoutAWord)
{
    BinaryPropertyList list;
    const auto null = list.ascii("$null");
    storeArchive(keyedArchiveOf(list, {null}, 0));
    Session session(desk);
    EXPECT_TRUE(session.controller.volumes().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, FoldersWithTheOldExtensionAreRenamedWhereverTheyStandOnTheList)
{
    fs::create_directories(desk.home() + "/Two.nm");
    writeFile(desk.home() + "/Two.nm/Keyfile.nmx", "configuration");
    ListedVolume second = listed("Second", "Two.nm");
    second.configPath = second.root + "/Keyfile.nmx";
    storeRecords({newRecord(listed("First", "One.nmc")), newRecord(second)});
    Session session(desk);
    EXPECT_EQ(session.controller.volumes()[1]->path(), desk.path("Two.nmc"));
    EXPECT_EQ(session.controller.volumes()[1]->configPath(), desk.path("Two.nmc/Keyfile.nmx"));
    EXPECT_TRUE(fs::exists(desk.home() + "/Two.nmc/Keyfile.nmx"));
}

// Upgrades.

TEST_F(ControllerStoreTest, RunThatUpgradesAndNeverSavesLeavesAnEmptyListInTheStore)
{
    storeRecords({oldRecord(listed("Old", "Old.nmc")), newRecord(listed("New", "New.nmc"))});
    {
        Session session(desk);
        EXPECT_EQ(session.controller.volumes().size(), 2);
        EXPECT_FALSE(storedArchive().isEmpty());
        EXPECT_TRUE(storedLabels().isEmpty());
        EXPECT_FALSE(SettingsFile().value(preferencesKey::volumesInfo).isValid());
    }
    Session next(desk);
    EXPECT_TRUE(next.controller.volumes().isEmpty());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(ControllerStoreTest, UpgradedListIsKeptByTheNextSave)
{
    storeRecords({oldRecord(listed("Old", "Old.nmc"))});
    {
        Session session(desk);
        session.controller.saveVolumes();
    }
    Session next(desk);
    ASSERT_EQ(labelsOf(next.controller.volumes()), QStringList{QStringLiteral("Old")});
    EXPECT_EQ(next.controller.lastVolume()->keySize(), 0) << "read as a record of the newer kind";
    EXPECT_EQ(keptCopies(desk, "before-upgrade").size(), 1U);
}

TEST_F(ControllerStoreTest, PreferencesAsTheyWereBeforeAnUpgradeAreKept)
{
    storeRecords({oldRecord(listed("Old", "Old.nmc"))});
    const std::string before = readFile(preferencesPath(desk));
    Session session(desk);
    const auto copies = keptCopies(desk, "before-upgrade");
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(readFile(copies.front()), before);
}

TEST_F(ControllerStoreTest, ListWithoutOldRecordsIsNotWrittenAtTheStart)
{
    storeRecords({newRecord(listed("New", "New.nmc"))});
    const std::string before = readFile(preferencesPath(desk));
    Session session(desk);
    EXPECT_EQ(readFile(preferencesPath(desk)), before);
    EXPECT_TRUE(keptCopies(desk, "").empty());
}

// Damage.

TEST_F(ControllerStoreTest, ArchiveThatCannotBeReadGivesAnAlertThatNamesTheKeptCopy)
{
    storeArchive(keyedArchive({newRecord(listed("Lost", "Lost.nmc"))}).substr(0, 200));
    const std::string before = readFile(preferencesPath(desk));
    Session session(desk);
    EXPECT_TRUE(session.controller.volumes().isEmpty());
    const auto copies = keptCopies(desk, "damaged");
    ASSERT_EQ(copies.size(), 1U);
    expectDamageAlert(desk, copies.front());

    session.controller.saveVolumes();
    EXPECT_TRUE(storedLabels().isEmpty());
    EXPECT_EQ(readFile(copies.front()), before);
    EXPECT_EQ(desk.alerts.shown.size(), 1U);
}

TEST_F(ControllerStoreTest, PreferencesOfNoiseGiveAnAlertThatNamesTheKeptCopy)
{
    fs::create_directories(desk.home() + "/.config/Nimbrel");
    writeFile(preferencesPath(desk), noise(5000, 7));
    Session session(desk);
    EXPECT_TRUE(session.controller.volumes().isEmpty());
    const auto copies = keptCopies(desk, "damaged");
    ASSERT_EQ(copies.size(), 1U);
    expectDamageAlert(desk, copies.front());

    session.controller.saveVolumes();
    EXPECT_TRUE(storedLabels().isEmpty());
    EXPECT_EQ(readFile(copies.front()), noise(5000, 7));
    EXPECT_EQ(desk.alerts.shown.size(), 1U);
}

TEST_F(ControllerStoreTest, DamagedArchiveInDamagedPreferencesIsOneAlert)
{
    storeArchive("no archive");
    writeFile(preferencesPath(desk), readFile(preferencesPath(desk)) + "a line of no meaning\n");
    Session session(desk);
    EXPECT_TRUE(session.controller.volumes().isEmpty());
    const auto copies = keptCopies(desk, "damaged");
    ASSERT_EQ(copies.size(), 1U);
    expectDamageAlert(desk, copies.front());
}

TEST_F(ControllerStoreTest, ListThatIsWholeAmongDamagedLinesIsNotCalledUnreadable)
{
    storeRecords({newRecord(listed("Whole", "Whole.nmc"))});
    const std::string damaged = readFile(preferencesPath(desk)) + "a line of no meaning\n";
    writeFile(preferencesPath(desk), damaged);
    const SystemLogLines log;
    Session session(desk);
    EXPECT_EQ(labelsOf(session.controller.volumes()), QStringList{QStringLiteral("Whole")});
    EXPECT_TRUE(desk.alerts.shown.empty());
    EXPECT_EQ(log.count(QStringLiteral("can't be understood")), 1);

    session.controller.saveVolumes();
    const auto copies = keptCopies(desk, "damaged");
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(readFile(copies.front()), damaged);
}

TEST_F(ControllerStoreTest, PreferencesThatCannotBeReadAtAllAreSaidWithoutACopy)
{
    fs::create_directories(preferencesPath(desk));
    Session session(desk);
    EXPECT_TRUE(session.controller.volumes().isEmpty());
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.alerts.shown.front().messageText, damageTitle);
    EXPECT_TRUE(keptCopies(desk, "damaged").empty());
}

TEST_F(ControllerStoreTest, TextsOfADamagedListAreNoFormats)
{
    storeArchive("no archive");
    fs::rename(desk.home() + "/.config", desk.home() + "/100%@ of %s");
    ASSERT_EQ(::setenv("XDG_CONFIG_HOME", (desk.home() + "/100%@ of %s").c_str(), 1), 0);
    Session session(desk);
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_TRUE(desk.alerts.shown.front().informativeText.contains(desk.path("100%@ of %s")))
        << coreText(desk.alerts.shown.front().informativeText);
}

TEST_F(ControllerStoreTest, RecordOfANewerVersionIsKeptBeforeTheNextSaveEmptiesIt)
{
    ListedVolume newer = listed("Newer", "Newer.nmc");
    newer.version = 2;
    storeRecords({newRecord(listed("First", "One.nmc")), newRecord(newer)});
    const std::string before = readFile(preferencesPath(desk));
    {
        Session session(desk);
        session.controller.saveVolumes();
        EXPECT_EQ(storedLabels(), (QStringList{QStringLiteral("First"), QString()}));
    }
    Session next(desk);
    EXPECT_EQ(next.controller.volumes().size(), 2);
    const auto copies = keptCopies(desk, "newer-version");
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(readFile(copies.front()), before);
}

// One or two bytes changed; a cut or an insertion now and then.
std::string mutated(std::string text, std::mt19937 &dice)
{
    const auto below = [&dice](std::size_t bound) { return dice() % bound; };
    for (std::size_t changes = 1 + below(2); changes > 0 && !text.empty(); --changes) {
        const std::size_t at = below(text.size());
        switch (below(16)) {
        case 0:
            text.resize(at);
            break;
        case 1:
            text.insert(at, 1, static_cast<char>(below(256)));
            break;
        default:
            text[at] = static_cast<char>(below(256));
        }
    }
    return text;
}

TEST_F(ControllerStoreTest, FiveHundredMutationsGiveAListOrAnAlert)
{
    const std::vector<ArchivedRecord> plain = {
        newRecord({.root = "/Users/ann/Safe.nmc", .label = Wrapped{"Tax"}}),
        newRecord({.root = "/Users/ann/Work.nmc", .label = std::u16string(u"Trésor")})};
    std::vector<ArchivedRecord> mixed = plain;
    mixed.push_back(oldRecord({.root = "/Users/ann/Old.nmc"})); // is written at once
    const SystemLogLines quiet;
    int lists = 0;
    int alerts = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::mt19937 dice(seed);
        const bool isMixed = seed % 10 == 0;
        desk.preferences.setValue(
            preferencesKey::volumes,
            QByteArray::fromStdString(mutated(keyedArchive(isMixed ? mixed : plain), dice)));
        desk.alerts.shown.clear();
        const NBVolumesController controller(desk.services);
        ASSERT_LE(desk.alerts.shown.size(), 1U) << seed;
        ++(desk.alerts.shown.empty() ? lists : alerts);
        EXPECT_TRUE(desk.alerts.shown.empty() || controller.volumes().isEmpty()) << seed;
    }
    EXPECT_GT(lists, 20);
    EXPECT_GT(alerts, 50);
}

// Passwords.

class StartPasswordTest : public ::testing::Test
{
protected:
    // Lists a volume whose password is to be remembered.
    void list(const std::string &folder, bool storePassword = true)
    {
        storeRecords({newRecord({.root = desk.home() + "/" + folder,
                                 .label = "Work",
                                 .storePassword = storePassword})});
    }

    void store(const std::string &account, std::string_view secret)
    {
        ASSERT_EQ(desk.secrets.add(QStringLiteral("Nimbrel: Work"), desk.path(account), secret),
                  SecretStatus::Done);
    }

    // The password that the volume has after the program's start.
    std::string atStart()
    {
        Session session(desk);
        return std::string(session.controller.lastVolume()->passphrase());
    }

    VolumeDesk desk{{.bus = true, .keyring = true}};
};

class NoPasswordTest : public ::testing::Test
{
protected:
    // The program starts with a volume whose password is to be remembered and can't be had.
    static void expectNoneQuickly(VolumeDesk &desk)
    {
        storeRecords({newRecord(
            {.root = desk.home() + "/Work.nmc", .label = "Work", .storePassword = true})});
        const auto begin = std::chrono::steady_clock::now();
        Session session(desk);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
        ASSERT_EQ(session.controller.volumes().size(), 1);
        EXPECT_EQ(session.controller.lastVolume()->passphrase(), "");
        EXPECT_TRUE(desk.alerts.shown.empty());
        EXPECT_EQ(desk.person.timesAsked, 0);
    }
};

TEST_F(StartPasswordTest, RememberedPasswordIsThereAtTheStart)
{
    list("Work.nmc");
    store("Work.nmc", "s\xC3\xA4"
                      "cret");
    EXPECT_EQ(atStart(), "s\xC3\xA4"
                         "cret");
}

TEST_F(StartPasswordTest, PasswordUnderTheOldNameIsFoundInTheSecondPlace)
{
    list("Work.nmc");
    store("Work.nm", "old secret");
    EXPECT_EQ(atStart(), "old secret");
    store("Work.nmc", "new secret");
    EXPECT_EQ(atStart(), "new secret");
}

TEST_F(StartPasswordTest, PathWithoutAnExtensionHasAnOldNameToo)
{
    list("Work");
    store("Work.nm", "old secret");
    EXPECT_EQ(atStart(), "old secret");
}

TEST_F(StartPasswordTest, VolumeThatStoresNoPasswordIsNotLookedUp)
{
    list("Work.nmc", false);
    store("Work.nmc", "secret");
    EXPECT_EQ(atStart(), "");
    desk.desktop().lockKeyring();
    EXPECT_EQ(atStart(), "");
}

TEST_F(StartPasswordTest, PasswordOfAnotherVolumeIsNotTaken)
{
    list("Work.nmc");
    store("Other.nmc", "secret");
    EXPECT_EQ(atStart(), "");
}

TEST_F(StartPasswordTest, BytesThatAreNoTextAreNoPassword)
{
    list("Work.nmc");
    store("Work.nmc", "\xFF\xFE\x80");
    EXPECT_EQ(atStart(), "");
}

// Kept: the second place is asked only where the first has nothing.
TEST_F(StartPasswordTest, BytesThatAreNoTextHideThePasswordUnderTheOldName)
{
    list("Work.nmc");
    store("Work.nmc", "\xFF\xFE\x80");
    store("Work.nm", "old secret");
    EXPECT_EQ(atStart(), "");
}

TEST_F(StartPasswordTest, UpgradedVolumeFindsItsPassword)
{
    storeRecords(
        {oldRecord({.root = desk.home() + "/Work.nmc", .label = "Work", .storePassword = true})});
    store("Work.nm", "old secret");
    EXPECT_EQ(atStart(), "old secret");
}

TEST_F(StartPasswordTest, RenamedFolderFindsThePasswordOfItsOldName)
{
    fs::create_directories(desk.home() + "/Work.nm");
    list("Work.nm");
    store("Work.nm", "old secret");
    EXPECT_EQ(atStart(), "old secret");
    EXPECT_TRUE(fs::exists(desk.home() + "/Work.nmc"));
}

TEST_F(NoPasswordTest, EmptyKeyringGivesNonePromptly)
{
    VolumeDesk desk{{.bus = true, .keyring = true}};
    expectNoneQuickly(desk);
}

TEST_F(NoPasswordTest, LockedKeyringGivesNonePromptly)
{
    VolumeDesk desk{{.bus = true, .keyring = true}};
    ASSERT_EQ(desk.secrets.add(QStringLiteral("Nimbrel: Work"), desk.path("Work.nmc"), "secret"),
              SecretStatus::Done);
    desk.desktop().lockKeyring();
    expectNoneQuickly(desk);
}

TEST_F(NoPasswordTest, DesktopWithoutASecretServiceGivesNonePromptly)
{
    VolumeDesk desk{{.bus = true, .keyring = false}};
    expectNoneQuickly(desk);
}

TEST_F(NoPasswordTest, MachineWithoutABusGivesNonePromptly)
{
    VolumeDesk desk;
    expectNoneQuickly(desk);
}

} // namespace
} // namespace nimbrel::test
