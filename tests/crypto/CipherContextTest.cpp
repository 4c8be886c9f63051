#include "crypto/CipherContext.h"

#include "crypto/NistVectors.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

using Form = CipherContext::Form;

CipherContext contextOf(Form form, std::string_view key)
{
    return CipherContext::make(form, fromHex(key)).value();
}

Bytes updated(CipherContext &context, std::string_view hex)
{
    Bytes bytes = fromHex(hex);
    EXPECT_TRUE(context.update(bytes, bytes.data()));
    return bytes;
}

} // namespace

TEST(CipherContextTest, ChainedEncryptionGivesTheVectorsOfNist)
{
    for (const NistCase &expected : nist) {
        CipherContext cbc = contextOf(Form::CbcEncryption, expected.key);
        ASSERT_TRUE(cbc.start(vectorOfHex(nistVector)));
        EXPECT_EQ(toHex(updated(cbc, nistPlain)), expected.cbc);
    }
}

TEST(CipherContextTest, ChainedDecryptionGivesThePlainTextOfNist)
{
    for (const NistCase &expected : nist) {
        CipherContext cbc = contextOf(Form::CbcDecryption, expected.key);
        ASSERT_TRUE(cbc.start(vectorOfHex(nistVector)));
        EXPECT_EQ(toHex(updated(cbc, expected.cbc)), nistPlain);
    }
}

TEST(CipherContextTest, CodebookEncryptionGivesTheVectorsOfNist)
{
    for (const NistCase &expected : nist) {
        CipherContext codebook = contextOf(Form::EcbEncryption, expected.key);
        EXPECT_EQ(toHex(updated(codebook, nistPlain)), expected.ecb);
    }
}

TEST(CipherContextTest, AChainCarriesOnOverPieces)
{
    CipherContext cbc = contextOf(Form::CbcEncryption, nist[2].key);
    ASSERT_TRUE(cbc.start(vectorOfHex(nistVector)));
    const std::string first = toHex(updated(cbc, nistPlain.substr(0, 32)));
    const std::string rest = toHex(updated(cbc, nistPlain.substr(32)));
    EXPECT_EQ(first + rest, nist[2].cbc);
}

TEST(CipherContextTest, AStartForgetsTheChainBefore)
{
    CipherContext cbc = contextOf(Form::CbcEncryption, nist[2].key);
    ASSERT_TRUE(cbc.start(Vector{}));
    EXPECT_NE(toHex(updated(cbc, nistPlain)), nist[2].cbc);
    ASSERT_TRUE(cbc.start(vectorOfHex(nistVector)));
    EXPECT_EQ(toHex(updated(cbc, nistPlain)), nist[2].cbc);
}

TEST(CipherContextTest, AnIncompleteCipherBlockIsRefusedAndLeavesNothingBehind)
{
    CipherContext cbc = contextOf(Form::CbcEncryption, nist[2].key);
    Bytes odd = noiseBytes(17);
    ASSERT_TRUE(cbc.start(vectorOfHex(nistVector)));
    EXPECT_FALSE(cbc.update(odd, odd.data()));
    EXPECT_EQ(toHex(updated(cbc, nistPlain)), nist[2].cbc);
}

} // namespace nimbrel::test
