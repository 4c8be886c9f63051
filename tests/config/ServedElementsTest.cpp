// What each element stores, and the words in which it refuses.
#include "config/Configurations.h"

#include "crypto/Base64.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <limits>

namespace nimbrel::test {

namespace {

TEST(ServedElementsTest, CompleteConfigurationGivesAll21Keys)
{
    const auto preferences = accepted(document(completeElements()));
    EXPECT_EQ(preferences.size(), 21U);
    EXPECT_EQ(preferences.text("_cipherAlgorithm"), "ssl/aes");
    EXPECT_EQ(preferences.integer("_cipherAlgorithmMajor"), 3);
    EXPECT_EQ(preferences.integer("_cipherAlgorithmMinor"), 0);
    EXPECT_EQ(preferences.text("_nameAlgorithm"), "nameio/stream");
    EXPECT_EQ(preferences.boolean("_areFilenamesEncrypted"), true);
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
    EXPECT_EQ(preferences.text("_encodedKey"), base64EncodedString(bytesOf(noise(52, 1))));
    EXPECT_EQ(preferences.integer("_saltLength"), 20);
    EXPECT_EQ(preferences.text("_salt"), base64EncodedString(bytesOf(noise(20, 2))));
    EXPECT_EQ(preferences.integer("_KDFIterations"), 5000);
    EXPECT_EQ(preferences.integer("_desiredKDFDuration"), 500);
}

TEST(ServedElementsTest, OtherCipherIsRefused)
{
    EXPECT_EQ(refusalOf(completeWith("name", "ssl/blowfish")),
              "Wrong cipher algorithm: ssl/blowfish.");
    EXPECT_EQ(refusalOf(completeWith("name", "SSL/AES")), "Wrong cipher algorithm: SSL/AES.");
    EXPECT_EQ(refusalOf(completeWith("name", "")), "Wrong cipher algorithm: .");
}

TEST(ServedElementsTest, CipherMajor2IsRefused)
{
    EXPECT_EQ(refusalOf(completeWith("major", "2")),
              "Wrong cipher algorithm version, Major: 2, Minor: 0.");
    EXPECT_EQ(refusalOf(completeWith("major", "4")),
              "Wrong cipher algorithm version, Major: 4, Minor: 0.");
}

TEST(ServedElementsTest, CipherMinorIsQuotedAsItStands)
{
    EXPECT_EQ(refusalOf(completeWith("minor", "1beta")),
              "Wrong cipher algorithm version, Major: 3, Minor: 1beta.");
    EXPECT_EQ(accepted(completeWith("minor", "zero")).integer("_cipherAlgorithmMinor"), 0);
}

TEST(ServedElementsTest, CipherMinorWithoutMajorPrintsNull)
{
    EXPECT_EQ(refusalOf(document({{"name", "ssl/aes"}, {"minor", "0"}})),
              "Wrong cipher algorithm version, Major: (null), Minor: 0.");
}

TEST(ServedElementsTest, RefusedCipherMinorIsNotStored)
{
    const auto preferences = accepted(document({{"name", "ssl/aes"}, {"major", "3"}}));
    EXPECT_FALSE(preferences.has("_cipherAlgorithmMinor"));
}

TEST(ServedElementsTest, PlainNamesPassAsVersion1Point0Only)
{
    const auto withNames = [](const char *major, const char *minor) {
        return document(
            {{"name", "ssl/aes"}, {"name", "nameio/null"}, {"major", major}, {"minor", minor}});
    };
    const auto preferences = accepted(withNames("1", "0"));
    EXPECT_EQ(preferences.text("_nameAlgorithm"), "nameio/null");
    EXPECT_EQ(preferences.boolean("_areFilenamesEncrypted"), false);
    EXPECT_EQ(refusalOf(withNames("2", "0")), "Wrong name algorithm version, Major: 2, Minor: 0.");
    EXPECT_EQ(refusalOf(withNames("1", "1")), "Wrong name algorithm version, Major: 1, Minor: 1.");
    EXPECT_EQ(refusalOf(withNames("-1", "7x")),
              "Wrong name algorithm version, Major: -1, Minor: 7.");
}

TEST(ServedElementsTest, PlainNamesWithoutMajorPrintNull)
{
    EXPECT_EQ(refusalOf(document({{"name", "ssl/aes"}, {"name", "nameio/null"}, {"minor", "0"}})),
              "Wrong name algorithm version, Major: (null), Minor: 0.");
}

TEST(ServedElementsTest, StreamNamesPassWithAnyMajorAboveZero)
{
    const auto withMajor = [](const char *major) {
        return document(
            {{"name", "ssl/aes"}, {"name", "nameio/stream"}, {"major", major}, {"minor", "9"}});
    };
    EXPECT_EQ(accepted(withMajor("2")).integer("_nameAlgorithmMinor"), 9);
    EXPECT_EQ(accepted(withMajor("1")).integer("_nameAlgorithmMajor"), 1);
    EXPECT_EQ(refusalOf(withMajor("0")), "Wrong name algorithm version, Major: 0.");
    EXPECT_EQ(refusalOf(withMajor("-3")), "Wrong name algorithm version, Major: -3.");
}

TEST(ServedElementsTest, StreamNamesWithoutMajorPrintNull)
{
    EXPECT_EQ(refusalOf(document({{"name", "ssl/aes"}, {"name", "nameio/stream"}, {"minor", "1"}})),
              "Wrong name algorithm version, Major: (null).");
}

TEST(ServedElementsTest, OtherNameAlgorithmIsRefusedAtItsMinor)
{
    EXPECT_EQ(refusalOf(completeWith("name", "nameio/block", 1)),
              "Wrong name algorithm: nameio/block.");
    const auto unjudged = accepted(document({{"name", "ssl/aes"}, {"name", "my upstream"}}));
    EXPECT_EQ(unjudged.text("_nameAlgorithm"), "my upstream");
    EXPECT_EQ(unjudged.boolean("_areFilenamesEncrypted"), true);
}

TEST(ServedElementsTest, KeySizeIsOneOfThree)
{
    for (const char *const size : {"128", "192", "256"})
        EXPECT_EQ(accepted(completeWith("keySize", size)).integer("_keySize"), std::stoll(size));
    for (const std::string size :
         {"0", "", "-256", "160", "512", "255", "key", "99999999999999999999"})
        EXPECT_EQ(refusalOf(completeWith("keySize", size)), "Wrong key size: " + size + ".");
}

TEST(ServedElementsTest, KeySize256FollowedByLettersPasses)
{
    EXPECT_EQ(accepted(completeWith("keySize", "256 bits")).integer("_keySize"), 256);
}

TEST(ServedElementsTest, BlockSizeIsRefusedForAPositiveRemainderOnly)
{
    for (const char *const size : {"0", "-16", "-1", "-1000", "16", "1024", "4096", "1048576"})
        EXPECT_EQ(accepted(completeWith("blockSize", size)).integer("_blockSize"),
                  std::stoll(size));
    EXPECT_EQ(accepted(completeWith("blockSize", "-99999999999999999999")).integer("_blockSize"),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(refusalOf(completeWith("blockSize", "1000")), "Wrong block size: 1000.");
    EXPECT_EQ(refusalOf(completeWith("blockSize", "15 bytes")), "Wrong block size: 15 bytes.");
    EXPECT_EQ(refusalOf(completeWith("blockSize", "99999999999999999999")),
              "Wrong block size: 99999999999999999999.");
}

struct Feature
{
    const char *element;
    const char *key;
    const char *message;
};

class FeatureTest : public testing::TestWithParam<Feature>
{
};

TEST_P(FeatureTest, PassesWhenOffAndIsRefusedWhenOn)
{
    for (const char *const off : {"0", "false", "", "no"})
        EXPECT_EQ(accepted(completeWith(GetParam().element, off)).boolean(GetParam().key), false);
    for (const char *const on : {"1", "yes", "true", "7"})
        EXPECT_EQ(refusalOf(completeWith(GetParam().element, on)), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Features, FeatureTest,
    testing::Values(Feature{"uniqueIV", "_uniqueIV", "\"Unique IV\" not supported."},
                    Feature{"chainedNameIV", "_chainedNameIV",
                            "\"Chained Name IV\" not supported."},
                    Feature{"externalIVChaining", "_externalIVChaining",
                            "\"External IV Chaining\" not supported."}),
    [](const auto &parameter) { return std::string(parameter.param.element); });

TEST(ServedElementsTest, BlockMACBytesPassBelowOne)
{
    EXPECT_EQ(accepted(completeWith("blockMACBytes", "-8")).integer("_blockMACBytes"), -8);
    EXPECT_EQ(refusalOf(completeWith("blockMACBytes", "1")), "Wrong \"Block MAC Bytes\": 1.");
    EXPECT_EQ(refusalOf(completeWith("blockMACBytes", "8 bytes")),
              "Wrong \"Block MAC Bytes\": 8 bytes.");
}

TEST(ServedElementsTest, BlockMACRandomBytesPassBelowOne)
{
    EXPECT_EQ(accepted(completeWith("blockMACRandBytes", "-8")).integer("_blockMACRandomBytes"),
              -8);
    EXPECT_EQ(refusalOf(completeWith("blockMACRandBytes", "8")),
              "Wrong \"Block MAC Random Bytes\": 8.");
}

TEST(ServedElementsTest, AllowHolesIsKeptUnjudged)
{
    EXPECT_EQ(accepted(completeWith("allowHoles", "0")).boolean("_allowHoles"), false);
    EXPECT_EQ(accepted(completeWith("allowHoles", "yes")).boolean("_allowHoles"), true);
}

TEST(ServedElementsTest, EncodedKeyMustHaveTheStatedLength)
{
    EXPECT_EQ(refusalOf(completeWith("encodedKeySize", "51")), "Wrong encoded key.");
    EXPECT_EQ(refusalOf(completeWith("encodedKeySize", "-52")), "Wrong encoded key.");
    EXPECT_EQ(refusalOf(completeWith("encodedKeySize", "99999999999999999999")),
              "Wrong encoded key.");
}

TEST(ServedElementsTest, EncodedKeyThatIsNotBase64IsRefused)
{
    EXPECT_EQ(refusalOf(completeWith("encodedKeyData", "!not base64!")), "Wrong encoded key.");
    EXPECT_EQ(refusalOf(completeWith("encodedKeyData", "")), "Wrong encoded key.");
}

TEST(ServedElementsTest, EncodedKeyBeforeItsSizeIsRefused)
{
    EXPECT_EQ(refusalOf(document({{"encodedKeyData", "QUJD"}, {"encodedKeySize", "3"}})),
              "Wrong encoded key.");
    EXPECT_EQ(accepted(document({{"encodedKeySize", "3"}, {"encodedKeyData", "QUJD"}}))
                  .text("_encodedKey"),
              "QUJD");
}

TEST(ServedElementsTest, EmptyKeyWithoutASizePasses)
{
    EXPECT_EQ(accepted(document({{"encodedKeyData", ""}})).text("_encodedKey"), "");
}

TEST(ServedElementsTest, SaltMustHaveTheStatedLength)
{
    EXPECT_EQ(refusalOf(completeWith("saltLen", "32")), "Wrong SALT.");
    EXPECT_EQ(refusalOf(completeWith("saltData", "?")), "Wrong SALT.");
}

TEST(ServedElementsTest, SaltBeforeItsLengthIsRefused)
{
    EXPECT_EQ(refusalOf(document({{"saltData", "QUJD"}, {"saltLen", "3"}})), "Wrong SALT.");
}

TEST(ServedElementsTest, IterationsAndDurationAreKeptUnjudged)
{
    EXPECT_EQ(accepted(completeWith("kdfIterations", "-5")).integer("_KDFIterations"), -5);
    EXPECT_EQ(
        accepted(completeWith("kdfIterations", "99999999999999999999")).integer("_KDFIterations"),
        std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(accepted(completeWith("desiredKDFDuration", "x")).integer("_desiredKDFDuration"), 0);
}

} // namespace

} // namespace nimbrel::test
