#include "platform/ArchiveReader.h"

#include "platform/PropertyListShape.h"

#include <cstdlib>

namespace nimbrel {

namespace {

// More than anybody has, and few enough to be read at once.
constexpr std::size_t maximumRecords = 10'000;
constexpr std::uint32_t maximumValues = 256; // of one record

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

} // namespace

bool isKind(plist_t node, plist_type kind)
{
    return node != nullptr && plist_get_node_type(node) == kind;
}

QString textOfNode(plist_t node)
{
    std::uint64_t length = 0;
    const char *const text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

bool ArchiveReader::isKeyedArchive()
{
    if (!isKind(_top, PLIST_DICT))
        return false;
    plist_t archiver = plist_dict_get_item(_top, "$archiver");
    plist_t version = plist_dict_get_item(_top, "$version");
    plist_t objects = plist_dict_get_item(_top, "$objects");
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
    plist_t node = _objects[*description];
    plist_t name = isKind(node, PLIST_DICT) ? plist_dict_get_item(node, "$classname") : nullptr;
    if (!isKind(name, PLIST_STRING))
        return refuse(QStringLiteral("an object has no class"));
    return textOfNode(name);
}

std::optional<QList<KeyedRecord>> ArchiveReader::read()
{
    if (!isKeyedArchive())
        return refuse(QStringLiteral("it is no keyed archive"));
    plist_t names = plist_dict_get_item(_top, "$top");
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
    plist_t array = plist_dict_get_item(root, "NS.objects");
    const bool isList =
        *name == QLatin1String("NSArray") || *name == QLatin1String("NSMutableArray");
    if (!isList || !isKind(array, PLIST_ARRAY))
        return refuse(QStringLiteral("it holds something else than a list"));
    const std::vector<plist_t> references = elementsOf(array);
    if (references.size() > maximumRecords)
        return refuse(QStringLiteral("its list is too long"));
    QList<KeyedRecord> records;
    for (plist_t reference : references) {
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
