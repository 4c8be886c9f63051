#include "fs/NBNimbrelFS.h"

#include "crypto/Base64.h"
#include "fs/TestDelegate.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

const std::string root = "/nowhere/store";

// What the file of a folder made with this passphrase would say.
NBPreferencesDictionary folderPreferences(std::string_view passphrase, std::int64_t iterations = 10)
{
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::kdfIterations, iterations);
    const auto fresh = NBNimbrelFS::withRootPath(root, preferences);
    EXPECT_TRUE(fresh->setPassphrase(passphrase));
    preferences.set(preferenceKey::encodedKey, fresh->settings().encodedKey);
    preferences.set(preferenceKey::salt, fresh->settings().salt);
    return preferences;
}

TEST(NBNimbrelFSTest, AnEmptyDictionaryLeavesTheDefaults)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, NBPreferencesDictionary());
    ASSERT_NE(delegate, nullptr);
    const NBNimbrelFSSettings &settings = delegate->settings();
    EXPECT_EQ(delegate->version(), "1");
    EXPECT_EQ(delegate->rootPath(), root);
    EXPECT_EQ(settings.cipherAlgorithm, "ssl/aes");
    EXPECT_EQ(settings.cipherAlgorithmMajor, 3);
    EXPECT_EQ(settings.cipherAlgorithmMinor, 0);
    EXPECT_FALSE(settings.areFilenamesEncrypted);
    EXPECT_EQ(settings.nameAlgorithm, "nameio/null");
    EXPECT_EQ(settings.nameAlgorithmMajor, 1);
    EXPECT_EQ(settings.nameAlgorithmMinor, 0);
    EXPECT_EQ(settings.keySize, 256);
    EXPECT_EQ(settings.blockSize, 4096);
    EXPECT_TRUE(settings.allowHoles);
    EXPECT_EQ(settings.kdfIterations, 5000);
    EXPECT_EQ(delegate->cryptor().blockSize(), 4096U);
    EXPECT_EQ(delegate->cryptor().key().keySize(), 32U);
    EXPECT_EQ(delegate->_decodeFilename("a"), "a");
}

TEST(NBNimbrelFSTest, AFreshDelegateHoldsItsBlobAndSalt)
{
    const auto delegate = NBNimbrelFS::withRootPath(root);
    ASSERT_NE(delegate, nullptr);
    EXPECT_EQ(dataWithBase64String(delegate->settings().salt).size(), 20U);
    EXPECT_EQ(dataWithBase64String(delegate->settings().encodedKey).size(), 52U);
    EXPECT_EQ(delegate->settings().encodedKey, delegate->cryptor().writeKeyWithPassphrase(""));
    EXPECT_EQ(delegate->settings().salt, base64EncodedString(delegate->cryptor().salt()));
}

TEST(NBNimbrelFSTest, TwoFreshDelegatesHaveDifferentKeys)
{
    const auto one = NBNimbrelFS::withRootPath(root, quickPreferences());
    const auto other = NBNimbrelFS::withRootPath(root, quickPreferences());
    EXPECT_NE(one->settings().salt, other->settings().salt);
    EXPECT_NE(one->_encodePath("/a"), other->_encodePath("/a"));
}

