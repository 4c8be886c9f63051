#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/StoredName.h"
#include "crypto/TestKeys.h"
#include "crypto/Utf8.h"

#include <gtest/gtest.h>

#include <array>

namespace nimbrel::test {

namespace {

class NBCryptorNamesTest : public testing::Test
{
protected:
    reference::Key key{noiseKeyData(256)};
    NBCryptor cryptor = cryptorWithData(key.data, 4096);

    [[nodiscard]] std::string encoded(std::string_view name) const
    {
        return cryptor.encodeString(name).value();
    }

    // The stored form of any bytes, made by the reference.
    [[nodiscard]] std::string storedFormOf(const Bytes &name) const
    {
        const std::uint64_t code = reference::mac16(name, key);
        Bytes stored = {static_cast<std::uint8_t>(code >> 8U), static_cast<std::uint8_t>(code)};
        const Bytes cipher = reference::stream(name, code, key, reference::Direction::Encrypt);
        stored.insert(stored.end(), cipher.begin(), cipher.end());
        return base64EncodedASCIIString(changeBase2(stored, 8, 6, true));
    }

    // The plain form of any text, made step by step.
    [[nodiscard]] std::optional<std::string> plainFormOf(std::string_view text) const
    {
        const Bytes stored = changeBase2(dataWithBase64ASCIIString(text), 6, 8, false);
        if (stored.size() < 2)
            return std::nullopt;
        const std::uint64_t code = std::uint64_t{stored[0]} << 8U | stored[1];
        const Bytes name = reference::stream({stored.begin() + 2, stored.end()}, code, key,
                                             reference::Direction::Decrypt);
        if (reference::mac16(name, key) != code || !isUtf8(textOf(name)))
            return std::nullopt;
        return std::string(textOf(name));
    }

