// Passwords: in the record, in a real keyring, in the configuration.
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationWriter.h"
#include "config/NBNimbrelFSPreferences.h"
#include "fs/NBNimbrelFS.h"
#include "volume/VolumeFixture.h"

#include <QTimer>

#include <fstream>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

// Finnish, Japanese, and a picture: more bytes than characters.
constexpr std::string_view widePassword = "\xC3\xA4iti \xE7\xA7\x98\xE5\xAF\x86 \xF0\x9F\x94\x91";
constexpr std::string_view newPassword = "the new password";

// Whether the configuration at `path` opens the folder, with what key.
std::shared_ptr<NBNimbrelFS> opened(const VolumePtr &volume, std::string_view password)
{
    NBPreferencesError error;
    const auto preferences =
        NBNimbrelFSPreferences().preferencesWithURL(coreText(volume->configPath()), &error);
    return preferences ? NBNimbrelFS::withRootPath(coreText(volume->path()), *preferences, password)
                       : nullptr;
}

std::string configurationOf(const VolumePtr &volume)
{
    return readFile(coreText(volume->configPath()));
}

void setPassword(const VolumePtr &volume, std::string_view password)
{
    volume->setPassphrase(SecureBuffer::copyOf(password));
}

class PassphraseTest : public VolumeFixture
{
protected:
    PassphraseTest() : VolumeFixture({.bus = true, .keyring = true}) {}

    // What another program of the desktop finds; nothing when there is no item.
    std::optional<std::string> stored(const VolumePtr &volume, const std::string &account = {})
    {
        const RunResult found = secretTool("lookup", volume, account);
        return found.status == 0 ? std::optional(found.output) : std::nullopt;
    }
    long itemCount(const VolumePtr &volume)
    {
        const std::string found = secretTool("search", volume, {}, "--all").output;
        long count = 0;
        for (std::size_t at = found.find("secret = "); at != std::string::npos;
             at = found.find("secret = ", at + 1))
            ++count;
        return count;
    }
    RunResult secretTool(const std::string &what, const VolumePtr &volume,
                         const std::string &account, const std::string &option = {})
    {
        std::vector<std::string> command{"secret-tool", what};
        if (!option.empty())
            command.push_back(option);
        command.insert(command.end(),
                       {"service", coreText(volume->keychainServiceName()), "account",
                        account.empty() ? coreText(volume->path()) : account});
        return run(command, {.environment = desk.desktop().environment()});
    }
};

TEST_F(PassphraseTest, AMountStoresThePasswordThatItProved)
{
    const VolumePtr volume = archived();
    desk.person.passwords = {"wrong", std::string(rightPassword)};
    int storedAtLastQuestion = -1;
    volume->mount([&](bool) { storedAtLastQuestion = stored(volume) ? 1 : 0; });
    EXPECT_FALSE(stored(volume));
    ASSERT_TRUE(eventLoopUntil([&] { return storedAtLastQuestion >= 0; }));
    EXPECT_EQ(storedAtLastQuestion, 1);
    EXPECT_EQ(stored(volume), rightPassword);
    EXPECT_EQ(coreText(volume->keychainServiceName()), "Nimbrel: Safe");
}

TEST_F(PassphraseTest, AWrongPasswordIsNeverStored)
{
    const VolumePtr volume = archived();
    desk.person.passwords = {"wrong"};
    volume->mount();
    ASSERT_TRUE(hasIdled(volume));
    settle();
    EXPECT_FALSE(stored(volume));
}

TEST_F(PassphraseTest, APasswordThatIsNotToBeStoredIsNot)
{
    const VolumePtr volume = archived();
    desk.person.rememberPasswords = false;
    desk.person.passwords = {std::string(rightPassword)};
    ASSERT_TRUE(desk.mount(volume));
    settle();
    EXPECT_FALSE(stored(volume));
}

TEST_F(PassphraseTest, APasswordChangedElsewhereIsAskedForAndReplacesTheStoredOne)
{
    const VolumePtr made = archived();
    ASSERT_EQ(desk.secrets.add(made->keychainServiceName(), made->path(), "the one before"),
              SecretStatus::Done);
    {
        NBVolumesController &before = desk.makeController();
        before.volumes().append(made);
        before.saveVolumes();
    }
    const VolumePtr volume = desk.makeController().volumes().at(0);
    ASSERT_EQ(volume->passphrase(), "the one before");
    desk.person.passwords = {std::string(rightPassword)};
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(desk.person.timesAsked, 1);
    EXPECT_EQ(stored(volume), rightPassword);
    EXPECT_EQ(itemCount(volume), 1);
}

