// Archives that somebody made, or damage made, to harm the reader: each ends in records or an
// error, soon.
#include "platform/KeyedArchive.h"
#include "platform/PropertyListShape.h"

#include "support/BinaryPropertyList.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace nimbrel::test {

namespace {

using Reference = BinaryPropertyList::Reference;

std::string troubleOf(const std::string &data)
{
    const auto bytes = QByteArray::fromStdString(data);
    const QString trouble = propertyListTrouble(bytes).value_or(QStringLiteral("none"));
    const auto result = unarchivedRecords(bytes);
    if (!std::holds_alternative<KeyedArchiveError>(result))
        return "records";
    return trouble.toStdString();
}

std::string goodArchive()
{
    const ArchivedRecord record = {"NBNimbrelVolume",
                                   {{"version", 1},
                                    {"root", std::string(300, 'r')},
                                    {"label", std::u16string(u"Tr\u00E9sor \U0001F600")},
                                    {"configPath", ArchivedRecord::Wrapped{"/x"}},
                                    {"storePassword", true},
                                    {"automount", ArchivedRecord::Nothing{}}}};
    ArchivedRecord old = record;
    old.className = "Volume";
    return keyedArchive({record, old, record});
}

std::string ownArchive()
{
    KeyedRecord record(QStringLiteral("NBNimbrelVolume"));
    record.encodeInteger(QStringLiteral("version"), 1);
    record.encodeObject(QStringLiteral("root"), QStringLiteral("/home/me/Safe.nmc"));
    record.encodeObject(QStringLiteral("label"), QStringLiteral(u"T\u00E9"));
    record.encodeBool(QStringLiteral("automount"), true);
    return archivedData({record, record}).toStdString();
}

class Mutator final
{
public:
    explicit Mutator(unsigned seed) : _dice(seed) {}

    std::string mutated(std::string text)
    {
        const int kind = static_cast<int>(pick(5));
        if (kind == 0)
            text.resize(pick(text.size()));
        else if (kind == 1)
            text.insert(pick(text.size()), noise(1 + pick(9), _dice()));
        else if (kind == 2)
            swapOffsets(text);
        else
            flipBits(text);
        return text;
    }

private:
    std::size_t pick(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(_dice);
    }
    void flipBits(std::string &text)
    {
        for (std::size_t flips = 1 + pick(4); flips > 0; --flips) {
            char &byte = text[pick(text.size())];
            byte = static_cast<char>(byte ^ (1 << pick(8)));
        }
    }
    // Single bytes near the end: offsets and the trailer.
    void swapOffsets(std::string &text)
    {
        const std::size_t tail = std::min<std::size_t>(text.size(), 200);
        const std::size_t begin = text.size() - tail;
        std::swap(text[begin + pick(tail)], text[begin + pick(tail)]);
    }

    std::mt19937 _dice;
};

TEST(HostileArchiveTest, FiveHundredMutationsGiveRecordsOrAnError)
{
    int refused = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        const std::string good = seed % 2 == 0 ? goodArchive() : ownArchive();
        const std::string data = Mutator(seed).mutated(good);
        const auto result = unarchivedRecords(QByteArray::fromStdString(data));
        const auto *const error = std::get_if<KeyedArchiveError>(&result);
        if (error == nullptr)
            continue;
        ++refused;
        EXPECT_FALSE(error->message.isEmpty()) << seed;
    }
    EXPECT_GT(refused, 100); // the mutations do meet what matters
}

TEST(HostileArchiveTest, EveryTruncationIsRefused)
{
    const std::string good = ownArchive();
    EXPECT_EQ(troubleOf(good), "records");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_NE(troubleOf(good.substr(0, size)), "records") << size;
}

TEST(HostileArchiveTest, EveryByteSetToEveryBoundIsSurvived)
{
    const std::string good = ownArchive();
    for (std::size_t i = 0; i < good.size(); ++i)
        for (const char byte : {'\x00', '\x0F', '\x7F', '\x80', '\xFF'}) {
            std::string data = good;
            data[i] = byte;
            EXPECT_FALSE(troubleOf(data).empty());
        }
}

