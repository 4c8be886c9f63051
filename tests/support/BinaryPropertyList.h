// Binary property lists made byte by byte, to test what reads them; and keyed archives in them.
//
// "bplist00"; objects, each a marker byte and its content; a table of their offsets; 32 bytes that
// tell the table's place and widths. All numbers are big-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nimbrel::test {

class BinaryPropertyList final
{
public:
    using Reference = std::size_t; // the number of an object

    // Each adds an object. Equal ones are not made one.
    Reference null() { return raw(std::string_view("\0", 1)); }
    Reference boolean(bool value);
    // In 1, 2, 4, 8 or 16 bytes.
    Reference integer(std::int64_t value, unsigned width = 8);
    Reference ascii(std::string_view text);
    Reference utf16(std::u16string_view text);
    Reference data(std::string_view bytes);
    Reference uid(std::uint64_t value, unsigned width = 2);
    Reference array(const std::vector<Reference> &elements);
    Reference dictionary(const std::vector<std::pair<Reference, Reference>> &entries);
    // An object of these very bytes.
    Reference raw(std::string_view bytes);
    // A container of the kind (0xA0, 0xD0) that claims a length and holds these references.
    Reference container(std::uint8_t kind, std::size_t length,
                        const std::vector<Reference> &references);

    // The file, whose root is that object.
    [[nodiscard]] std::string text(Reference root) const;
    // The same with any numbers in the trailer.
    struct Trailer
    {
        std::uint8_t offsetWidth = 4;
        std::uint8_t referenceWidth = 3;
        std::uint64_t count = 0;
        std::uint64_t root = 0;
        std::uint64_t table = 0;
    };
    [[nodiscard]] Trailer trailer(Reference root) const;
    [[nodiscard]] std::string text(const Trailer &trailer) const;
    // Where an object begins in the file.
    [[nodiscard]] std::size_t offset(Reference object) const { return _offsets.at(object); }

private:
    std::string _body = "bplist00";
    std::vector<std::size_t> _offsets;
};

// A record of a keyed archive.
struct ArchivedRecord
{
    struct Nothing
    {
    };
    struct Wrapped // a text in an object of its own: {"NS.string": ...}
    {
        std::string text;
        std::string className = "NSMutableString";
    };
    using Value = std::variant<Nothing, bool, int, std::string, std::u16string, Wrapped>;

    std::string className;
    std::vector<std::pair<std::string, Value>> values;
};

// The keyed archive of a list of records as the original platform writes it, of up to 65,536
// objects.
[[nodiscard]] std::string keyedArchive(const std::vector<ArchivedRecord> &records,
                                       const std::string &rootClass = "NSMutableArray");

// A keyed archive around other objects: `objects` are UIDs' targets in order, from "$null" on.
[[nodiscard]] std::string keyedArchiveOf(BinaryPropertyList &list,
                                         const std::vector<BinaryPropertyList::Reference> &objects,
                                         std::uint64_t rootUid = 1,
                                         const std::string &archiver = "NSKeyedArchiver",
                                         std::int64_t version = 100000);

} // namespace nimbrel::test