TEST_F(PassphraseTest, StoringTwiceLeavesOneItemWithTheNewerSecret)
{
    const VolumePtr volume = ready();
    volume->doStorePassphrase();
    EXPECT_EQ(stored(volume), rightPassword);
    setPassword(volume, newPassword);
    volume->doStorePassphrase();
    EXPECT_EQ(stored(volume), newPassword);
    EXPECT_EQ(itemCount(volume), 1);
}

TEST_F(PassphraseTest, APasswordBeyondAsciiIsStoredWithAllItsBytes)
{
    const VolumePtr volume = desk.makeVolume("Safe", widePassword);
    volume->doStorePassphrase();
    EXPECT_EQ(stored(volume), widePassword);
    const VolumePtr later = desk.fromArchive(volume);
    const auto found = desk.secrets.find(later->keychainServiceName(), later->path());
    ASSERT_TRUE(found);
    setPassword(later, found->text());
    EXPECT_TRUE(desk.mount(later));
    EXPECT_EQ(desk.person.timesAsked, 0);
}

TEST_F(PassphraseTest, AChangeReachesTheConfigurationAndTheKeyring)
{
    const VolumePtr volume = mounted();
    writeFile(onDisk(volume, "a.txt"), "kept");
    EXPECT_TRUE(volume->changePassphrase(rightPassword, widePassword));
    EXPECT_EQ(volume->passphrase(), widePassword);
    EXPECT_EQ(stored(volume), widePassword);
    EXPECT_EQ(itemCount(volume), 1);
    EXPECT_EQ(opened(volume, rightPassword), nullptr);
    EXPECT_EQ(alertCount(), 0U);
    ASSERT_TRUE(desk.unmount(volume));
    const VolumePtr later = desk.fromArchive(volume);
    setPassword(later, widePassword);
    ASSERT_TRUE(desk.mount(later));
    EXPECT_EQ(readFile(onDisk(later, "a.txt")), "kept");
}

TEST_F(PassphraseTest, AChangeWithAWrongOldPasswordLeavesEverythingAndShowsTheAlert)
{
    const VolumePtr volume = mounted();
    const std::string before = configurationOf(volume);
    EXPECT_FALSE(volume->changePassphrase("not the old one", newPassword));
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "The current password is not correct.");
    EXPECT_EQ(configurationOf(volume), before);
    EXPECT_EQ(volume->passphrase(), rightPassword);
    EXPECT_EQ(stored(volume), rightPassword);
}

TEST_F(PassphraseTest, AChangeOfAPasswordThatIsNotToBeStoredTouchesNoItem)
{
    const VolumePtr volume = ready();
    volume->setStorePassphrase(false);
    ASSERT_EQ(desk.secrets.add(volume->keychainServiceName(), volume->path(), "left over"),
              SecretStatus::Done);
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    EXPECT_NE(opened(volume, newPassword), nullptr);
    EXPECT_EQ(stored(volume), "left over");
}

TEST_F(PassphraseTest, ClearingRemovesTheItemAndThePassword)
{
    const VolumePtr volume = mounted();
    ASSERT_EQ(stored(volume), rightPassword);
    volume->clearPassphrase();
    EXPECT_FALSE(stored(volume));
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(volume->passphrase(), "");
}

