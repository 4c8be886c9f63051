#include "platform/KeyedArchive.h"

#include "platform/PropertyListNode.h"

#include <QHash>
#include <QStringList>

namespace nimbrel {

namespace {

using BinaryText = CHandle<char, plist_to_bin_free>;

// Puts every object at a place of its own in `$objects`; the others name that place.
class ArchiveWriter final
{
public:
    ArchiveWriter() { append(plist_new_string("$null")); }

    [[nodiscard]] QByteArray write(const QList<KeyedRecord> &records);

private:
    quint64 append(plist_t object);
    quint64 appendRoot(const QList<KeyedRecord> &records);
    quint64 appendRecord(const KeyedRecord &record);
    quint64 stringObject(const QString &text);
    quint64 classObject(const QStringList &names);
    [[nodiscard]] plist_t valueNode(const KeyedRecord::Value &value);

    PropertyListNode _objects{plist_new_array()};
    quint64 _count = 0;
    QHash<QString, quint64> _strings; // equal texts and classes are one object
    QHash<QString, quint64> _classes;
};

quint64 ArchiveWriter::append(plist_t object)
{
    plist_array_append_item(_objects.get(), object);
    return _count++;
}

quint64 ArchiveWriter::stringObject(const QString &text)
{
    const auto known = _strings.constFind(text);
    if (known != _strings.cend())
        return *known;
    return *_strings.insert(text, append(plist_new_string(text.toUtf8().constData())));
}

// `names`: the class and those it derives from.
quint64 ArchiveWriter::classObject(const QStringList &names)
{
    const auto known = _classes.constFind(names.first());
    if (known != _classes.cend())
        return *known;
    plist_t hierarchy = plist_new_array();
    for (const QString &name : names)
        plist_array_append_item(hierarchy, plist_new_string(name.toUtf8().constData()));
    plist_t description = plist_new_dict();
    plist_dict_set_item(description, "$classname",
                        plist_new_string(names.first().toUtf8().constData()));
    plist_dict_set_item(description, "$classes", hierarchy);
    return *_classes.insert(names.first(), append(description));
}

plist_t ArchiveWriter::valueNode(const KeyedRecord::Value &value)
{
    if (const auto *boolean = std::get_if<bool>(&value))
        return plist_new_bool(*boolean ? 1 : 0);
    if (const auto *integer = std::get_if<qint64>(&value))
        return plist_new_uint(static_cast<quint64>(*integer)); // read back as a signed one
    const auto *const text = std::get_if<QString>(&value);
    return plist_new_uid(text == nullptr ? keyedArchiveForm::null : stringObject(*text));
}

quint64 ArchiveWriter::appendRecord(const KeyedRecord &record)
{
    plist_t object = plist_new_dict();
    const quint64 place = append(object);
    for (const auto &[key, value] : record.values())
        plist_dict_set_item(object, key.toUtf8().constData(), valueNode(value));
    const quint64 description = classObject({record.className(), QStringLiteral("NSObject")});
    plist_dict_set_item(object, "$class", plist_new_uid(description));
    return place;
}

quint64 ArchiveWriter::appendRoot(const QList<KeyedRecord> &records)
{
    plist_t root = plist_new_dict();
    const quint64 place = append(root);
    plist_t elements = plist_new_array();
    plist_dict_set_item(root, "NS.objects", elements);
    for (const KeyedRecord &record : records)
        plist_array_append_item(elements, plist_new_uid(appendRecord(record)));
    const quint64 description = classObject(
        {QStringLiteral("NSMutableArray"), QStringLiteral("NSArray"), QStringLiteral("NSObject")});
    plist_dict_set_item(root, "$class", plist_new_uid(description));
    return place;
}

QByteArray ArchiveWriter::write(const QList<KeyedRecord> &records)
{
    plist_t names = plist_new_dict();
    plist_dict_set_item(names, "root", plist_new_uid(appendRoot(records)));
    const PropertyListNode top(plist_new_dict());
    plist_dict_set_item(top.get(), "$version", plist_new_uint(keyedArchiveForm::version));
    plist_dict_set_item(top.get(), "$archiver", plist_new_string(keyedArchiveForm::archiver));
    plist_dict_set_item(top.get(), "$top", names);
    plist_dict_set_item(top.get(), "$objects", _objects.release());
    char *bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(top.get(), &bytes, &size);
    const BinaryText owner(bytes);
    return {bytes, static_cast<qsizetype>(size)};
}

} // namespace

QByteArray archivedData(const QList<KeyedRecord> &records)
{
    return ArchiveWriter().write(records);
}

} // namespace nimbrel
