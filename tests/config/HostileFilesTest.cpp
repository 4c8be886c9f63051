// Files that somebody made to harm the reader: each ends in an error, soon, and prints nothing.
#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"
#include "config/XmlReader.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace nimbrel::test {

namespace {

std::string repeated(std::string_view text, std::size_t count)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

// The message of a bound; throws when the error is another.
std::string boundOf(std::string_view text)
{
    const NBPreferencesError error = refused(text);
    if (error.domain != boundErrorDomain || error.code != -1)
        throw std::runtime_error("no bound but: " + error.message);
    return error.message;
}

TEST(HostileFilesTest, EntityBombIsRefusedUnexpanded)
{
    std::string bomb = "<!DOCTYPE r [<!ENTITY e0 'boom'>";
    for (int i = 1; i < 30; ++i)
        bomb += fmt::format("<!ENTITY e{} '&e{};&e{};&e{};'>", i, i - 1, i - 1, i - 1);
    EXPECT_EQ(boundOf(bomb + "]><r><name>&e29;</name></r>"),
              "Declarations of entities are not supported.");
}

TEST(HostileFilesTest, ExternalEntityIsNeverOpened)
{
    const TempFolder folder;
    writeFile(folder / "secret", "ssl/aes-but-secret");
    EXPECT_EQ(boundOf(fmt::format("<!DOCTYPE r [<!ENTITY x SYSTEM 'file://{}'>]>"
                                  "<r><name>&x;</name></r>",
                                  folder / "secret")),
              "Declarations of entities are not supported.");
}

TEST(HostileFilesTest, ParameterAndUnparsedEntitiesAreRefused)
{
    EXPECT_EQ(boundOf("<!DOCTYPE r [<!ENTITY % p SYSTEM 'file:///etc/passwd'>%p;]><r/>"),
              "Declarations of entities are not supported.");
    EXPECT_EQ(boundOf("<!DOCTYPE r [<!NOTATION n SYSTEM 'n'>"
                      "<!ENTITY x SYSTEM 'file:///etc/passwd' NDATA n>]><r/>"),
              "Declarations of entities are not supported.");
}

TEST(HostileFilesTest, ExternalSubsetIsNotLoaded)
{
    const TempFolder folder;
    writeFile(folder / "evil.dtd", "<!ENTITY x '256'>");
    const std::string text = fmt::format("<!DOCTYPE r SYSTEM 'file://{}'>"
                                         "<r><keySize>&x;</keySize></r>",
                                         folder / "evil.dtd");
    EXPECT_EQ(refusalOf(text), "Wrong key size: .");
}

TEST(HostileFilesTest, UndeclaredEntityIsAnError)
{
    EXPECT_EQ(refused("<r>&x;</r>").domain, xmlErrorDomain);
}

TEST(HostileFilesTest, AttributeDefaultsAreRefused)
{
    EXPECT_EQ(boundOf("<!DOCTYPE r [<!ATTLIST r a (x|y) 'x' b CDATA '2'>]><r/>"),
              "Declarations of attributes are not supported.");
}

TEST(HostileFilesTest, IncludesAndStylesheetsAreJustElements)
{
    EXPECT_TRUE(accepted("<?xml-stylesheet href='/etc/passwd'?><r "
                         "xmlns:xi='http://www.w3.org/2001/XInclude'>"
                         "<xi:include href='/etc/passwd' parse='text'/></r>")
                    .empty());
}

TEST(HostileFilesTest, NestingHasABound)
{
    const std::size_t bound = XmlReader::maximumDepth;
    EXPECT_TRUE(accepted(repeated("<a>", bound) + repeated("</a>", bound)).empty());
    EXPECT_EQ(boundOf(repeated("<a>", bound + 1) + repeated("</a>", bound + 1)),
              "Elements are nested more than 64 deep.");
    EXPECT_EQ(boundOf(repeated("<a>", 100'000)), "Elements are nested more than 64 deep.");
}

TEST(HostileFilesTest, SizeHasABound)
{
    const std::string element = "<name>ssl/aes</name>";
    std::string text = "<r>" + element;
    while (text.size() + 10 < XmlReader::maximumSize)
        text += "<a/>";
    text += "</r>";
    EXPECT_EQ(accepted(text).size(), 1U);
    text.resize(XmlReader::maximumSize + 1, ' ');
    EXPECT_EQ(boundOf(text), "The file is larger than 1048576 bytes.");
}

TEST(HostileFilesTest, OneTagHasABound)
{
    std::string tag = "<r";
    for (int i = 0; tag.size() < 200'000; ++i)
        tag += fmt::format(" a{}=''", i);
    EXPECT_EQ(boundOf(tag + "/>"), "A part of the file is longer than 16384 bytes.");
    EXPECT_EQ(boundOf("<r><name>" + std::string(100'000, 'x') + "</name></r>"),
              "A part of the file is longer than 16384 bytes.");
}

TEST(HostileFilesTest, TextOfOneElementHasABound)
{
    const std::string piece = std::string(15'000, 'x') + "<!-- -->";
    EXPECT_EQ(boundOf("<r><name>" + repeated(piece, 60) + "</name></r>"),
              "An element's text is longer than 65536 bytes.");
    EXPECT_EQ(boundOf("<r>" + repeated(std::string(15'000, ' ') + "<a>", 6)),
              "An element's text is longer than 65536 bytes.");
}

TEST(HostileFilesTest, HugeNumbersStickAndAreJudged)
{
    const std::string huge(10'000, '9');
    const auto preferences =
        accepted(document({{"kdfIterations", huge}, {"blockSize", "-" + huge}, {"saltLen", huge}}));
    EXPECT_EQ(preferences.integer("_saltLength"), std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(judgeLimits(preferences).has_value());
}

TEST(HostileFilesTest, ZeroBytesAreAnError)
{
    std::string text = document(completeElements());
    text[text.find("4096")] = '\0';
    EXPECT_EQ(refused(text).domain, xmlErrorDomain);
    EXPECT_EQ(refused(std::string(4096, '\0')).domain, xmlErrorDomain);
}

TEST(HostileFilesTest, EveryTruncationIsAnErrorAndNoCrash)
{
    std::string text = document(completeElements());
    text.resize(text.rfind('>') + 1);
    for (std::size_t length = 0; length < text.size(); ++length) {
        NBPreferencesError error;
        EXPECT_FALSE(NBNimbrelFSPreferences().preferencesWithText(text.substr(0, length), &error))
            << length;
        EXPECT_FALSE(error.message.empty()) << length;
    }
    EXPECT_EQ(accepted(text).size(), 21U);
}

TEST(HostileFilesTest, EveryDamagedByteIsReadWithoutACrash)
{
    const std::string text = document(completeElements());
    for (std::size_t place = 0; place < text.size(); ++place)
        for (const char byte : {'\0', '<', '&', '\xFF', ']'}) {
            std::string damaged = text;
            damaged[place] = byte;
            NBPreferencesError error;
            const auto preferences = NBNimbrelFSPreferences().preferencesWithText(damaged, &error);
            EXPECT_NE(preferences.has_value(), !error.message.empty()) << place;
        }
}

TEST(HostileFilesTest, WrongEncodingsAreErrors)
{
    EXPECT_EQ(refused("<?xml version='1.0' encoding='klingon'?><r/>").message,
              "Unsupported encoding klingon");
    EXPECT_EQ(refused("<r>\xC3\x28\xFF</r>").domain, xmlErrorDomain);
    EXPECT_EQ(refused("<?xml version='1.0' encoding='EUC-JP'?><r>\x8F\xFF\xFF</r>").domain,
              xmlErrorDomain);
    EXPECT_EQ(refused("<?xml version='1.0' encoding='GB18030'?><r>\xFF\xFF\xFF</r>").domain,
              xmlErrorDomain);
}

TEST(HostileFilesTest, NothingIsPrinted)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    for (const char *const text :
         {"", "<", "<r><a></b></r>", "<r>&x;</r>", "<n:r/>", "<r a='1' a='2'/>", "<r>\xFF\xFE</r>",
          "<?xml version='1.0' encoding='klingon'?><r/>", "<!DOCTYPE r [<!ENTITY x 'y'>]><r/>",
          "<?xml version='1.0' encoding='GB18030'?><r>\xFF\xFF\xFF</r>",
          "<?xml version='1.0' encoding='EUC-JP'?><r>\x8F\xFF\xFF</r>",
          "<!DOCTYPE r SYSTEM 'nowhere.dtd' [%p;]><r>&x;</r>"}) {
        NBPreferencesError error;
        static_cast<void>(NBNimbrelFSPreferences().preferencesWithText(text, &error));
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(HostileFilesTest, ExceptionsOfTheEventsComeOutOfTheReader)
{
    XmlReader reader({.foundCharacters = [](XmlReader &, std::string_view) {},
                      .didEndElement =
                          [](XmlReader &, std::string_view name) {
                              throw std::runtime_error(std::string(name));
                          }});
    EXPECT_THROW(static_cast<void>(reader.parse("<r><a/><b/></r>")), std::runtime_error);
}

TEST(HostileFilesTest, ThreadsReadAtTheSameTime)
{
    const std::string good = document(completeElements());
    std::vector<std::thread> threads;
    std::vector<int> counts(4);
    for (int &count : counts)
        threads.emplace_back([&count, &good] {
            for (int i = 0; i < 200; ++i) {
                NBPreferencesError error;
                NBNimbrelFSPreferences first;
                NBNimbrelFSPreferences second;
                count += first.preferencesWithText(good, &error) ? 1 : 0;
                count += second.preferencesWithText("<r><a></b></r>", &error) ? 0 : 1;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counts, std::vector<int>(4, 400));
}

} // namespace

} // namespace nimbrel::test