    [[nodiscard]] std::optional<std::string> decodedName(std::string_view stored) const
    {
        std::string plain = "left from before";
        if (cryptor.decodeName(stored, plain))
            return plain;
        EXPECT_EQ(plain, "");
        return std::nullopt;
    }
};

std::string nameOfLength(std::size_t length)
{
    std::string name;
    for (std::size_t i = 0; i < length; ++i)
        name.push_back(static_cast<char>('a' + (i * 7 + length) % 26));
    return name;
}

} // namespace

TEST_F(NBCryptorNamesTest, TheEmptyNameHasThreeCharacters)
{
    const std::string stored = encoded("");
    EXPECT_EQ(stored.size(), 3U);
    EXPECT_EQ(cryptor.decodeString(stored), "");
}

TEST_F(NBCryptorNamesTest, AThreeByteNameHasSevenCharactersTheLastWithFourBits)
{
    const std::string stored = encoded("abc");
    ASSERT_EQ(stored.size(), 7U);
    EXPECT_LT(dataWithBase64ASCIIString(stored).back(), 16);
}

TEST_F(NBCryptorNamesTest, EveryLengthIsTheReferenceAndComesBack)
{
    for (std::size_t length = 0; length <= 255; ++length) {
        const std::string name = nameOfLength(length);
        const std::string stored = encoded(name);
        EXPECT_EQ(stored, storedFormOf(Bytes(name.begin(), name.end())));
        EXPECT_EQ(stored.size(), (8 * (length + 2) + 5) / 6);
        EXPECT_EQ(cryptor.decodeString(stored), name);
    }
}

TEST_F(NBCryptorNamesTest, TheLongestNameThatFitsHasAHundredAndEightyNineBytes)
{
    EXPECT_EQ(encoded(nameOfLength(189)).size(), 255U);
    EXPECT_EQ(encoded(nameOfLength(190)).size(), 256U);
}

TEST_F(NBCryptorNamesTest, EveryStoredNameIsCanonical)
{
    for (std::size_t length = 0; length <= 255; ++length)
        EXPECT_TRUE(isCanonicalStoredName(encoded(nameOfLength(length)))) << length;
}

TEST_F(NBCryptorNamesTest, AChangedLastCharacterWithStrayBitsDecodesAndIsNotCanonical)
{
    std::string stored = encoded("abc");
    Bytes values = dataWithBase64ASCIIString(stored);
    values.back() = static_cast<std::uint8_t>(values.back() | 0x20U);
    const std::string changed = base64EncodedASCIIString(values);
    ASSERT_NE(changed, stored);
    EXPECT_EQ(cryptor.decodeString(changed), "abc");
    EXPECT_FALSE(isCanonicalStoredName(changed));
}

TEST_F(NBCryptorNamesTest, NoStoredNameHasADotOrASlash)
{
    for (std::size_t i = 0; i < 2000; ++i)
        EXPECT_EQ(encoded("name " + std::to_string(i)).find_first_of("./"), std::string::npos);
}

TEST_F(NBCryptorNamesTest, TheSameKeyGivesTheSameNameInEveryFolder)
{
    const NBCryptor other = cryptorWithData(key.data, 1024);
    EXPECT_EQ(other.encodeString("Reports"), encoded("Reports"));
    EXPECT_EQ(other.decodeString(encoded("Reports")), "Reports");
}

TEST_F(NBCryptorNamesTest, NamesThatDifferInNormalisationStayDifferent)
{
    const std::string composed = "\xC3\xA4";
    const std::string decomposed = "a\xCC\x88";
    EXPECT_NE(encoded(composed), encoded(decomposed));
    EXPECT_EQ(cryptor.decodeString(encoded(composed)), composed);
    EXPECT_EQ(cryptor.decodeString(encoded(decomposed)), decomposed);
}

TEST_F(NBCryptorNamesTest, TextsOfFewerThanTwoBytesAreNoName)
{
    for (const std::string_view text : {"", ",", "a", ",,", "zz", "A-"})
        EXPECT_FALSE(cryptor.decodeString(text)) << text;
}

// One text in 65,536 passes the test of the code by chance; the key is fixed, so these don't.
TEST_F(NBCryptorNamesTest, TextsWithOtherCharactersAreNoName)
{
    for (const std::string_view text :
         {"hello.txt", ".DS_Store", "Thumbs.db", "mit Umläuten", "a b c", "~$report.docx", "{}[]"})
        EXPECT_FALSE(cryptor.decodeString(text)) << text;
}

TEST_F(NBCryptorNamesTest, AChangedCharacterIsNoName)
{
    const std::string stored = encoded("quarterly report");
    for (std::size_t i = 0; i < stored.size(); ++i) {
        std::string changed = stored;
        changed[i] = changed[i] == 'a' ? 'b' : 'a';
        EXPECT_NE(cryptor.decodeString(changed), "quarterly report") << i;
    }
}

TEST_F(NBCryptorNamesTest, ANameOfAnotherKeyIsNoName)
{
    const NBCryptor other = cryptorWithData(noiseKeyData(256, 2), 4096);
    EXPECT_FALSE(other.decodeString(encoded("quarterly report")));
}

TEST_F(NBCryptorNamesTest, BytesThatAreNotUtf8AreNoName)
{
    for (const Bytes &name : {Bytes{0xFF}, Bytes{0xC3}, Bytes{0xED, 0xA0, 0x80}})
        EXPECT_FALSE(cryptor.decodeString(storedFormOf(name)));
    EXPECT_EQ(cryptor.decodeString(storedFormOf({0xC3, 0xA4})), "ä");
}

TEST_F(NBCryptorNamesTest, ANameTakesNotesOfNothingBesideItself)
{
    const std::string first = encoded("first");
    (void)cryptor.decodeString("whatever");
    (void)cryptor.encrypt(noiseBytes(10'000));
    EXPECT_EQ(encoded("first"), first);
}

TEST_F(NBCryptorNamesTest, AppendedNamesAreThoseOfTheReference)
{
    for (std::size_t i = 0; i < 4000; ++i) {
        const Bytes name = noiseBytes(i % 256, i);
        const std::string stored = storedFormOf(name);
        std::string path = "before/";
        ASSERT_TRUE(cryptor.encodeName(textOf(name), path));
        ASSERT_EQ(path, "before/" + stored) << i;
        ASSERT_EQ(cryptor.encodeString(textOf(name)), stored) << i;
        ASSERT_EQ(decodedName(stored), plainFormOf(stored)) << i;
    }
}

TEST_F(NBCryptorNamesTest, NamesOfAllScriptsComeBack)
{
    for (const std::string_view name : {"", "a", "Grüße", "Отчёт", "報告書.txt", "تقرير",
                                        "🙂🙃", "e\xCC\x81", " ", "\n", "%2F"}) {
        EXPECT_EQ(decodedName(encoded(name)), name);
        EXPECT_EQ(cryptor.decodeString(encoded(name)), name);
    }
}

// About one in 65,536 passes the test of the code; then the names have to be the same.
TEST_F(NBCryptorNamesTest, AnyTextsDecodeAsStepByStep)
{
    for (std::size_t i = 0; i < 20'000; ++i) {
        const Bytes noise = noiseBytes(i % 64, i);
        std::string text(textOf(noise));
        if (i % 2 == 0)
            text = base64EncodedASCIIString(noise);
        const std::optional<std::string> plain = plainFormOf(text);
        ASSERT_EQ(decodedName(text), plain) << i;
        ASSERT_EQ(cryptor.decodeString(text), plain) << i;
    }
}

TEST_F(NBCryptorNamesTest, AStringWithRoomStaysWhereItIs)
{
    std::string stored;
    std::string plain;
    stored.reserve(1000);
    plain.reserve(1000);
    const char *storedPlace = stored.data();
    const char *plainPlace = plain.data();
    ASSERT_TRUE(cryptor.encodeName(nameOfLength(255), stored));
    ASSERT_TRUE(cryptor.decodeName(stored, plain));
    EXPECT_EQ(plain, nameOfLength(255));
    EXPECT_EQ(stored.data(), storedPlace);
    EXPECT_EQ(plain.data(), plainPlace);
}

} // namespace nimbrel::test