TEST_F(PassphraseTest, ClearingWithoutAnItemClearsTheRecordAllTheSame)
{
    const VolumePtr volume = ready();
    volume->clearPassphrase();
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(volume->passphrase(), "");
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(PassphraseTest, ClearingLooksUnderTheAccountOfTheOlderExtension)
{
    const VolumePtr volume = ready();
    const std::string oldAccount = desk.home() + "/Safe.nm";
    ASSERT_EQ(desk.secrets.add(volume->keychainServiceName(), qtText(oldAccount), rightPassword),
              SecretStatus::Done);
    volume->clearPassphrase();
    EXPECT_FALSE(stored(volume, oldAccount));
}

TEST_F(PassphraseTest, ClearingTakesTheNewerAccountFirst)
{
    const VolumePtr volume = ready();
    const std::string oldAccount = desk.home() + "/Safe.nm";
    ASSERT_EQ(desk.secrets.add(volume->keychainServiceName(), qtText(oldAccount), "older"),
              SecretStatus::Done);
    volume->doStorePassphrase();
    volume->clearPassphrase();
    EXPECT_FALSE(stored(volume));
    EXPECT_EQ(stored(volume, oldAccount), "older");
}

TEST_F(PassphraseTest, RenamingAVolumeLeavesTheOldItemBehind)
{
    const VolumePtr volume = ready();
    volume->doStorePassphrase();
    const VolumePtr before = desk.fromArchive(volume);
    volume->setLabel(QStringLiteral("Vault"));
    volume->doStorePassphrase();
    EXPECT_EQ(stored(volume), rightPassword);
    EXPECT_EQ(stored(before), rightPassword);
}

// What a password change does to the configuration needs no keyring: without one all works but
// remembering.
class PassphraseWithoutKeyringTest : public VolumeFixture
{
};

TEST_F(PassphraseWithoutKeyringTest, EverythingWorksButRemembering)
{
    const VolumePtr volume = mounted();
    volume->doStorePassphrase();
    writeFile(onDisk(volume, "a.txt"), "kept");
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    ASSERT_TRUE(desk.unmount(volume));
    const VolumePtr later = desk.fromArchive(volume);
    desk.person.passwords = {std::string(newPassword)};
    ASSERT_TRUE(desk.mount(later));
    EXPECT_EQ(readFile(onDisk(later, "a.txt")), "kept");
    later->clearPassphrase();
    EXPECT_EQ(later->passphrase(), "");
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(PassphraseWithoutKeyringTest, AChangeKeepsTheKeyAndWithItEveryFile)
{
    const VolumePtr volume = mounted();
    const auto before = opened(volume, rightPassword);
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    const auto after = opened(volume, newPassword);
    ASSERT_TRUE(before && after);
    EXPECT_TRUE(std::ranges::equal(before->cryptor().key().data(), after->cryptor().key().data()));
}

TEST_F(PassphraseWithoutKeyringTest, FilesInUseStayReadableOverAChange)
{
    const VolumePtr volume = mounted();
    writeFile(onDisk(volume, "a.txt"), "written before");
    std::fstream open(onDisk(volume, "a.txt"));
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    std::string text;
    std::getline(open, text);
    EXPECT_EQ(text, "written before");
    open.clear();
    open << " and after" << std::flush;
    EXPECT_EQ(readFile(onDisk(volume, "a.txt")), "written before and after");
    writeFile(onDisk(volume, "b.txt"), "new since");
    open.close();
    ASSERT_TRUE(desk.unmount(volume));
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_EQ(readFile(onDisk(volume, "a.txt")), "written before and after");
    EXPECT_EQ(readFile(onDisk(volume, "b.txt")), "new since");
}

TEST_F(PassphraseWithoutKeyringTest, AChangeAfterAnUnmountWorks)
{
    const VolumePtr volume = mounted();
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_NE(opened(volume, newPassword), nullptr);
}

TEST_F(PassphraseWithoutKeyringTest, ARecordThatNeverMountedChangesNothing)
{
    const VolumePtr made = desk.makeVolume("Safe", rightPassword);
    const std::string before = configurationOf(made);
    const VolumePtr listed = desk.fromArchive(made);
    setPassword(listed, rightPassword);
    const VolumePtr chosen = NBNimbrelVolume::withPath(desk.services, made->path());
    setPassword(chosen, rightPassword);
    for (const VolumePtr &volume : {listed, chosen}) {
        desk.alerts.shown.clear();
        EXPECT_FALSE(volume->changePassphrase(rightPassword, newPassword));
        ASSERT_EQ(alertCount(), 1U);
        EXPECT_EQ(headline(), "Could not change the password.");
        EXPECT_EQ(configurationOf(made), before);
        EXPECT_EQ(volume->passphrase(), rightPassword);
    }
    ASSERT_TRUE(desk.mount(listed));
    EXPECT_TRUE(listed->changePassphrase(rightPassword, newPassword));
}

TEST_F(PassphraseWithoutKeyringTest, WithoutThatRefusalTheFoldersKeyWouldBeLost)
{
    const VolumePtr made = desk.makeVolume("Safe", rightPassword);
    const auto before = opened(made, rightPassword);
    const VolumePtr chosen = NBNimbrelVolume::withPath(desk.services, made->path());
    setPassword(chosen, newPassword);
    ASSERT_TRUE(chosen->writePreferencesToDisk());
    EXPECT_EQ(opened(made, rightPassword), nullptr);
    const auto after = opened(made, newPassword);
    ASSERT_TRUE(before && after);
    EXPECT_FALSE(std::ranges::equal(before->cryptor().key().data(), after->cryptor().key().data()));
}

TEST_F(PassphraseWithoutKeyringTest, AConfigurationReplacedSinceTheMountIsNotOverwritten)
{
    const VolumePtr volume = mounted();
    const VolumePtr other = desk.makeVolume("Other", rightPassword);
    writeFile(coreText(volume->configPath()), configurationOf(other));
    const SystemLogLines log;
    EXPECT_FALSE(volume->changePassphrase(rightPassword, newPassword));
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "Could not change the password.");
    EXPECT_EQ(log.count(QStringLiteral("isn't the configuration that was mounted")), 1);
    EXPECT_EQ(configurationOf(volume), configurationOf(other));
    EXPECT_EQ(volume->passphrase(), rightPassword);
}

TEST_F(PassphraseWithoutKeyringTest, APasswordChangedElsewhereSinceTheMountIsNotOverwritten)
{
    const VolumePtr volume = mounted();
    const VolumePtr elsewhere = desk.fromArchive(volume);
    const auto same = opened(volume, rightPassword);
    ASSERT_TRUE(same && same->setPassphrase("set elsewhere"));
    ASSERT_FALSE(writeConfiguration(coreText(volume->configPath()), same->settings(),
                                    "set elsewhere", configurationBackupFolder()));
    EXPECT_FALSE(volume->changePassphrase(rightPassword, newPassword));
    EXPECT_NE(opened(volume, "set elsewhere"), nullptr);
}

TEST_F(PassphraseWithoutKeyringTest, AConfigurationThatCannotBeReadIsLeftAlone)
{
    const VolumePtr volume = mounted();
    writeFile(coreText(volume->configPath()), "half a file");
    EXPECT_FALSE(volume->changePassphrase(rightPassword, newPassword));
    EXPECT_EQ(configurationOf(volume), "half a file");
    EXPECT_EQ(headline(), "Could not change the password.");
}

TEST_F(PassphraseWithoutKeyringTest, AChangeThatCannotBeWrittenTakesTheOldPasswordBack)
{
    const VolumePtr volume = mounted();
    const QString usual = volume->configPath();
    volume->setConfigPath(desk.path("nowhere/configuration.xml"));
    EXPECT_FALSE(volume->changePassphrase(rightPassword, newPassword));
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "Could not change the password.");
    EXPECT_EQ(volume->passphrase(), rightPassword);
    volume->setConfigPath(usual);
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
}

TEST_F(PassphraseWithoutKeyringTest, TheEventLoopRunsWhileKeysAreDerived)
{
    const VolumePtr volume = mounted();
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++turns; });
    timer.start(0);
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    EXPECT_GT(turns, 0);
}

TEST_F(PassphraseWithoutKeyringTest, AnUnmountDuringAChangeSpoilsNeither)
{
    const VolumePtr volume = mounted();
    QTimer::singleShot(0, QCoreApplication::instance(), [&] { volume->unmount(); });
    EXPECT_TRUE(volume->changePassphrase(rightPassword, newPassword));
    ASSERT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    EXPECT_NE(opened(volume, newPassword), nullptr);
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(PassphraseWithoutKeyringTest, AnEmptyNewPasswordChangesNothing)
{
    const VolumePtr volume = mounted();
    const std::string before = configurationOf(volume);
    EXPECT_FALSE(volume->changePassphrase(rightPassword, ""));
    EXPECT_EQ(configurationOf(volume), before);
    EXPECT_EQ(volume->passphrase(), rightPassword);
}

} // namespace
} // namespace nimbrel::test
