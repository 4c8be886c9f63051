#include "config/InformationFile.h"

#include "crypto/Bytes.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <array>
#include <cerrno>
#include <gtest/gtest.h>
#include <openssl/evp.h>

namespace nimbrel::test {

namespace {

std::string sha256(std::string_view text)
{
    std::array<std::uint8_t, 32> digest{};
    std::size_t length = digest.size();
    if (EVP_Q_digest(nullptr, "SHA256", nullptr, text.data(), text.size(), digest.data(),
                     &length) != 1)
        return "";
    return toHex(digest);
}

TEST(InformationFileTest, TextIsExact)
{
    EXPECT_EQ(informationText().size(), 607U);
    EXPECT_EQ(sha256(informationText()),
              "d9a930ef12ca18ce33b3e9e3861e60d5f42c845fb72541b16192d4d27dcc9ec2");
}

TEST(InformationFileTest, EveryLineEndsInCarriageReturnAndLineFeed)
{
    const std::string_view text = informationText();
    ASSERT_TRUE(text.ends_with("\r\n"));
    for (std::size_t i = 0; i < text.size(); ++i)
        EXPECT_EQ(text[i] == '\n', i > 0 && text[i - 1] == '\r') << i;
}

TEST(InformationFileTest, FileHoldsTheTextUnderItsName)
{
    const TempFolder folder;
    EXPECT_EQ(writeInformationFile(folder.path()), std::nullopt);
    EXPECT_EQ(readFile(folder / "!IMPORTANT Nimbrel Information.txt"), informationText());
    EXPECT_EQ(writeInformationFile(folder.path(), "anders \xC3\xBC"), std::nullopt);
    EXPECT_EQ(readFile(folder / "!IMPORTANT Nimbrel Information.txt"), "anders \xC3\xBC");
}

TEST(InformationFileTest, MissingFolderIsAnError)
{
    const TempFolder folder;
    const auto error = writeInformationFile(folder / "none");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, ENOENT);
}

} // namespace

} // namespace nimbrel::test
