#include "support/BinaryPropertyList.h"

#include <bit>

namespace nimbrel::test {

namespace {

constexpr unsigned offsetWidth = 4;
constexpr unsigned referenceWidth = 3;

std::string bigEndian(std::uint64_t value, unsigned width)
{
    std::string bytes;
    for (unsigned i = width; i > 0; --i)
        bytes.push_back(i > 8 ? '\0' : static_cast<char>(value >> (8 * (i - 1)) & 0xFFU));
    return bytes;
}

// A marker of that kind (0x50, ...), with the length behind it from 15 on.
std::string marker(unsigned kind, std::size_t length)
{
    if (length < 15)
        return std::string(1, static_cast<char>(kind | length));
    const unsigned power = length < 0x100 ? 0 : length < 0x10000 ? 1 : 2;
    return std::string(1, static_cast<char>(kind | 15U)) + static_cast<char>(0x10U | power) +
           bigEndian(length, 1U << power);
}

std::string bigEndian(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t unit : text)
        bytes += bigEndian(unit, 2);
    return bytes;
}

} // namespace

BinaryPropertyList::Reference BinaryPropertyList::raw(std::string_view bytes)
{
    _offsets.push_back(_body.size());
    _body += bytes;
    return _offsets.size() - 1;
}

BinaryPropertyList::Reference BinaryPropertyList::boolean(bool value)
{
    return raw(value ? "\x09" : "\x08");
}

BinaryPropertyList::Reference BinaryPropertyList::integer(std::int64_t value, unsigned width)
{
    const auto power = static_cast<unsigned>(std::countr_zero(width));
    return raw(static_cast<char>(0x10U | power) +
               bigEndian(static_cast<std::uint64_t>(value), width));
}

BinaryPropertyList::Reference BinaryPropertyList::ascii(std::string_view text)
{
    return raw(marker(0x50, text.size()) + std::string(text));
}

BinaryPropertyList::Reference BinaryPropertyList::utf16(std::u16string_view text)
{
    return raw(marker(0x60, text.size()) + bigEndian(text));
}

BinaryPropertyList::Reference BinaryPropertyList::data(std::string_view bytes)
{
    return raw(marker(0x40, bytes.size()) + std::string(bytes));
}

BinaryPropertyList::Reference BinaryPropertyList::uid(std::uint64_t value, unsigned width)
{
    return raw(static_cast<char>(0x80U | (width - 1)) + bigEndian(value, width));
}

BinaryPropertyList::Reference
BinaryPropertyList::container(std::uint8_t kind, std::size_t length,
                              const std::vector<Reference> &references)
{
    std::string bytes = marker(kind, length);
    for (const Reference reference : references)
        bytes += bigEndian(reference, referenceWidth);
    return raw(bytes);
}

BinaryPropertyList::Reference BinaryPropertyList::array(const std::vector<Reference> &elements)
{
    return container(0xA0, elements.size(), elements);
}

BinaryPropertyList::Reference
BinaryPropertyList::dictionary(const std::vector<std::pair<Reference, Reference>> &entries)
{
    std::vector<Reference> references;
    for (const auto &entry : entries)
        references.push_back(entry.first);
    for (const auto &entry : entries)
        references.push_back(entry.second);
    return container(0xD0, entries.size(), references);
}

BinaryPropertyList::Trailer BinaryPropertyList::trailer(Reference root) const
{
    return {.offsetWidth = offsetWidth,
            .referenceWidth = referenceWidth,
            .count = _offsets.size(),
            .root = root,
            .table = _body.size()};
}

std::string BinaryPropertyList::text(Reference root) const
{
    return text(trailer(root));
}

std::string BinaryPropertyList::text(const Trailer &trailer) const
{
    std::string text = _body;
    for (const std::size_t offset : _offsets)
        text += bigEndian(offset, offsetWidth);
    text += std::string(6, '\0');
    text += static_cast<char>(trailer.offsetWidth);
    text += static_cast<char>(trailer.referenceWidth);
    return text + bigEndian(trailer.count, 8) + bigEndian(trailer.root, 8) +
           bigEndian(trailer.table, 8);
}

