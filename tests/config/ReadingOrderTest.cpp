// What follows from the order, the nesting and the form of elements.
#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

TEST(ReadingOrderTest, MinorBeforeAnyNameIsRefusedWithThePrintedFormOfNothing)
{
    EXPECT_EQ(refusalOf(document({{"minor", "0"}})), "Wrong name algorithm: (null).");
}

TEST(ReadingOrderTest, MajorBeforeAnyNameCountsAsTheNames)
{
    const auto preferences = accepted(document({{"major", "7"}, {"name", "ssl/aes"}}));
    EXPECT_EQ(preferences.integer("_nameAlgorithmMajor"), 7);
    EXPECT_FALSE(preferences.has("_cipherAlgorithmMajor"));
}

TEST(ReadingOrderTest, ThirdNameReplacesTheSecondUntilTheNextMinorJudges)
{
    Elements elements = completeElements();
    elements.emplace_back("name", "nameio/block");
    const auto preferences = accepted(document(elements));
    EXPECT_EQ(preferences.text("_nameAlgorithm"), "nameio/block");
    EXPECT_EQ(preferences.boolean("_areFilenamesEncrypted"), false);
    elements.emplace_back("minor", "1");
    EXPECT_EQ(refusalOf(document(elements)), "Wrong name algorithm: nameio/block.");
}

TEST(ReadingOrderTest, NestingDoesNotMatter)
{
    const auto preferences = accepted("<a><b><name>ssl/aes</name><c><d><major>3</major></d></c>"
                                      "<minor>0</minor><keySize>128</keySize></b></a>");
    EXPECT_EQ(preferences.integer("_cipherAlgorithmMajor"), 3);
    EXPECT_EQ(preferences.integer("_keySize"), 128);
}

TEST(ReadingOrderTest, UnpairedElementsMayComeInAnyOrder)
{
    Elements elements = completeElements();
    std::rotate(elements.begin(), elements.begin() + 6, elements.end());
    EXPECT_EQ(accepted(document(elements)), accepted(document(completeElements())));
}

TEST(ReadingOrderTest, ElementNamesAreComparedByCase)
{
    EXPECT_TRUE(
        accepted(document({{"KeySize", "5"}, {"keysize", "5"}, {"BLOCKSIZE", "5"}})).empty());
}

TEST(ReadingOrderTest, LocalNamesCount)
{
    EXPECT_EQ(accepted("<r xmlns:n='urn:n'><n:keySize>192</n:keySize></r>").integer("_keySize"),
              192);
    EXPECT_EQ(accepted("<n:r><n:keySize>192</n:keySize></n:r>").integer("_keySize"), 192);
}

TEST(ReadingOrderTest, AttributesAndFormatVersionAreNotRead)
{
    const auto preferences =
        accepted("<root keySize='5'><version>20080101</version><creator>Somebody</creator>"
                 "<keySize class_id='3'>256</keySize><unknown>1</unknown></root>");
    EXPECT_EQ(preferences.size(), 1U);
    EXPECT_EQ(preferences.integer("_keySize"), 256);
}

TEST(ReadingOrderTest, WhiteSpaceAroundAValueIsIgnored)
{
    const auto preferences = accepted("<r>\n<encodedKeySize> 3\t</encodedKeySize>"
                                      "<encodedKeyData>\n\nQUJD\r\n</encodedKeyData></r>");
    EXPECT_EQ(preferences.text("_encodedKey"), "QUJD");
}

TEST(ReadingOrderTest, CDATACountsAsEmpty)
{
    EXPECT_EQ(refusalOf("<r><keySize><![CDATA[256]]></keySize></r>"), "Wrong key size: .");
    EXPECT_EQ(accepted("<r><keySize>2<![CDATA[9]]>56</keySize></r>").integer("_keySize"), 256);
}

TEST(ReadingOrderTest, TextComesInPiecesWithReferencesResolved)
{
    EXPECT_EQ(refusalOf("<r><name>a&amp;b&lt;&#99;<!-- no --><?no no?>d&gt;</name></r>"),
              "Wrong cipher algorithm: a&b<cd>.");
}

TEST(ReadingOrderTest, TextBeforeAnInnerElementCountsForTheInnerOne)
{
    EXPECT_EQ(accepted("<r>12<keySize>8</keySize></r>").integer("_keySize"), 128);
    EXPECT_EQ(refusalOf("<r><keySize>256<x/></keySize></r>"), "Wrong key size: .");
}

TEST(ReadingOrderTest, OtherEncodingsAreRead)
{
    EXPECT_EQ(refusalOf("<?xml version='1.0' encoding='ISO-8859-1'?><name>\xE4</name>"),
              "Wrong cipher algorithm: \xC3\xA4.");
    EXPECT_EQ(accepted("\xEF\xBB\xBF<keySize>128</keySize>").integer("_keySize"), 128);
}

TEST(ReadingOrderTest, DocumentWithoutServedElementsGivesAnEmptyDictionary)
{
    EXPECT_TRUE(accepted("<html><body>Hello</body></html>").empty());
}

TEST(ReadingOrderTest, RefusalStopsTheReading)
{
    const std::string text =
        document({{"keySize", "5"}, {"uniqueIV", "1"}, {"blockSize", "16"}, {"keySize", "6"}});
    EXPECT_EQ(refusalOf(text), "Wrong key size: 5.");
    const auto stored = NBNimbrelFSPreferences().preferencesWithText(text, nullptr);
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->size(), 1U);
    EXPECT_EQ(stored->integer("_keySize"), 5);
}

TEST(ReadingOrderTest, RefusalHidesAMalformedRest)
{
    EXPECT_EQ(refusalOf("<r><keySize>5</keySize><<<"), "Wrong key size: 5.");
}

TEST(ReadingOrderTest, WithoutAPlaceForAnErrorNothingTellsOfOne)
{
    const auto stored =
        NBNimbrelFSPreferences().preferencesWithText("<r><keySize>256</keySize><a></b>", nullptr);
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->integer("_keySize"), 256);
}

TEST(ReadingOrderTest, InstanceKeepsItsErrorButNotItsValues)
{
    NBNimbrelFSPreferences reader;
    NBPreferencesError error;
    EXPECT_FALSE(reader.preferencesWithText(document({{"keySize", "5"}}), &error));
    error = {};
    EXPECT_FALSE(reader.preferencesWithText(document({{"blockSize", "16"}}), &error));
    EXPECT_EQ(error.message, "Wrong key size: 5.");
    const auto stored = reader.preferencesWithText(document({{"blockSize", "16"}}), nullptr);
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->size(), 1U);
}

TEST(ReadingOrderTest, MalformedFileGivesTheParsersOwnError)
{
    const NBPreferencesError error = refused("<r>\n<a></b></r>");
    EXPECT_EQ(error.domain, xmlErrorDomain);
    EXPECT_EQ(error.code, 76);
    EXPECT_EQ(error.message, "Opening and ending tag mismatch: a line 2 and b");
    EXPECT_EQ(refused("").message, "Document is empty");
    EXPECT_EQ(refused({}).code, 4);
}

TEST(ReadingOrderTest, FirstOfSeveralErrorsTells)
{
    EXPECT_EQ(refused("<r>&x;</s>").message, "Entity 'x' not defined");
}

} // namespace

} // namespace nimbrel::test
