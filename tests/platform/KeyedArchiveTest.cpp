#include "platform/KeyedArchive.h"

#include "support/BinaryPropertyList.h"
#include "support/Process.h"

#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>

namespace nimbrel::test {

namespace {

using Nothing = ArchivedRecord::Nothing;

QList<KeyedRecord> recordsOf(const QByteArray &data)
{
    auto result = unarchivedRecords(data);
    if (const auto *error = std::get_if<KeyedArchiveError>(&result))
        throw std::runtime_error(error->message.toStdString());
    return std::get<QList<KeyedRecord>>(std::move(result));
}

QList<KeyedRecord> recordsOf(const std::string &data)
{
    return recordsOf(QByteArray::fromStdString(data));
}

std::string refusal(const std::string &data)
{
    const auto result = unarchivedRecords(QByteArray::fromStdString(data));
    const auto *const error = std::get_if<KeyedArchiveError>(&result);
    return error == nullptr ? "no error" : error->message.toStdString();
}

std::string cause(const std::string &text)
{
    return "The archive can't be read: " + text + ".";
}

ArchivedRecord newRecord(const std::string &label = "Nimbrel")
{
    return {"NBNimbrelVolume",
            {{"version", 1},
             {"root", "/home/me/Cloud/Safe.nmc"},
             {"label", label},
             {"configPath", "/home/me/Cloud/Safe.nmc/.encfs6.xml"},
             {"storePassword", true},
             {"automount", false},
             {"checkKey", true},
             {"spotlight", false},
             {"local", false},
             {"allowsAll", true}}};
}

KeyedRecord sampleRecord(const QString &label)
{
    KeyedRecord record(QStringLiteral("NBNimbrelVolume"));
    record.encodeInteger(QStringLiteral("version"), 1);
    record.encodeObject(QStringLiteral("root"), QStringLiteral("/home/me/Safe.nmc"));
    record.encodeObject(QStringLiteral("label"), label);
    record.encodeObject(QStringLiteral("configPath"), std::nullopt);
    record.encodeBool(QStringLiteral("storePassword"), true);
    record.encodeBool(QStringLiteral("automount"), false);
    return record;
}

// What the script prints about the archive as "a" (python3's plistlib reads it).
std::string readByOthers(const QByteArray &data, const std::string &script)
{
    const RunResult result = run({"python3", "-c",
                                  "import sys, plistlib\nfrom plistlib import UID\n"
                                  "a = plistlib.load(sys.stdin.buffer)\no = a['$objects']\n" +
                                      script},
                                 {.input = data.toStdString()});
    return result.status == 0 ? result.output : "failed: " + result.error;
}

// An archive of one record around the value that `make` builds; its objects follow from 4 on.
template <class Make>
std::string archiveWithValue(Make make)
{
    BinaryPropertyList list;
    std::vector<BinaryPropertyList::Reference> objects(4);
    const auto value = make(list, objects);
    const auto className = [&list](const char *name) {
        return list.dictionary({{list.ascii("$classname"), list.ascii(name)}});
    };
    objects[0] = list.ascii("$null");
    objects[1] = list.dictionary({{list.ascii("NS.objects"), list.array({list.uid(2)})},
                                  {list.ascii("$class"), list.uid(3)}});
    objects[2] = list.dictionary(
        {{list.ascii("root"), value}, {list.ascii("$class"), list.uid(objects.size())}});
    objects[3] = className("NSArray");
    objects.push_back(className("Volume"));
    return keyedArchiveOf(list, objects);
}

TEST(KeyedRecordTest, ValuesComeBackUnderTheirKeysAndInTheirOrder)
{
    const KeyedRecord record = sampleRecord(QStringLiteral("Safe"));
    EXPECT_EQ(record.decodeInteger(QStringLiteral("version")), 1);
    EXPECT_EQ(record.decodeObject(QStringLiteral("label")), QStringLiteral("Safe"));
    EXPECT_TRUE(record.decodeBool(QStringLiteral("storePassword")));
    EXPECT_FALSE(record.decodeBool(QStringLiteral("automount")));
    ASSERT_EQ(record.values().size(), 6);
    EXPECT_EQ(record.values().first().first, QStringLiteral("version"));
    EXPECT_EQ(record.values().last().first, QStringLiteral("automount"));
}

TEST(KeyedRecordTest, AbsentKeysAndOtherKindsGiveNothing)
{
    const KeyedRecord record = sampleRecord(QStringLiteral("17"));
    const auto none = QStringLiteral("none");
    EXPECT_EQ(record.decodeInteger(none), 0);
    EXPECT_FALSE(record.decodeBool(none));
    EXPECT_EQ(record.decodeObject(none), std::nullopt);
    EXPECT_EQ(record.decodeInteger(QStringLiteral("label")), 0);
    EXPECT_FALSE(record.decodeBool(QStringLiteral("label")));
    EXPECT_EQ(record.decodeObject(QStringLiteral("version")), std::nullopt);
    EXPECT_EQ(record.decodeObject(QStringLiteral("configPath")), std::nullopt);
}

TEST(KeyedRecordTest, IntegersAndBooleansStandForEachOther)
{
    KeyedRecord record(QStringLiteral("Volume"));
    record.encodeInteger(QStringLiteral("seven"), 7);
    record.encodeInteger(QStringLiteral("zero"), 0);
    record.encodeBool(QStringLiteral("yes"), true);
    EXPECT_TRUE(record.decodeBool(QStringLiteral("seven")));
    EXPECT_FALSE(record.decodeBool(QStringLiteral("zero")));
    EXPECT_EQ(record.decodeInteger(QStringLiteral("yes")), 1);
}

TEST(KeyedRecordTest, KeyEncodedTwiceKeepsItsPlaceAndTakesTheNewerValue)
{
    KeyedRecord record = sampleRecord(QStringLiteral("old"));
    record.encodeObject(QStringLiteral("label"), QStringLiteral("new"));
    ASSERT_EQ(record.values().size(), 6);
    EXPECT_EQ(record.values()[2].first, QStringLiteral("label"));
    EXPECT_EQ(record.decodeObject(QStringLiteral("label")), QStringLiteral("new"));
}

TEST(KeyedArchiveTest, WhatIsWrittenReadsTheSame)
{
    KeyedRecord numbers(QStringLiteral("Volume"));
    for (const qint64 number :
         {qint64{0}, qint64{-1}, qint64{255}, qint64{65536}, std::numeric_limits<qint64>::max(),
          std::numeric_limits<qint64>::min()})
        numbers.encodeInteger(QString::number(number), number);
    const QList<KeyedRecord> records = {sampleRecord(QStringLiteral("Safe")), numbers,
                                        sampleRecord(QStringLiteral(u"Tr\u00E9sor \U0001F600")),
                                        sampleRecord(QString::fromLatin1(""))};
    const auto read = recordsOf(archivedData(records));
    ASSERT_EQ(read.size(), records.size());
    for (qsizetype i = 0; i < records.size(); ++i) {
        EXPECT_EQ(read[i].className(), records[i].className());
        EXPECT_EQ(read[i].values(), records[i].values()) << i;
    }
}

TEST(KeyedArchiveTest, EmptyListComesBackEmpty)
{
    EXPECT_TRUE(recordsOf(archivedData({})).isEmpty());
}

TEST(KeyedArchiveTest, FrameIsThatOfARealKeyedArchive)
{
    EXPECT_EQ(readByOthers(archivedData({}),
                           "print(sorted(a), a['$version'], a['$archiver'], a['$top'])\n"
                           "root = o[a['$top']['root'].data]\n"
                           "print(o[0], root['NS.objects'], o[root['$class'].data])"),
              "['$archiver', '$objects', '$top', '$version'] 100000 NSKeyedArchiver "
              "{'root': UID(1)}\n"
              "$null [] {'$classname': 'NSMutableArray', "
              "'$classes': ['NSMutableArray', 'NSArray', 'NSObject']}\n");
}

TEST(KeyedArchiveTest, RecordHoldsNumbersInPlaceAndReferencesToTexts)
{
    EXPECT_EQ(readByOthers(archivedData({sampleRecord(QStringLiteral(u"T\u00E9"))}),
                           "r = o[o[1]['NS.objects'][0].data]\n"
                           "c = o[r.pop('$class').data]\n"
                           "print(list(r), r['version'], r['storePassword'], r['automount'])\n"
                           "print(o[r['root'].data], o[r['label'].data], r['configPath'], c)"),
              "['version', 'root', 'label', 'configPath', 'storePassword', 'automount'] "
              "1 True False\n"
              "/home/me/Safe.nmc T\u00E9 UID(0) {'$classname': 'NBNimbrelVolume', "
              "'$classes': ['NBNimbrelVolume', 'NSObject']}\n");
}

TEST(KeyedArchiveTest, EqualTextsAndClassesAreOneObject)
{
    const auto label = QStringLiteral("Safe");
    EXPECT_EQ(readByOthers(archivedData({sampleRecord(label), sampleRecord(label)}),
                           "print(len(o))\n"
                           "x, y = [o[u.data] for u in o[1]['NS.objects']]\n"
                           "print(x == y, o.count('Safe'))"),
              "8\nTrue 1\n"); // null, the list, two records, two texts, two classes
}

TEST(KeyedArchiveTest, LabelNamedAsTheMissingObjectIsALabel)
{
    const auto label = QStringLiteral("$null");
    const auto read = recordsOf(archivedData({sampleRecord(label)}));
    EXPECT_EQ(read.first().decodeObject(QStringLiteral("label")), label);
}

TEST(KeyedArchiveTest, ManyRecordsHaveReferencesOfEveryWidth)
{
    QList<KeyedRecord> records;
    for (int i = 0; i < 10'000; ++i) {
        records.append(KeyedRecord(QStringLiteral("NBNimbrelVolume")));
        for (const char *key : {"root", "label", "configPath"})
            records.last().encodeObject(QLatin1String(key),
                                        QLatin1String(key) + QString::number(i));
    }
    const auto read = recordsOf(archivedData(records));
    ASSERT_EQ(read.size(), records.size());
    for (const qsizetype i : {0, 40, 127, 128, 255, 256, 9'999})
        EXPECT_EQ(read[i].values(), records[i].values());
    records.append(records.first());
    EXPECT_EQ(refusal(archivedData(records).toStdString()), cause("its list is too long"));
}

TEST(KeyedArchiveTest, ForeignArchiveIsRead)
{
    const auto records = recordsOf(keyedArchive({newRecord()}));
    ASSERT_EQ(records.size(), 1);
    const KeyedRecord &record = records.first();
    EXPECT_EQ(record.className(), QStringLiteral("NBNimbrelVolume"));
    EXPECT_EQ(record.values().size(), 10);
    EXPECT_EQ(record.decodeInteger(QStringLiteral("version")), 1);
    EXPECT_EQ(record.decodeObject(QStringLiteral("root")),
              QStringLiteral("/home/me/Cloud/Safe.nmc"));
    EXPECT_TRUE(record.decodeBool(QStringLiteral("storePassword")));
    EXPECT_FALSE(record.decodeBool(QStringLiteral("automount")));
    EXPECT_TRUE(record.decodeBool(QStringLiteral("allowsAll")));
}

TEST(KeyedArchiveTest, OldAndNewRecordsStandInOneList)
{
    const auto records = recordsOf(
        keyedArchive({newRecord(), {"Volume", {{"version", 1}, {"root", "/old"}}}, newRecord()}));
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records[1].className(), QStringLiteral("Volume"));
    EXPECT_EQ(records[1].decodeObject(QStringLiteral("root")), QStringLiteral("/old"));
    EXPECT_EQ(records[2].className(), QStringLiteral("NBNimbrelVolume"));
}

TEST(KeyedArchiveTest, ImmutableListIsReadToo)
{
    EXPECT_EQ(recordsOf(keyedArchive({newRecord()}, "NSArray")).size(), 1);
}

TEST(KeyedArchiveTest, RecordOfAnotherVersionKeepsItsVersion)
{
    const auto records = recordsOf(keyedArchive({{"NBNimbrelVolume", {{"version", 2}}}}));
    EXPECT_EQ(records.first().decodeInteger(QStringLiteral("version")), 2);
    EXPECT_EQ(records.first().decodeObject(QStringLiteral("root")), std::nullopt);
}

TEST(KeyedArchiveTest, Utf16TextsAreRead)
{
    const std::u16string label = u"Tr\u00E9sor \u6587 \U0001F600";
    const auto records = recordsOf(keyedArchive({{"Volume", {{"label", label}}}}));
    EXPECT_EQ(records.first().decodeObject(QStringLiteral("label")),
              QString::fromStdU16String(label));
}

TEST(KeyedArchiveTest, TextsInObjectsOfTheirOwnAreRead)
{
    using Wrapped = ArchivedRecord::Wrapped;
    const auto records = recordsOf(keyedArchive(
        {{"Volume", {{"root", Wrapped{"/mutable"}}, {"label", Wrapped{"plain", "NSString"}}}}}));
    EXPECT_EQ(records.first().decodeObject(QStringLiteral("root")), QStringLiteral("/mutable"));
    EXPECT_EQ(records.first().decodeObject(QStringLiteral("label")), QStringLiteral("plain"));
    EXPECT_EQ(refusal(keyedArchive({{"Volume", {{"root", Wrapped{"/x", "NSURL"}}}}})),
              cause("a record holds a value of an unknown kind"));
}

TEST(KeyedArchiveTest, MissingObjectsAreMissing)
{
    const auto records = recordsOf(keyedArchive({{"Volume", {{"label", Nothing{}}}}}));
    ASSERT_EQ(records.first().values().size(), 1);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(records.first().values().first().second));
}

TEST(KeyedArchiveTest, IntegersOfEveryWidthAreRead)
{
    for (const unsigned width : {1U, 2U, 4U, 8U, 16U}) {
        const auto records = recordsOf(
            archiveWithValue([width](auto &list, auto &) { return list.integer(100, width); }));
        EXPECT_EQ(records.first().decodeInteger(QStringLiteral("root")), 100) << width;
    }
    const auto records =
        recordsOf(archiveWithValue([](auto &list, auto &) { return list.integer(-2, 8); }));
    EXPECT_EQ(records.first().decodeInteger(QStringLiteral("root")), -2);
}

TEST(KeyedArchiveTest, SmallIntegersAreUnsigned)
{
    for (const unsigned width : {1U, 2U, 4U}) {
        const auto records = recordsOf(
            archiveWithValue([width](auto &list, auto &) { return list.integer(-1, width); }));
        EXPECT_EQ(records.first().decodeInteger(QStringLiteral("root")),
                  static_cast<qint64>((quint64{1} << (8 * width)) - 1));
    }
}

TEST(KeyedArchiveTest, ReferencesOfEveryWidthAreRead)
{
    for (const unsigned width : {1U, 2U, 3U, 4U, 8U}) {
        const auto records = recordsOf(archiveWithValue([width](auto &list, auto &objects) {
            objects.push_back(list.ascii("/there"));
            return list.uid(4, width);
        }));
        EXPECT_EQ(records.first().decodeObject(QStringLiteral("root")), QStringLiteral("/there"));
    }
}

TEST(KeyedArchiveTest, ArchivedNothingIsAnEmptyList)
{
    BinaryPropertyList list;
    EXPECT_TRUE(recordsOf(keyedArchiveOf(list, {list.ascii("$null")}, 0)).isEmpty());
}

TEST(KeyedArchiveTest, OtherPropertyListsAreRefused)
{
    const auto none = cause("it is no binary property list");
    EXPECT_EQ(refusal(""), none);
    EXPECT_EQ(refusal("bplist00"), none);
    EXPECT_EQ(refusal("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>"), none);
    EXPECT_EQ(refusal("bplist15" + keyedArchive({}).substr(8)), none);
    BinaryPropertyList list;
    EXPECT_EQ(refusal(list.text(list.ascii("text"))), cause("it is no keyed archive"));
}

TEST(KeyedArchiveTest, OtherArchiversAndVersionsAreRefused)
{
    const auto none = cause("it is no keyed archive");
    BinaryPropertyList list;
    const auto null = list.ascii("$null");
    EXPECT_EQ(refusal(keyedArchiveOf(list, {null}, 0, "NSArchiver")), none);
    EXPECT_EQ(refusal(keyedArchiveOf(list, {null}, 0, "NSKeyedArchiver", 100001)), none);
    EXPECT_EQ(refusal(keyedArchiveOf(list, {})), none);
    EXPECT_EQ(refusal(keyedArchiveOf(list, {list.ascii("no null")}, 0)), none);
}

TEST(KeyedArchiveTest, OtherRootsAreRefused)
{
    const auto other = cause("it holds something else than a list");
    EXPECT_EQ(refusal(keyedArchive({newRecord()}, "NSDictionary")), other);
    BinaryPropertyList list;
    EXPECT_EQ(refusal(keyedArchiveOf(list, {list.ascii("$null"), list.ascii("x")})), other);
    EXPECT_EQ(refusal(keyedArchiveOf(list, {list.ascii("$null")}, 7)),
              cause("it refers to an object that isn't there"));
}

TEST(KeyedArchiveTest, DanglingReferencesAreRefused)
{
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &) { return list.uid(999); })),
              cause("it refers to an object that isn't there"));
}

