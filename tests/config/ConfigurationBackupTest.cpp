#include "config/ConfigurationBackup.h"

#include "config/Child.h"
#include "config/Configurations.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr auto backupPattern =
    "Documents\\.nmc [0-9]{8}T[0-9]{6}\\.[0-9]{9}Z\\.xml"; // folder, moment

mode_t permissionsOf(const std::string &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

class ConfigurationBackupTest : public testing::Test
{
protected:
    ConfigurationBackupTest() { writeFile(path, "the key"); }

    std::string backUp() { return backUp(path); }
    std::string backUp(const std::string &file)
    {
        const auto error = backUpConfiguration(file, backups);
        return error ? error->message : "";
    }

    TempFolder temp;
    std::string folder = temp.makeFolder("Documents.nmc");
    std::string path = folder + "/.encfs6.xml";
    std::string backups = temp / "state/Nimbrel/backups";
};

TEST_F(ConfigurationBackupTest, CopyIsNamedAfterFolderAndTime)
{
    EXPECT_EQ(backUp(), "");
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_THAT(names[0], testing::MatchesRegex(backupPattern));
    EXPECT_EQ(readFile(backups + "/" + names[0]), "the key");
    EXPECT_EQ(readFile(path), "the key");
}

TEST_F(ConfigurationBackupTest, OnlyTheOwnerMayReadUnderAnyUmask)
{
    for (const mode_t mask : {0U, 077U, 0777U}) {
        const mode_t old = ::umask(mask);
        const std::string error = backUp();
        ::umask(old);
        EXPECT_EQ(error, "");
        EXPECT_EQ(permissionsOf(backups), 0700U);
        EXPECT_EQ(permissionsOf(temp / "state"), 0700U);
        EXPECT_EQ(permissionsOf(backups + "/" + namesIn(backups).at(0)), 0600U);
        std::filesystem::remove_all(temp / "state");
    }
}

TEST_F(ConfigurationBackupTest, BackupIsNeverWrittenOver)
{
    for (int i = 0; i < 10; ++i) {
        writeFile(path, std::to_string(i));
        EXPECT_EQ(backUp(), "");
    }
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 10U);
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(readFile(backups + "/" + names[i]), std::to_string(i));
}

TEST_F(ConfigurationBackupTest, TwentyNewestStay)
{
    for (int i = 0; i < 25; ++i) {
        writeFile(path, std::to_string(i));
        EXPECT_EQ(backUp(), "");
    }
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 20U);
    EXPECT_EQ(readFile(backups + "/" + names.front()), "5");
    EXPECT_EQ(readFile(backups + "/" + names.back()), "24");
}

TEST_F(ConfigurationBackupTest, PruningLeavesOtherFoldersAndFilesAlone)
{
    std::filesystem::create_directories(backups);
    const std::vector<std::string> others = {
        "Documents.nmc", "Documents.nmc 2 20200101T000000.000000000Z.xml",
        "Documents.nmc 20200101T000000.00000000xZ.xml", "Documents.nmc notes.xml",
        "Other.nmc 20200101T000000.000000000Z.xml"};
    for (const std::string &name : others)
        writeFile(backups + "/" + name, "");
    for (int i = 0; i < 22; ++i)
        EXPECT_EQ(backUp(), "");
    EXPECT_EQ(namesIn(backups).size(), 20 + others.size());
    for (const std::string &name : others)
        EXPECT_TRUE(std::filesystem::exists(backups + "/" + name)) << name;
}

TEST_F(ConfigurationBackupTest, NewBackupStaysWhenTheClockWasSetBack)
{
    std::filesystem::create_directories(backups);
    for (int i = 0; i < 20; ++i)
        writeFile(fmt::format("{}/Documents.nmc 99990101T0000{:02}.000000000Z.xml", backups, i),
                  "");
    EXPECT_EQ(backUp(), "");
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 20U);
    EXPECT_EQ(readFile(backups + "/" + names.front()), "the key");
}

TEST_F(ConfigurationBackupTest, MissingFileNeedsNone)
{
    EXPECT_EQ(backUp(folder + "/none"), "");
    EXPECT_FALSE(std::filesystem::exists(backups));
}

