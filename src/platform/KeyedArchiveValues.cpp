// The values of a record.
#include "platform/ArchiveReader.h"

#include <cstdlib>

namespace nimbrel {

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
    plist_t string = plist_dict_get_item(object, "NS.string");
    const bool isString =
        *name == QLatin1String("NSString") || *name == QLatin1String("NSMutableString");
    if (!isString || !isKind(string, PLIST_STRING))
        return refuse(QStringLiteral("a record holds a value of an unknown kind"));
    return textOfNode(string);
}

} // namespace nimbrel
