// Walks the objects of a binary property list; stays inside platform/.
#pragma once

#include "crypto/Bytes.h"

#include <QString>

#include <vector>

namespace nimbrel {

// Reads a property list's structure without building anything of it.
class ShapeReader final
{
public:
    explicit ShapeReader(ByteView data) : _data(data) {}

    // False with trouble() set.
    [[nodiscard]] bool isSound() { return readTrailer() && visit(_root, 1); }
    [[nodiscard]] QString trouble() const { return _trouble; }

private:
    // The kinds, as the upper half of a marker byte.
    enum class Kind : std::uint8_t
    {
        Simple = 0x0,
        Integer = 0x1,
        Real = 0x2,
        Date = 0x3,
        Data = 0x4,
        Ascii = 0x5,
        Utf16 = 0x6,
        Uid = 0x8,
        Array = 0xA,
        Dictionary = 0xD,
    };
    enum class State : std::uint8_t
    {
        Unseen,
        Open,
        Done
    };
    // What is known of an object: the memory that it takes with all it holds, at every place that
    // holds it; and 1 for a value, one more for what holds it.
    struct Seen
    {
        quint64 memory = 0;
        std::uint8_t height = 0;
        State state = State::Unseen;
    };
    // An object's content: where it begins, and how many bytes, characters or elements it has.
    struct Content
    {
        Kind kind = Kind::Simple;
        std::size_t begin = 0;
        quint64 length = 0;
    };

    bool refuse(const QString &why)
    {
        _trouble = why;
        return false;
    }
    [[nodiscard]] quint64 number(std::size_t begin, std::size_t width) const;
    [[nodiscard]] bool fits(const Content &content, quint64 width) const;
    bool readTrailer();
    bool visit(quint64 object, unsigned depth);
    bool readContent(quint64 object, Content &content);
    bool readLongLength(Content &content);
    bool checkValue(const Content &content);
    bool checkInteger(const Content &content);
    bool checkAscii(const Content &content);
    bool checkUtf16(const Content &content);
    bool checkContainer(const Content &content, unsigned depth, Seen &sum);
    bool checkKeys(const Content &content);
    bool addElement(quint64 object, unsigned depth, Seen &sum);

    ByteView _data;
    std::size_t _offsetWidth = 0;
    std::size_t _referenceWidth = 0;
    std::size_t _tableBegin = 0; // where the objects end
    quint64 _root = 0;
    std::vector<Seen> _seen;
    QString _trouble;
};

} // namespace nimbrel