TEST(NBNimbrelFSTest, EachKeyOverwritesTheFieldOfItsName)
{
    NBPreferencesDictionary preferences = quickPreferences();
    preferences.set(preferenceKey::cipherAlgorithm, std::string("cipher"));
    preferences.set(preferenceKey::nameAlgorithm, std::string("names"));
    preferences.set(preferenceKey::areFilenamesEncrypted, true);
    std::int64_t value = 100;
    for (const std::string_view key :
         {preferenceKey::cipherAlgorithmMajor, preferenceKey::cipherAlgorithmMinor,
          preferenceKey::nameAlgorithmMajor, preferenceKey::nameAlgorithmMinor,
          preferenceKey::blockMACBytes, preferenceKey::blockMACRandomBytes,
          preferenceKey::encodedKeyLength, preferenceKey::saltLength,
          preferenceKey::desiredKDFDuration})
        preferences.set(key, ++value);
    preferences.set(preferenceKey::keySize, std::int64_t{128});
    preferences.set(preferenceKey::blockSize, std::int64_t{64});
    for (const std::string_view key :
         {preferenceKey::uniqueIV, preferenceKey::chainedNameIV, preferenceKey::externalIVChaining})
        preferences.set(key, true);
    preferences.set(preferenceKey::allowHoles, false);

    const NBNimbrelFSSettings s = NBNimbrelFS::withRootPath(root, preferences)->settings();
    EXPECT_EQ(s.cipherAlgorithm, "cipher");
    EXPECT_EQ(s.nameAlgorithm, "names");
    EXPECT_TRUE(s.areFilenamesEncrypted);
    const std::vector<std::int64_t> numbers = {
        s.cipherAlgorithmMajor, s.cipherAlgorithmMinor, s.nameAlgorithmMajor,
        s.nameAlgorithmMinor,   s.blockMACBytes,        s.blockMACRandomBytes,
        s.encodedKeyLength,     s.saltLength,           s.desiredKDFDuration};
    EXPECT_EQ(numbers, (std::vector<std::int64_t>{101, 102, 103, 104, 105, 106, 107, 108, 109}));
    EXPECT_EQ(s.keySize, 128);
    EXPECT_EQ(s.blockSize, 64);
    EXPECT_EQ(s.kdfIterations, 1);
    EXPECT_TRUE(s.uniqueIV && s.chainedNameIV && s.externalIVChaining);
    EXPECT_FALSE(s.allowHoles);
}

TEST(NBNimbrelFSTest, EncryptedNamesInTheDictionaryLeaveTheNameAlgorithmAlone)
{
    NBPreferencesDictionary preferences = quickPreferences();
    preferences.set(preferenceKey::areFilenamesEncrypted, true);
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, preferences)->settings().nameAlgorithm,
              "nameio/null");
}

TEST(NBNimbrelFSTest, TheRightPassphraseOpensTheKey)
{
    const NBPreferencesDictionary preferences = folderPreferences("right");
    const auto one = NBNimbrelFS::withRootPath(root, preferences, "right");
    const auto other = NBNimbrelFS::withRootPath(root, preferences, "right");
    ASSERT_NE(one, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(one->cryptor().encodeString("name"), other->cryptor().encodeString("name"));
    EXPECT_EQ(one->settings().salt, *preferences.text(preferenceKey::salt));
}

TEST(NBNimbrelFSTest, AWrongPassphraseGivesNothing)
{
    const NBPreferencesDictionary preferences = folderPreferences("right");
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, preferences, "wrong"), nullptr);
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, preferences, ""), nullptr);
}

TEST(NBNimbrelFSTest, WithoutAKeyCheckAnyPassphraseGivesADelegate)
{
    const NBPreferencesDictionary preferences = folderPreferences("right");
    const auto delegate = NBNimbrelFS::withRootPath(root, preferences, "wrong", false);
    ASSERT_NE(delegate, nullptr);
    // The noise that came out, wrapped under the wrong passphrase.
    EXPECT_EQ(delegate->settings().encodedKey, delegate->cryptor().writeKeyWithPassphrase("wrong"));
}

TEST(NBNimbrelFSTest, AFolderWithoutAKeyDoesNotOpen)
{
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, quickPreferences(), "any"), nullptr);
}

TEST(NBNimbrelFSTest, AnOpenedFolderHoldsWhatWritingItsKeyAgainGives)
{
    const NBPreferencesDictionary preferences = folderPreferences("right");
    const auto delegate = NBNimbrelFS::withRootPath(root, preferences, "right");
    ASSERT_NE(delegate, nullptr);
    EXPECT_EQ(delegate->settings().encodedKey, *preferences.text(preferenceKey::encodedKey));
    EXPECT_EQ(delegate->settings().encodedKey, delegate->cryptor().writeKeyWithPassphrase("right"));
}

TEST(NBNimbrelFSTest, ThePassphraseChangesTheBlobAndNothingElse)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, folderPreferences("first"), "first");
    ASSERT_NE(delegate, nullptr);
    const NBNimbrelFSSettings before = delegate->settings();
    ASSERT_TRUE(delegate->setPassphrase("second"));
    EXPECT_NE(delegate->settings().encodedKey, before.encodedKey);
    EXPECT_EQ(delegate->settings().salt, before.salt);
    ASSERT_TRUE(delegate->setPassphrase("first"));
    EXPECT_EQ(delegate->settings().encodedKey, before.encodedKey);
}

