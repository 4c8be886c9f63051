#include "platform/KeyedArchive.h"

#include "platform/PropertyListNode.h"
#include "platform/PropertyListShape.h"

#include <QHash>

#include <cstdlib>
#include <vector>

namespace nimbrel {

namespace {

// More than anybody has, and few enough to be read at once.
constexpr std::size_t maximumRecords = 10'000;
constexpr std::uint32_t maximumValues = 256; // of one record

bool isKind(plist_t node, plist_type kind)
{
    return node != nullptr && plist_get_node_type(node) == kind;
}

// `node` is a string. The shape of the data has been checked: the text is whole, without zeros.
QString textOfNode(plist_t node)
{
    std::uint64_t length = 0;
    const char *const text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

std::vector<plist_t> elementsOf(plist_t array)
{
    std::vector<plist_t> elements;
    elements.reserve(plist_array_get_size(array));
    plist_array_iter state = nullptr;
    plist_array_new_iter(array, &state);
    const CHandle<void, std::free> owner(state);
    plist_t element = nullptr;
    for (plist_array_next_item(array, state, &element); element != nullptr;
         plist_array_next_item(array, state, &element))
        elements.push_back(element);
    return elements;
}

class ArchiveReader final
{
public:
    explicit ArchiveReader(plist_t top) : _top(top) {}

    // Nothing when the archive is refused; trouble() tells why.
    [[nodiscard]] std::optional<QList<KeyedRecord>> read();
    [[nodiscard]] const QString &trouble() const noexcept { return _trouble; }

private:
    std::nullopt_t refuse(const QString &why)
    {
        _trouble = why;
        return std::nullopt;
    }
    [[nodiscard]] bool isKeyedArchive();
    // The place that `node` names in `$objects`, where there is something.
    [[nodiscard]] std::optional<quint64> place(plist_t node);
    [[nodiscard]] std::optional<QString> className(plist_t object);
    [[nodiscard]] std::optional<QList<KeyedRecord>> list(plist_t root);
    [[nodiscard]] std::optional<KeyedRecord> record(plist_t reference);
    [[nodiscard]] std::optional<KeyedRecord> newRecord(plist_t object);
    [[nodiscard]] bool addValues(KeyedRecord &record, plist_t object);
    [[nodiscard]] bool addValue(KeyedRecord &record, const QString &key, plist_t node);
    [[nodiscard]] std::optional<KeyedRecord::Value> value(plist_t node);
    [[nodiscard]] std::optional<KeyedRecord::Value> text(quint64 place);
    [[nodiscard]] std::optional<QString> newText(plist_t object);

    plist_t _top;
    std::vector<plist_t> _objects;
    // What many places share is made once, whatever the archive says.
    QHash<quint64, QString> _texts;
    QHash<quint64, KeyedRecord> _records;
    QString _trouble;
};

bool ArchiveReader::isKeyedArchive()
{
    if (!isKind(_top, PLIST_DICT))
        return false;
    const plist_t archiver = plist_dict_get_item(_top, "$archiver");
    const plist_t version = plist_dict_get_item(_top, "$version");
    const plist_t objects = plist_dict_get_item(_top, "$objects");
    if (!isKind(archiver, PLIST_STRING) ||
        textOfNode(archiver) != QLatin1String(keyedArchiveForm::archiver) ||
        !isKind(version, PLIST_UINT) || !isKind(objects, PLIST_ARRAY))
        return false;
    _objects = elementsOf(objects);
    std::uint64_t number = 0;
    plist_get_uint_val(version, &number);
    return number == keyedArchiveForm::version && !_objects.empty() &&
           isKind(_objects.front(), PLIST_STRING) &&
           textOfNode(_objects.front()) == QLatin1String("$null");
}

std::optional<quint64> ArchiveReader::place(plist_t node)
{
    if (!isKind(node, PLIST_UID))
        return refuse(QStringLiteral("something else stands where a reference belongs"));
    std::uint64_t place = 0;
    plist_get_uid_val(node, &place);
    if (place >= _objects.size())
        return refuse(QStringLiteral("it refers to an object that isn't there"));
    return place;
}

std::optional<QString> ArchiveReader::className(plist_t object)
{
    const auto description = place(plist_dict_get_item(object, "$class"));
    if (!description)
        return std::nullopt;
    const plist_t node = _objects[*description];
    const plist_t name =
        isKind(node, PLIST_DICT) ? plist_dict_get_item(node, "$classname") : nullptr;
    if (!isKind(name, PLIST_STRING))
        return refuse(QStringLiteral("an object has no class"));
    return textOfNode(name);
}

std::optional<QList<KeyedRecord>> ArchiveReader::read()
{
    if (!isKeyedArchive())
        return refuse(QStringLiteral("it is no keyed archive"));
    const plist_t names = plist_dict_get_item(_top, "$top");
    const auto root =
        place(isKind(names, PLIST_DICT) ? plist_dict_get_item(names, "root") : nullptr);
    if (!root)
        return std::nullopt;
    if (*root == keyedArchiveForm::null)
        return QList<KeyedRecord>(); // an archived nothing
    return list(_objects[*root]);
}

std::optional<QList<KeyedRecord>> ArchiveReader::list(plist_t root)
{
    if (!isKind(root, PLIST_DICT))
        return refuse(QStringLiteral("it holds something else than a list"));
    const auto name = className(root);
    if (!name)
        return std::nullopt;
    const plist_t array = plist_dict_get_item(root, "NS.objects");
    const bool isList =
        *name == QLatin1String("NSArray") || *name == QLatin1String("NSMutableArray");
    if (!isList || !isKind(array, PLIST_ARRAY))
        return refuse(QStringLiteral("it holds something else than a list"));
    const std::vector<plist_t> references = elementsOf(array);
    if (references.size() > maximumRecords)
        return refuse(QStringLiteral("its list is too long"));
    QList<KeyedRecord> records;
    for (const plist_t reference : references) {
        auto element = record(reference);
        if (!element)
            return std::nullopt;
        records.append(std::move(*element));
    }
    return records;
}

std::optional<KeyedRecord> ArchiveReader::record(plist_t reference)
{
    const auto place = this->place(reference);
    if (!place)
        return std::nullopt;
    const auto known = _records.constFind(*place);
    if (known != _records.cend())
        return *known;
    auto made = newRecord(_objects[*place]);
    if (made)
        _records.insert(*place, *made);
    return made;
}

std::optional<KeyedRecord> ArchiveReader::newRecord(plist_t object)
{
    if (!isKind(object, PLIST_DICT))
        return refuse(QStringLiteral("its list holds something else than records"));
    if (plist_dict_get_size(object) > maximumValues)
        return refuse(QStringLiteral("a record has too many values"));
    auto name = className(object);
    if (!name)
        return std::nullopt;
    KeyedRecord record(std::move(*name));
    if (!addValues(record, object))
        return std::nullopt;
    return record;
}

bool ArchiveReader::addValues(KeyedRecord &record, plist_t object)
{
    plist_dict_iter state = nullptr;
    plist_dict_new_iter(object, &state);
    const CHandle<void, std::free> owner(state);
    for (;;) {
        char *name = nullptr;
        plist_t node = nullptr;
        plist_dict_next_item(object, state, &name, &node);
        const CHandle<char, std::free> nameOwner(name);
        if (node == nullptr)
            return true;
        const QString key = QString::fromUtf8(name);
        if (key != QLatin1String("$class") && !addValue(record, key, node))
            return false;
    }
}

bool ArchiveReader::addValue(KeyedRecord &record, const QString &key, plist_t node)
{
    const auto found = value(node);
    if (!found)
        return false;
    if (const auto *boolean = std::get_if<bool>(&*found))
        record.encodeBool(key, *boolean);
    else if (const auto *integer = std::get_if<qint64>(&*found))
        record.encodeInteger(key, *integer);
    else if (const auto *text = std::get_if<QString>(&*found))
        record.encodeObject(key, *text);
    else
        record.encodeObject(key, std::nullopt);
    return true;
}

std::optional<KeyedRecord::Value> ArchiveReader::value(plist_t node)
{
    std::uint8_t boolean = 0;
    std::uint64_t integer = 0;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        plist_get_bool_val(node, &boolean);
        return boolean != 0;
    case PLIST_UINT:
        plist_get_uint_val(node, &integer);
        return static_cast<qint64>(integer); // libplist's own form of a negative number
    case PLIST_UID:
        if (const auto found = place(node))
            return text(*found);
        return std::nullopt;
    default:
        return refuse(QStringLiteral("a record holds a value of an unknown kind"));
    }
}

std::optional<KeyedRecord::Value> ArchiveReader::text(quint64 place)
{
    if (place == keyedArchiveForm::null)
        return KeyedRecord::Value();
    const auto known = _texts.constFind(place);
    if (known != _texts.cend())
        return *known;
    const auto made = newText(_objects[place]);
    if (!made)
        return std::nullopt;
    return *_texts.insert(place, *made);
}

// A string stands for itself or is an object that holds one.
std::optional<QString> ArchiveReader::newText(plist_t object)
{
    if (isKind(object, PLIST_STRING))
        return textOfNode(object);
    if (!isKind(object, PLIST_DICT))
        return refuse(QStringLiteral("a record holds a value of an unknown kind"));
    const auto name = className(object);
    if (!name)
        return std::nullopt;
    const plist_t string = plist_dict_get_item(object, "NS.string");
    const bool isString =
        *name == QLatin1String("NSString") || *name == QLatin1String("NSMutableString");
    if (!isString || !isKind(string, PLIST_STRING))
        return refuse(QStringLiteral("a record holds a value of an unknown kind"));
    return textOfNode(string);
}

} // namespace

std::variant<QList<KeyedRecord>, KeyedArchiveError> unarchivedRecords(const QByteArray &data)
{
    const auto refused = [](const QString &why) {
        return KeyedArchiveError{QStringLiteral("The archive can't be read: %1.").arg(why)};
    };
    if (const auto trouble = propertyListTrouble(data))
        return refused(*trouble);
    plist_t node = nullptr;
    plist_from_bin(data.constData(), static_cast<std::uint32_t>(data.size()), &node);
    const PropertyListNode top(node);
    ArchiveReader reader(top.get());
    auto records = reader.read();
    if (!records)
        return refused(reader.trouble());
    return std::move(*records);
}

} // namespace nimbrel