TEST(KeyedArchiveTest, ValuesOfOtherKindsAreRefused)
{
    const auto other = cause("a record holds a value of an unknown kind");
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &) { return list.ascii("x"); })), other);
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &) { return list.data("x"); })), other);
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &) { return list.array({}); })), other);
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &) { return list.dictionary({}); })),
              other);
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &objects) {
                  objects.push_back(list.integer(3));
                  return list.uid(4);
              })),
              other);
}

TEST(KeyedArchiveTest, TextThatRefersToItselfIsRefused)
{
    EXPECT_EQ(refusal(archiveWithValue([](auto &list, auto &objects) {
                  objects.push_back(list.dictionary({{list.ascii("NS.string"), list.uid(4)},
                                                     {list.ascii("$class"), list.uid(4)}}));
                  return list.uid(4);
              })),
              cause("an object has no class"));
}

TEST(KeyedArchiveTest, ListThatHoldsItselfIsRefused)
{
    BinaryPropertyList list;
    const auto root = list.dictionary({{list.ascii("NS.objects"), list.array({list.uid(1)})},
                                       {list.ascii("$class"), list.uid(2)}});
    const auto description = list.dictionary({{list.ascii("$classname"), list.ascii("NSArray")}});
    EXPECT_EQ(refusal(keyedArchiveOf(list, {list.ascii("$null"), root, description})),
              cause("a record holds a value of an unknown kind"));
}

} // namespace

} // namespace nimbrel::test