TEST(NBNimbrelFSTest, TheNewPassphraseOpensTheNewBlob)
{
    NBPreferencesDictionary preferences = folderPreferences("first");
    const auto delegate = NBNimbrelFS::withRootPath(root, preferences, "first");
    ASSERT_TRUE(delegate->setPassphrase("second"));
    preferences.set(preferenceKey::encodedKey, delegate->settings().encodedKey);
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, preferences, "first"), nullptr);
    const auto again = NBNimbrelFS::withRootPath(root, preferences, "second");
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->cryptor().encodeString("name"), delegate->cryptor().encodeString("name"));
}

TEST(NBNimbrelFSTest, TheEmptyPassphraseLeavesTheBlob)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, folderPreferences("first"), "first");
    const std::string before = delegate->settings().encodedKey;
    EXPECT_TRUE(delegate->setPassphrase(""));
    EXPECT_EQ(delegate->settings().encodedKey, before);
}

TEST(NBNimbrelFSTest, WithoutADerivationThereIsNoDelegate)
{
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::kdfIterations, std::int64_t{0});
    EXPECT_EQ(NBNimbrelFS::withRootPath(root, preferences), nullptr);
}

TEST(NBNimbrelFSTest, TheNameSetterCarriesTheAlgorithmAlong)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, quickPreferences());
    delegate->setAreFilenamesEncrypted(true);
    EXPECT_TRUE(delegate->settings().areFilenamesEncrypted);
    EXPECT_EQ(delegate->settings().nameAlgorithm, "nameio/stream");
    EXPECT_EQ(delegate->settings().nameAlgorithmMajor, 2);
    EXPECT_EQ(delegate->settings().nameAlgorithmMinor, 1);
    delegate->setAreFilenamesEncrypted(false);
    EXPECT_FALSE(delegate->settings().areFilenamesEncrypted);
    EXPECT_EQ(delegate->settings().nameAlgorithm, "nameio/null");
    EXPECT_EQ(delegate->settings().nameAlgorithmMajor, 1);
    EXPECT_EQ(delegate->settings().nameAlgorithmMinor, 0);
}

TEST(NBNimbrelFSTest, TheSizeSettersLeaveTheCryptorAsItWas)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, quickPreferences());
    delegate->setKeySize(128);
    delegate->setBlockSize(1024);
    EXPECT_EQ(delegate->settings().keySize, 128);
    EXPECT_EQ(delegate->settings().blockSize, 1024);
    EXPECT_EQ(delegate->cryptor().key().keySize(), 32U);
    EXPECT_EQ(delegate->cryptor().blockSize(), 4096U);
}

// 32 bytes, as other programs make them, or none at all.
TEST(NBNimbrelFSTest, TheSaltOfTheFileStandsWhateverItsLength)
{
    for (const std::string &salt :
         {base64EncodedString(bytesOf("0123456789abcdef0123456789abcdef")), std::string()}) {
        NBPreferencesDictionary preferences = quickPreferences();
        preferences.set(preferenceKey::salt, salt);
        const auto delegate = NBNimbrelFS::withRootPath(root, preferences);
        ASSERT_NE(delegate, nullptr);
        EXPECT_EQ(delegate->settings().salt, salt);
    }
}

// A mounted disk works with one; what is changed here isn't changed there.
TEST(NBNimbrelFSTest, ACopyLeadsToTheSamePlacesAndGoesItsOwnWay)
{
    const auto delegate = NBNimbrelFS::withRootPath(root, quickPreferences());
    delegate->setAreFilenamesEncrypted(true);
    delegate->setReadsHolesAsZeros(true);
    const auto copy = delegate->copy();
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->readsHolesAsZeros());
    EXPECT_EQ(copy->_securePathWithPath("/a/b"), delegate->_securePathWithPath("/a/b"));
    ASSERT_TRUE(delegate->setPassphrase("another"));
    EXPECT_NE(copy->settings().encodedKey, delegate->settings().encodedKey);
}

} // namespace

} // namespace nimbrel::test