TEST(HostileArchiveTest, DeepNestingIsRefused)
{
    BinaryPropertyList list;
    Reference inner = list.array({});
    for (int depth = 0; depth < 100'000; ++depth)
        inner = list.array({inner});
    EXPECT_EQ(troubleOf(list.text(inner)), "it is nested too deeply");
}

TEST(HostileArchiveTest, SixteenLevelsAreTheBound)
{
    BinaryPropertyList list;
    Reference inner = list.array({});
    for (int depth = 2; depth <= 16; ++depth)
        inner = list.array({inner});
    EXPECT_EQ(troubleOf(list.text(inner)), "none");
    EXPECT_EQ(troubleOf(list.text(list.array({inner}))), "it is nested too deeply");
    // Also where the deep part has been seen before at a lesser depth.
    EXPECT_EQ(troubleOf(list.text(list.array({list.ascii("x"), list.array({inner})}))),
              "it is nested too deeply");
}

TEST(HostileArchiveTest, BillionLaughsAreRefused)
{
    BinaryPropertyList list;
    Reference inner = list.ascii("ha");
    for (int level = 0; level < 12; ++level)
        inner = list.array(std::vector<Reference>(10, inner));
    EXPECT_EQ(troubleOf(list.text(inner)), "it holds too much");
}

TEST(HostileArchiveTest, LargeTextSharedManyTimesIsRefused)
{
    BinaryPropertyList list;
    const Reference text = list.ascii(std::string(1'000'000, 'x'));
    EXPECT_EQ(troubleOf(list.text(list.array(std::vector<Reference>(1'000, text)))),
              "it holds too much");
}

TEST(HostileArchiveTest, CyclesAreRefused)
{
    BinaryPropertyList list;
    EXPECT_EQ(troubleOf(list.text(list.array({0}))), "an object contains itself");
    BinaryPropertyList pair;
    pair.array({1});
    EXPECT_EQ(troubleOf(pair.text(pair.array({0}))), "an object contains itself");
    BinaryPropertyList dictionary;
    const auto key = dictionary.ascii("k");
    EXPECT_EQ(troubleOf(dictionary.text(dictionary.dictionary({{key, 1}}))),
              "an object contains itself");
}

TEST(HostileArchiveTest, HugeLengthsAreRefused)
{
    for (const int kind : {0x40, 0x50, 0x60, 0xA0, 0xD0})
        for (const int width : {0, 1, 2, 3, 4, 15}) {
            BinaryPropertyList list;
            const std::string marker = {static_cast<char>(kind | 0x0F),
                                        static_cast<char>(0x10 | width)};
            EXPECT_EQ(troubleOf(list.text(list.raw(marker + std::string(16, '\xFF')))),
                      "a length is damaged")
                << kind << " " << width;
        }
}

TEST(HostileArchiveTest, LengthThatIsNoIntegerIsRefused)
{
    BinaryPropertyList list;
    EXPECT_EQ(troubleOf(list.text(list.raw("\x5F\x51xx"))), "a length is damaged");
    BinaryPropertyList end;
    EXPECT_EQ(troubleOf(end.text(end.raw("\x5F"))), "a length is damaged");
}

TEST(HostileArchiveTest, ContentNeverReachesIntoTheTable)
{
    for (const char *object : {"\x52x", "\x61x", "\x42x", "\xA1", "\xD1"}) {
        BinaryPropertyList list;
        EXPECT_EQ(troubleOf(list.text(list.raw(object))), "a length is damaged") << object;
    }
    for (const char *object : {"\x11x", "\x13xxxxxxx", "\x14xxxxxxxxxxxxxxx", "\x22xxx", "\x33x"}) {
        BinaryPropertyList list;
        EXPECT_EQ(troubleOf(list.text(list.raw(object))), "a number is damaged") << object;
    }
    BinaryPropertyList list;
    EXPECT_EQ(troubleOf(list.text(list.raw("\x81x"))), "a reference is damaged");
}

TEST(HostileArchiveTest, UnknownKindsAreRefused)
{
    for (const char *object : {"\x01", "\x0F", "\x70", "\x90", "\xB0", "\xC0", "\xE0", "\xF0"}) {
        BinaryPropertyList list;
        EXPECT_EQ(troubleOf(list.text(list.raw(object))), "it holds a value of an unknown kind");
    }
    BinaryPropertyList null;
    EXPECT_EQ(troubleOf(null.text(null.null())), "it holds a value of an unknown kind");
}

TEST(HostileArchiveTest, DamagedTextsAreRefused)
{
    BinaryPropertyList ascii;
    EXPECT_EQ(troubleOf(ascii.text(ascii.ascii(std::string_view("a\0b", 3)))), "a text is damaged");
    EXPECT_EQ(troubleOf(ascii.text(ascii.ascii("\xC3\xA9"))), "a text is damaged");
    for (const std::u16string &text :
         {std::u16string(u"a\0b", 3), std::u16string(u"\xD83D"), std::u16string(u"\xD83Dx"),
          std::u16string(u"\xDE00"), std::u16string(u"\xD83D\xD83D\xDE00")}) {
        BinaryPropertyList utf16;
        EXPECT_EQ(troubleOf(utf16.text(utf16.utf16(text))), "a text is damaged");
    }
}

TEST(HostileArchiveTest, NumbersThatDoNotFitAreRefused)
{
    BinaryPropertyList list;
    EXPECT_EQ(troubleOf(list.text(list.raw("\x14" + std::string(16, '\x01')))),
              "a number is too large");
    EXPECT_EQ(troubleOf(list.text(list.raw("\x15" + std::string(32, '\x01')))),
              "a number is damaged");
}

TEST(HostileArchiveTest, KeysAreTexts)
{
    BinaryPropertyList list;
    const auto number = list.integer(1);
    EXPECT_EQ(troubleOf(list.text(list.dictionary({{number, number}}))), "a key is no text");
}

TEST(HostileArchiveTest, DamagedTrailersAreRefused)
{
    BinaryPropertyList list;
    const auto root = list.ascii("x");
    const auto with = [&](auto change) {
        auto trailer = list.trailer(root);
        change(trailer);
        return troubleOf(list.text(trailer));
    };
    EXPECT_EQ(with([](auto &t) { t.offsetWidth = 0; }), "its trailer has impossible widths");
    EXPECT_EQ(with([](auto &t) { t.offsetWidth = 9; }), "its trailer has impossible widths");
    EXPECT_EQ(with([](auto &t) { t.referenceWidth = 0; }), "its trailer has impossible widths");
    EXPECT_EQ(with([](auto &t) { t.referenceWidth = 9; }), "its trailer has impossible widths");
    const auto outside = "its table of objects lies outside the data";
    EXPECT_EQ(with([](auto &t) { t.count = 2; }), outside);
    EXPECT_EQ(with([](auto &t) { t.count = ~std::uint64_t{0}; }), outside);
    EXPECT_EQ(with([](auto &t) { t.table = ~std::uint64_t{0}; }), outside);
    EXPECT_EQ(with([](auto &t) { t.table = 7; }), outside);
    EXPECT_EQ(with([](auto &t) { t.root = 1; }), "it refers to an object that isn't there");
    EXPECT_EQ(with([](auto &t) { t.count = 0; }), "it refers to an object that isn't there");
    EXPECT_EQ(with([](auto &t) { t.offsetWidth = 1; }), "an object lies outside the data");
}

TEST(HostileArchiveTest, ZeroBytesAndTooMuchDataAreRefused)
{
    EXPECT_EQ(troubleOf(""), "it is no binary property list");
    EXPECT_EQ(troubleOf(std::string(1'000, '\0')), "it is no binary property list");
    EXPECT_EQ(troubleOf(std::string(16 * 1024 * 1024 + 1, '\0')), "it is too large");
    EXPECT_EQ(troubleOf("bplist00" + std::string(2'000'000, '\0')),
              "its trailer has impossible widths");
}

TEST(HostileArchiveTest, TooManyObjectsAreRefused)
{
    const BinaryPropertyList list;
    std::string data = "bplist00" + std::string(1'000'001, '\x08');
    data += std::string(6, '\0') + std::string("\x01\x01", 2);
    data += std::string(5, '\0') + std::string("\x0F\x42\x41", 3); // 1,000,001 objects
    data += std::string(15, '\0') + '\x08';
    EXPECT_EQ(troubleOf(data), "it has too many objects");
}

TEST(HostileArchiveTest, RecordWithTooManyValuesIsRefused)
{
    ArchivedRecord record{"Volume", {}};
    for (int i = 0; i < 300; ++i)
        record.values.emplace_back("key" + std::to_string(i), true);
    const auto result = unarchivedRecords(QByteArray::fromStdString(keyedArchive({record})));
    const auto *const error = std::get_if<KeyedArchiveError>(&result);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->message,
              QStringLiteral("The archive can't be read: a record has too many values."));
}

} // namespace

} // namespace nimbrel::test