std::string keyedArchiveOf(BinaryPropertyList &list,
                           const std::vector<BinaryPropertyList::Reference> &objects,
                           std::uint64_t rootUid, const std::string &archiver, std::int64_t version)
{
    const auto names = list.dictionary({{list.ascii("root"), list.uid(rootUid)}});
    return list.text(list.dictionary({
        {list.ascii("$version"), list.integer(version, 4)},
        {list.ascii("$objects"), list.array(objects)},
        {list.ascii("$archiver"), list.ascii(archiver)},
        {list.ascii("$top"), names},
    }));
}

namespace {

// Objects of an archive under their numbers; each is made when its references are known.
class ArchiveBuilder final
{
public:
    ArchiveBuilder() { add(_list.ascii("$null")); }

    std::string build(const std::vector<ArchivedRecord> &records, const std::string &rootClass);

private:
    using Reference = BinaryPropertyList::Reference;

    std::size_t add(Reference object)
    {
        _objects.push_back(object);
        return _objects.size() - 1;
    }
    std::size_t addClass(const std::string &name);
    std::size_t addRecord(const ArchivedRecord &record);
    Reference value(const ArchivedRecord::Value &value);

    BinaryPropertyList _list;
    std::vector<Reference> _objects;
};

std::size_t ArchiveBuilder::addClass(const std::string &name)
{
    const auto classes = _list.array({_list.ascii(name), _list.ascii("NSObject")});
    return add(_list.dictionary(
        {{_list.ascii("$classname"), _list.ascii(name)}, {_list.ascii("$classes"), classes}}));
}

BinaryPropertyList::Reference ArchiveBuilder::value(const ArchivedRecord::Value &value)
{
    if (const auto *boolean = std::get_if<bool>(&value))
        return _list.boolean(*boolean);
    if (const auto *integer = std::get_if<int>(&value))
        return _list.integer(*integer, *integer >= 0 && *integer < 0x100 ? 1 : 8);
    if (const auto *text = std::get_if<std::string>(&value))
        return _list.uid(add(_list.ascii(*text)));
    if (const auto *text = std::get_if<std::u16string>(&value))
        return _list.uid(add(_list.utf16(*text)));
    const auto *const wrapped = std::get_if<ArchivedRecord::Wrapped>(&value);
    if (wrapped == nullptr)
        return _list.uid(0, 1);
    return _list.uid(
        add(_list.dictionary({{_list.ascii("NS.string"), _list.ascii(wrapped->text)},
                              {_list.ascii("$class"), _list.uid(addClass(wrapped->className))}})));
}

std::size_t ArchiveBuilder::addRecord(const ArchivedRecord &record)
{
    std::vector<std::pair<Reference, Reference>> entries;
    for (const auto &[key, value] : record.values)
        entries.emplace_back(_list.ascii(key), this->value(value));
    entries.emplace_back(_list.ascii("$class"), _list.uid(addClass(record.className)));
    return add(_list.dictionary(entries));
}

std::string ArchiveBuilder::build(const std::vector<ArchivedRecord> &records,
                                  const std::string &rootClass)
{
    std::vector<Reference> elements;
    for (const ArchivedRecord &record : records)
        elements.push_back(_list.uid(addRecord(record)));
    const auto root =
        add(_list.dictionary({{_list.ascii("NS.objects"), _list.array(elements)},
                              {_list.ascii("$class"), _list.uid(addClass(rootClass))}}));
    return keyedArchiveOf(_list, _objects, root);
}

} // namespace

std::string keyedArchive(const std::vector<ArchivedRecord> &records, const std::string &rootClass)
{
    return ArchiveBuilder().build(records, rootClass);
}

} // namespace nimbrel::test
