// The text of a configuration file.
#include "config/ConfigurationTemplate.h"
#include "config/ConfigurationText.h"
#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"
#include "support/Files.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

std::string textOfSettings(const NBNimbrelFSSettings &settings)
{
    return NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings).value();
}

TEST(PreferenceTextTest, FreshFolderWithEncryptedNamesPasses)
{
    const NBNimbrelFSSettings settings = freshSettings("secret");
    const auto preferences = accepted(textOfSettings(settings));
    EXPECT_EQ(preferences.size(), 21U);
    EXPECT_EQ(preferences.text("_cipherAlgorithm"), "ssl/aes");
    EXPECT_EQ(preferences.integer("_cipherAlgorithmMajor"), 3);
    EXPECT_EQ(preferences.integer("_cipherAlgorithmMinor"), 0);
    EXPECT_EQ(preferences.text("_nameAlgorithm"), "nameio/stream");
    EXPECT_EQ(preferences.integer("_nameAlgorithmMajor"), 2);
    EXPECT_EQ(preferences.integer("_nameAlgorithmMinor"), 1);
    EXPECT_EQ(preferences.integer("_keySize"), 256);
    EXPECT_EQ(preferences.integer("_blockSize"), 4096);
    EXPECT_EQ(preferences.boolean("_uniqueIV"), false);
    EXPECT_EQ(preferences.boolean("_chainedNameIV"), false);
    EXPECT_EQ(preferences.boolean("_externalIVChaining"), false);
    EXPECT_EQ(preferences.integer("_blockMACBytes"), 0);
    EXPECT_EQ(preferences.integer("_blockMACRandomBytes"), 0);
    EXPECT_EQ(preferences.boolean("_allowHoles"), true);
    EXPECT_EQ(preferences.integer("_encodedKeyLength"), 52);
    EXPECT_EQ(preferences.text("_encodedKey"), settings.encodedKey);
    EXPECT_EQ(preferences.integer("_saltLength"), 20);
    EXPECT_EQ(preferences.text("_salt"), settings.salt);
    EXPECT_EQ(preferences.integer("_KDFIterations"), 5000);
    EXPECT_EQ(preferences.integer("_desiredKDFDuration"), 500);
}

TEST(PreferenceTextTest, FreshFolderWithPlainNamesPasses)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.areFilenamesEncrypted = false;
    settings.nameAlgorithm = "nameio/null";
    settings.nameAlgorithmMajor = 1;
    settings.nameAlgorithmMinor = 0;
    const auto preferences = accepted(textOfSettings(settings));
    EXPECT_EQ(preferences.text("_nameAlgorithm"), "nameio/null");
    EXPECT_EQ(preferences.integer("_nameAlgorithmMajor"), 1);
    EXPECT_EQ(preferences.integer("_nameAlgorithmMinor"), 0);
    EXPECT_EQ(preferences.boolean("_areFilenamesEncrypted"), false);
}

TEST(PreferenceTextTest, FrameIsThatOfAVersion6File)
{
    NBNimbrelFSSettings settings;
    settings.encodedKey = "KEY=";
    settings.salt = "SALT=";
    const std::string expected = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>
<!DOCTYPE boost_serialization>
<boost_serialization signature="serialization::archive" version="7">
    <cfg class_id="0" tracking_level="0" version="20">
        <version>20100713</version>
        <creator>Nimbrel )" + std::string(applicationVersion) +
                                 R"(</creator>
        <cipherAlg class_id="1" tracking_level="0" version="0">
            <name>ssl/aes</name>
            <major>3</major>
            <minor>0</minor>
        </cipherAlg>
        <nameAlg>
            <name>nameio/null</name>
            <major>1</major>
            <minor>0</minor>
        </nameAlg>
        <keySize>256</keySize>
        <blockSize>4096</blockSize>
        <uniqueIV>0</uniqueIV>
        <chainedNameIV>0</chainedNameIV>
        <externalIVChaining>0</externalIVChaining>
        <blockMACBytes>0</blockMACBytes>
        <blockMACRandBytes>0</blockMACRandBytes>
        <allowHoles>1</allowHoles>
        <encodedKeySize>52</encodedKeySize>
        <encodedKeyData>KEY=</encodedKeyData>
        <saltLen>20</saltLen>
        <saltData>SALT=</saltData>
        <kdfIterations>5000</kdfIterations>
        <desiredKDFDuration>500</desiredKDFDuration>
    </cfg>
</boost_serialization>
)";
    EXPECT_EQ(textOfSettings(settings), expected);
}

TEST(PreferenceTextTest, ApplicationVersionHasThreeNumbers)
{
    EXPECT_THAT(std::string(applicationVersion), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(PreferenceTextTest, FixedValuesStandWhateverTheSettingsSay)
{
    NBNimbrelFSSettings settings;
    settings.kdfIterations = 180'000;
    settings.saltLength = 32;
    settings.encodedKeyLength = 36;
    settings.desiredKDFDuration = 1;
    settings.allowHoles = false;
    settings.uniqueIV = true;
    EXPECT_EQ(textOfSettings(settings), textOfSettings({}));
}

TEST(PreferenceTextTest, ChangedThereAndBackThePassphraseGivesTheSameText)
{
    NBNimbrelFSSettings settings = freshSettings("first");
    const std::string before = textOfSettings(settings);
    changePassphrase(settings, "first", "second");
    EXPECT_NE(textOfSettings(settings), before);
    changePassphrase(settings, "second", "first");
    EXPECT_EQ(textOfSettings(settings), before);
}

TEST(PreferenceTextTest, FreshFolderWithAShortKeyDoesNotOpenAgain)
{
    for (const std::int64_t keySize : {128, 192})
        EXPECT_EQ(refusalOf(textOfSettings(freshSettings("secret", {.keySize = keySize}))),
                  "Wrong encoded key.");
}

TEST(PreferenceTextTest, OtherSaltOrIterationsDoNotOpenAgain)
{
    EXPECT_EQ(refusalOf(textOfSettings(freshSettings("secret", {.saltLength = 32}))),
              "Wrong SALT.");
    const NBNimbrelFSSettings settings = freshSettings("secret", {.kdfIterations = 4000});
    EXPECT_EQ(keyOfText(textOfSettings(settings), "secret"), "");
}

TEST(PreferenceTextTest, WhatXmlReservesIsReplaced)
{
    NBNimbrelFSSettings settings = freshSettings("secret");
    settings.nameAlgorithm = "<&>";
    EXPECT_EQ(refusalOf(textOfSettings(settings)), "Wrong name algorithm: <&>.");
}

TEST(ConfigurationTextTest, TemplateTakesAsManyValuesAsItHasPlaces)
{
    const std::array<std::string, 2> values = {"a", "%@"};
    EXPECT_EQ(filledTemplate("1%@2%@3", values), "1a2%@3");
    EXPECT_EQ(filledTemplate("1%@2", values), std::nullopt);
    EXPECT_EQ(filledTemplate("%@%@%@", values), std::nullopt);
}

TEST(ConfigurationTextTest, ElementGetsAnotherValue)
{
    EXPECT_EQ(textWithElement("<r><a>1</a><b>2</b></r>", "b", "<3"), "<r><a>1</a><b>&lt;3</b></r>");
    EXPECT_EQ(textWithElement("<r><a>1</a></r>", "b", "3"), std::nullopt);
    EXPECT_EQ(textWithElement("<r></b><b></r>", "b", "3"), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
