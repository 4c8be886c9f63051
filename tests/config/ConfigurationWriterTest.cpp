#include "config/ConfigurationWriter.h"

#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"
#include "crypto/Base64.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class ConfigurationWriterTest : public testing::Test
{
protected:
    // Writes the configuration of the test's folder; the error's message, empty when it went well.
    std::string write(const NBNimbrelFSSettings &settings, std::string_view passphrase)
    {
        const auto error = writeConfiguration(path, settings, passphrase, backups);
        return error ? error->message : "";
    }
    [[nodiscard]] NBPreferencesDictionary written() const { return accepted(readFile(path)); }

    TempFolder temp;
    std::string folder = temp.makeFolder("Documents.nmc");
    std::string path = folder + "/.encfs6.xml";
    std::string backups = temp / "backups";
};

TEST_F(ConfigurationWriterTest, FreshFolderIsWrittenAsTheTemplateSays)
{
    const NBNimbrelFSSettings settings = freshSettings("secret");
    EXPECT_EQ(write(settings, "secret"), "");
    EXPECT_EQ(readFile(path), NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings));
    EXPECT_NE(keyOfFile(path, "secret"), "");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{".encfs6.xml"});
}

TEST_F(ConfigurationWriterTest, FreshFolderNeedsNoBackup)
{
    EXPECT_EQ(write(freshSettings("secret"), "secret"), "");
    EXPECT_FALSE(std::filesystem::exists(backups));
    EXPECT_EQ(writeConfiguration(temp / "other.xml", freshSettings("secret"), "secret", ""),
              std::nullopt);
}

// Without the guard the plain text of each of these folders doesn't open: its content would be lost
// with the first change of the password.
TEST_F(ConfigurationWriterTest, FolderWithAShortKeyOpensAgainThroughItsOwnSizes)
{
    for (const auto &[keySize, length] : {std::pair{128, 36}, {192, 44}}) {
        const NBNimbrelFSSettings settings = freshSettings("secret", {.keySize = keySize});
        const auto plain = NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings).value();
        EXPECT_EQ(keyOfText(plain, "secret"), "");
        EXPECT_EQ(write(settings, "secret"), "");
        EXPECT_NE(keyOfFile(path, "secret"), "");
        EXPECT_EQ(written().integer(preferenceKey::encodedKeyLength), length);
    }
}

TEST_F(ConfigurationWriterTest, FolderWithALongSaltOpensAgainThroughItsOwnLength)
{
    const NBNimbrelFSSettings settings = freshSettings("secret", {.saltLength = 32});
    EXPECT_EQ(keyOfText(NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings).value(), "secret"),
              "");
    EXPECT_EQ(write(settings, "secret"), "");
    EXPECT_NE(keyOfFile(path, "secret"), "");
    EXPECT_EQ(written().integer(preferenceKey::saltLength), 32);
}

TEST_F(ConfigurationWriterTest, FolderWithOtherIterationsOpensAgainThroughItsOwnCount)
{
    const NBNimbrelFSSettings settings = freshSettings("secret", {.kdfIterations = 4999});
    EXPECT_EQ(keyOfText(NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings).value(), "secret"),
              "");
    EXPECT_EQ(write(settings, "secret"), "");
    EXPECT_NE(keyOfFile(path, "secret"), "");
    EXPECT_EQ(written().integer(preferenceKey::kdfIterations), 4999);
}

TEST_F(ConfigurationWriterTest, ChangedPassphraseKeepsTheVolumeKey)
{
    NBNimbrelFSSettings settings =
        freshSettings("old", {.keySize = 128, .saltLength = 8, .kdfIterations = 77});
    ASSERT_EQ(write(settings, "old"), "");
    const std::string key = keyOfFile(path, "old");
    changePassphrase(settings, "old", "new");
    EXPECT_EQ(write(settings, "new"), "");
    EXPECT_EQ(keyOfFile(path, "new"), key);
    EXPECT_EQ(keyOfFile(path, "old"), "");
}

