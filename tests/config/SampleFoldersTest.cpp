// Configurations of folders that exist: each is read, rewritten and opened again.
#include "config/ConfigurationLookup.h"
#include "config/ConfigurationWriter.h"
#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

struct Sample
{
    std::string name;
    std::int64_t keySize;
    std::int64_t blockSize;
    std::int64_t saltLength;
    std::int64_t kdfIterations;
};

class SampleFoldersTest : public testing::TestWithParam<Sample>
{
protected:
    void SetUp() override
    {
        const RunResult result = run({"tar", "-xJf", dataFile("folders.tar.xz"), "-C", temp.path(),
                                      "--no-same-owner", GetParam().name + ".nmc/.encfs6.xml"});
        ASSERT_EQ(result.status, 0) << result.error;
        path = findConfiguration(temp / (GetParam().name + ".nmc")).value();
    }

    TempFolder temp;
    std::string path;
    std::string backups = temp / "backups";
    const std::string passphrase = "nimbrel vectors";
};

TEST_P(SampleFoldersTest, ReadsAsTheNameSays)
{
    const auto preferences = accepted(readFile(path));
    EXPECT_EQ(preferences.size(), 21U);
    EXPECT_EQ(preferences.boolean(preferenceKey::areFilenamesEncrypted),
              GetParam().name.starts_with("stream"));
    EXPECT_EQ(preferences.integer(preferenceKey::keySize), GetParam().keySize);
    EXPECT_EQ(preferences.integer(preferenceKey::blockSize), GetParam().blockSize);
    EXPECT_EQ(preferences.integer(preferenceKey::saltLength), GetParam().saltLength);
    EXPECT_EQ(preferences.integer(preferenceKey::kdfIterations), GetParam().kdfIterations);
}

TEST_P(SampleFoldersTest, OpensWithItsPassphraseOnly)
{
    EXPECT_NE(keyOfFile(path, passphrase), "");
    EXPECT_EQ(keyOfFile(path, "Nimbrel vectors"), "");
}

TEST_P(SampleFoldersTest, RewriteOpensWithTheOldAndThenWithAChangedPassphrase)
{
    const std::string key = keyOfFile(path, passphrase);
    NBNimbrelFSSettings settings = settingsOf(accepted(readFile(path)));
    EXPECT_EQ(writeConfiguration(path, settings, passphrase, backups), std::nullopt);
    EXPECT_EQ(keyOfFile(path, passphrase), key);

    settings = settingsOf(accepted(readFile(path)));
    changePassphrase(settings, passphrase, "Schlüssel 2 ✓");
    EXPECT_EQ(writeConfiguration(path, settings, "Schlüssel 2 ✓", backups), std::nullopt);
    EXPECT_EQ(keyOfFile(path, "Schlüssel 2 ✓"), key);
    EXPECT_EQ(keyOfFile(path, passphrase), "");
    EXPECT_EQ(namesIn(backups).size(), 2U);
}

TEST_P(SampleFoldersTest, RewriteSaysTheSameAsTheFileDid)
{
    const auto before = accepted(readFile(path));
    EXPECT_EQ(writeConfiguration(path, settingsOf(before), passphrase, backups), std::nullopt);
    EXPECT_EQ(accepted(readFile(path)), before);
}

INSTANTIATE_TEST_SUITE_P(Folders, SampleFoldersTest,
                         testing::Values(Sample{"null-256-4096", 256, 4096, 20, 5000},
                                         Sample{"stream-128-1024", 128, 1024, 20, 1000},
                                         Sample{"stream-192-65536", 192, 65536, 20, 20011},
                                         Sample{"stream-256-4096", 256, 4096, 20, 5000},
                                         Sample{"stream-256-4096-longsalt", 256, 4096, 32, 180000}),
                         [](const auto &parameter) {
                             std::string name = parameter.param.name;
                             std::erase(name, '-');
                             return name;
                         });

} // namespace

} // namespace nimbrel::test