TEST_F(ConfigurationBackupTest, RelativePathNamesItsFolder)
{
    Child child([&] {
        if (::chdir(folder.c_str()) != 0)
            return 2;
        return backUpConfiguration(".encfs6.xml", backups) ? 1 : 0;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(namesIn(backups), testing::ElementsAre(testing::MatchesRegex(backupPattern)));
}

TEST_F(ConfigurationBackupTest, LongFolderNamesAreCut)
{
    const std::string longFolder = temp.makeFolder(std::string(250, 'x'));
    writeFile(longFolder + "/.encfs6.xml", "the key");
    EXPECT_EQ(backUp(longFolder + "/.encfs6.xml"), "");
    EXPECT_EQ(namesIn(backups).size(), 1U);
}

TEST_F(ConfigurationBackupTest, FileThatIsNoConfigurationIsAnError)
{
    ASSERT_EQ(::truncate(path.c_str(), 2 << 20), 0);
    EXPECT_EQ(backUp(), "\"" + path + "\" is larger than 1048576 bytes.");
    EXPECT_EQ(backUp(folder), "Could not read \"" + folder + "\": Is a directory.");
}

TEST_F(ConfigurationBackupTest, FolderThatCannotBeMadeIsNamed)
{
    writeFile(temp / "state", "in the way");
    EXPECT_EQ(backUp(),
              "Could not make the folder for backups \"" + backups + "\": Not a directory.");
}

TEST_F(ConfigurationBackupTest, FileInPlaceOfTheFolderIsAnError)
{
    std::filesystem::create_directories(temp / "state/Nimbrel");
    writeFile(backups, "in the way");
    EXPECT_THAT(backUp(), testing::EndsWith("\": Not a directory."));
}

TEST_F(ConfigurationBackupTest, FullDiskLeavesNoHalfBackup)
{
    writeFile(path, std::string(5000, 'k'));
    Child child([&] {
        const rlimit limit = {1000, 1000};
        ::signal(SIGXFSZ, SIG_IGN);
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        const auto error = backUpConfiguration(path, backups);
        return error && error->code == EFBIG ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_TRUE(namesIn(backups).empty());
}

// An environment variable with another value (null: without one), for as long as this lives.
class Variable final
{
public:
    Variable(const char *name, const char *value) : _name(name)
    {
        if (const char *const old = std::getenv(name); old != nullptr)
            _old = old;
        set(value);
    }
    ~Variable() { set(_old ? _old->c_str() : nullptr); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    void set(const char *value) const
    {
        if (value == nullptr)
            ::unsetenv(_name);
        else
            ::setenv(_name, value, 1);
    }

    const char *_name;
    std::optional<std::string> _old;
};

std::string folderWith(const char *state, const char *home)
{
    const Variable stateHome("XDG_STATE_HOME", state);
    const Variable homeFolder("HOME", home);
    return configurationBackupFolder();
}

TEST(ConfigurationBackupFolderTest, StateHomeComesFirst)
{
    EXPECT_EQ(folderWith("/s", "/h"), "/s/Nimbrel/backups");
}

TEST(ConfigurationBackupFolderTest, StateHomeCountsOnlyWhenAbsolute)
{
    for (const char *const state : {"", "s", "./s", "~/s"})
        EXPECT_EQ(folderWith(state, "/h"), "/h/.local/state/Nimbrel/backups") << state;
    EXPECT_EQ(folderWith(nullptr, "/h"), "/h/.local/state/Nimbrel/backups");
}

TEST(ConfigurationBackupFolderTest, UserDatabaseHelpsWithoutHome)
{
    const passwd *const entry = ::getpwuid(::getuid());
    const std::string home =
        entry != nullptr && *entry->pw_dir == '/' ? entry->pw_dir : std::string();
    const std::string expected = home.empty() ? "" : home + "/.local/state/Nimbrel/backups";
    for (const char *const variable : {static_cast<const char *>(nullptr), "", "h"})
        EXPECT_EQ(folderWith(nullptr, variable), expected);
}

TEST(ConfigurationBackupFolderTest, UserWithoutHomeHasNone)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root becomes an unknown user";
    Child child([] {
        constexpr uid_t unknown = 3'999'999'999;
        ::unsetenv("XDG_STATE_HOME");
        ::unsetenv("HOME");
        if (::setuid(unknown) != 0)
            return 2;
        return configurationBackupFolder().empty() ? 0 : 1;
    });
    const int status = child.wait();
    if (status == 2)
        GTEST_SKIP() << "this root can't become just any user";
    EXPECT_EQ(status, 0);
}

} // namespace

} // namespace nimbrel::test