TEST_F(ConfigurationWriterTest, FolderWithoutHolesKeepsItsWord)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.allowHoles = false;
    const auto plain = NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings).value();
    EXPECT_EQ(accepted(plain).boolean(preferenceKey::allowHoles), true);
    EXPECT_EQ(write(settings, "secret"), "");
    EXPECT_EQ(written().boolean(preferenceKey::allowHoles), false);
    settings = freshSettings("secret", {.keySize = 128});
    settings.allowHoles = false;
    EXPECT_EQ(write(settings, "secret"), "");
    EXPECT_EQ(written().boolean(preferenceKey::allowHoles), false);
}

TEST_F(ConfigurationWriterTest, WrongPassphraseLeavesTheOldFile)
{
    const NBNimbrelFSSettings settings = freshSettings("secret");
    ASSERT_EQ(write(settings, "secret"), "");
    const std::string before = readFile(path);
    const auto error = writeConfiguration(path, settings, "wrong", backups);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, 0);
    EXPECT_EQ(error->message, "\"" + path +
                                  "\" was left as it is: the new configuration would not open "
                                  "again. The password doesn't open the key.");
    EXPECT_EQ(readFile(path), before);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{".encfs6.xml"});
    EXPECT_FALSE(std::filesystem::exists(backups));
}

TEST_F(ConfigurationWriterTest, KeySizeThatIsNotTheKeysIsRefused)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.keySize = 128;
    EXPECT_NE(write(settings, "secret"), "");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ConfigurationWriterTest, MissingBlobIsRefused)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.encodedKey = "";
    EXPECT_NE(write(settings, "secret"), "");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ConfigurationWriterTest, ReadersOwnWordsTellWhyNothingIsWritten)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.nameAlgorithm = "nameio/block";
    EXPECT_EQ(write(settings, "secret"), "\"" + path +
                                             "\" was left as it is: the new configuration would "
                                             "not open again. Wrong name algorithm: nameio/block.");
}

TEST_F(ConfigurationWriterTest, ValueOverItsLimitIsRefused)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.blockSize = 0;
    EXPECT_NE(write(settings, "secret").find("The block size 0 is not from 16 to 67108864 bytes."),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ConfigurationWriterTest, OldFileIsKeptAsABackup)
{
    NBNimbrelFSSettings settings = freshSettings("old");
    ASSERT_EQ(write(settings, "old"), "");
    const std::string before = readFile(path);
    changePassphrase(settings, "old", "new");
    EXPECT_EQ(write(settings, "new"), "");
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(readFile(backups + "/" + names[0]), before);
}

TEST_F(ConfigurationWriterTest, NoBackupMeansNoReplacement)
{
    NBNimbrelFSSettings settings = freshSettings("old");
    ASSERT_EQ(write(settings, "old"), "");
    const std::string before = readFile(path);
    changePassphrase(settings, "old", "new");
    writeFile(backups, "a file is in the way");
    const auto error = writeConfiguration(path, settings, "new", backups);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, ENOTDIR);
    EXPECT_EQ(readFile(path), before);
    const auto placeless = writeConfiguration(path, settings, "new", "");
    ASSERT_TRUE(placeless.has_value());
    EXPECT_EQ(placeless->message, "There is no place for a backup of \"" + path +
                                      "\": neither XDG_STATE_HOME nor a home directory is known.");
    EXPECT_EQ(readFile(path), before);
}

TEST_F(ConfigurationWriterTest, OldFileNameIsWrittenToLikeTheNewOne)
{
    const std::string keyfile = folder + "/Keyfile.nmx";
    EXPECT_EQ(writeConfiguration(keyfile, freshSettings("secret"), "secret", backups),
              std::nullopt);
    EXPECT_NE(keyOfFile(keyfile, "secret"), "");
}

} // namespace

} // namespace nimbrel::test
