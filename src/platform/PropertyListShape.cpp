#include "platform/PropertyListShape.h"

#include "crypto/Bytes.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace nimbrel {

namespace {

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr quint64 nodeMemory = 128; // bytes that libplist takes for a value besides its content

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

class ShapeReader final
{
public:
    explicit ShapeReader(ByteView data) : _data(data) {}

    [[nodiscard]] bool isSound() { return readTrailer() && visit(_root, 1); }
    [[nodiscard]] QString trouble() const { return _trouble; }

private:
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

// The caller has made sure that the bytes are there; at most eight count.
quint64 ShapeReader::number(std::size_t begin, std::size_t width) const
{
    quint64 value = 0;
    for (const std::uint8_t byte : _data.subspan(begin, width))
        value = value << 8U | byte;
    return value;
}

// Content never reaches into the offset table.
bool ShapeReader::fits(const Content &content, quint64 width) const
{
    return content.begin <= _tableBegin && content.length <= (_tableBegin - content.begin) / width;
}

bool ShapeReader::readTrailer()
{
    if (_data.size() > static_cast<std::size_t>(propertyListLimits::size))
        return refuse(QStringLiteral("it is too large"));
    if (_data.size() < header.size() + trailerSize || !textOf(_data).starts_with(header))
        return refuse(QStringLiteral("it is no binary property list"));
    const std::size_t trailer = _data.size() - trailerSize;
    _offsetWidth = _data[trailer + 6];
    _referenceWidth = _data[trailer + 7];
    const quint64 count = number(trailer + 8, 8);
    _root = number(trailer + 16, 8);
    const quint64 table = number(trailer + 24, 8);
    if (_offsetWidth < 1 || _offsetWidth > 8 || _referenceWidth < 1 || _referenceWidth > 8)
        return refuse(QStringLiteral("its trailer has impossible widths"));
    if (table < header.size() || table > trailer || count > (trailer - table) / _offsetWidth)
        return refuse(QStringLiteral("its table of objects lies outside the data"));
    if (count > propertyListLimits::objects)
        return refuse(QStringLiteral("it has too many objects"));
    _tableBegin = static_cast<std::size_t>(table);
    _seen.resize(static_cast<std::size_t>(count));
    return true;
}

bool ShapeReader::visit(quint64 object, unsigned depth)
{
    if (object >= _seen.size())
        return refuse(QStringLiteral("it refers to an object that isn't there"));
    Seen &seen = _seen[static_cast<std::size_t>(object)];
    if (seen.state == State::Open)
        return refuse(QStringLiteral("an object contains itself"));
    if (depth + std::max<unsigned>(seen.height, 1) - 1 > propertyListLimits::depth)
        return refuse(QStringLiteral("it is nested too deeply"));
    if (seen.state == State::Done)
        return true;
    Content content;
    if (!readContent(object, content))
        return false;
    const bool isContainer = content.kind == Kind::Array || content.kind == Kind::Dictionary;
    seen = {.memory = nodeMemory + (isContainer ? 0 : content.length),
            .height = 1,
            .state = State::Open};
    if (isContainer ? !checkContainer(content, depth, seen) : !checkValue(content))
        return false;
    seen.state = State::Done;
    return true;
}

bool ShapeReader::readContent(quint64 object, Content &content)
{
    const quint64 offset =
        number(_tableBegin + static_cast<std::size_t>(object) * _offsetWidth, _offsetWidth);
    if (offset < header.size() || offset >= _tableBegin)
        return refuse(QStringLiteral("an object lies outside the data"));
    const std::uint8_t marker = _data[static_cast<std::size_t>(offset)];
    content = {.kind = static_cast<Kind>(marker >> 4U),
               .begin = static_cast<std::size_t>(offset) + 1,
               .length = marker & 0x0FU};
    const bool hasLength = content.kind >= Kind::Data && content.kind != Kind::Uid;
    return !hasLength || content.length < 0x0F || readLongLength(content);
}

// From 15 on, the length follows as an integer object.
bool ShapeReader::readLongLength(Content &content)
{
    const Content marker{.kind = content.kind, .begin = content.begin, .length = 1};
    const std::uint8_t integer = fits(marker, 1) ? _data[content.begin] : std::uint8_t{0};
    const std::size_t width = std::size_t{1} << (integer & 0x0FU);
    if (integer >> 4U != static_cast<std::uint8_t>(Kind::Integer) || (integer & 0x0FU) > 3 ||
        !fits({.kind = content.kind, .begin = content.begin + 1, .length = width}, 1))
        return refuse(QStringLiteral("a length is damaged"));
    content.length = number(content.begin + 1, width);
    content.begin += 1 + width;
    return true;
}

bool ShapeReader::checkValue(const Content &content)
{
    switch (content.kind) {
    case Kind::Simple: // false and true
        return content.length == 8 || content.length == 9 ||
               refuse(QStringLiteral("it holds a value of an unknown kind"));
    case Kind::Integer:
        return checkInteger(content);
    case Kind::Real:
    case Kind::Date:
        if ((content.length == 3 || (content.kind == Kind::Real && content.length == 2)) &&
            fits({.kind = content.kind,
                  .begin = content.begin,
                  .length = quint64{1} << content.length},
                 1))
            return true;
        return refuse(QStringLiteral("a number is damaged"));
    case Kind::Uid:
        if (content.length < 8 &&
            fits({.kind = content.kind, .begin = content.begin, .length = content.length + 1}, 1))
            return true;
        return refuse(QStringLiteral("a reference is damaged"));
    case Kind::Data:
        return fits(content, 1) || refuse(QStringLiteral("a length is damaged"));
    case Kind::Ascii:
        return checkAscii(content);
    case Kind::Utf16:
        return checkUtf16(content);
    case Kind::Array:
    case Kind::Dictionary:
        break;
    }
    return refuse(QStringLiteral("it holds a value of an unknown kind"));
}

// Sixteen bytes are written for unsigned numbers that eight signed ones can't hold. A reader would
// cut them to something else.
bool ShapeReader::checkInteger(const Content &content)
{
    const quint64 width = quint64{1} << content.length;
    if (content.length > 4 ||
        !fits({.kind = content.kind, .begin = content.begin, .length = width}, 1))
        return refuse(QStringLiteral("a number is damaged"));
    if (content.length < 4)
        return true;
    const quint64 upper = number(content.begin, 8);
    const bool isNegative = (number(content.begin + 8, 8) >> 63U) != 0;
    return upper == (isNegative ? ~quint64{0} : 0) ||
           refuse(QStringLiteral("a number is too large"));
}

bool ShapeReader::checkAscii(const Content &content)
{
    if (!fits(content, 1))
        return refuse(QStringLiteral("a length is damaged"));
    for (const std::uint8_t byte :
         _data.subspan(content.begin, static_cast<std::size_t>(content.length)))
        if (byte == 0 || byte > 0x7F)
            return refuse(QStringLiteral("a text is damaged"));
    return true;
}

// Halves of a surrogate pair stand together, high before low.
bool ShapeReader::checkUtf16(const Content &content)
{
    if (!fits(content, 2))
        return refuse(QStringLiteral("a length is damaged"));
    bool isInPair = false;
    for (quint64 i = 0; i < content.length; ++i) {
        const quint64 unit = number(content.begin + 2 * static_cast<std::size_t>(i), 2);
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        if (unit == 0 || isLow != isInPair)
            return refuse(QStringLiteral("a text is damaged"));
        isInPair = isHigh;
    }
    return !isInPair || refuse(QStringLiteral("a text is damaged"));
}

bool ShapeReader::checkContainer(const Content &content, unsigned depth, Seen &sum)
{
    const bool isDictionary = content.kind == Kind::Dictionary;
    if (!fits(content, _referenceWidth * (isDictionary ? 2 : 1)))
        return refuse(QStringLiteral("a length is damaged"));
    const auto count = static_cast<std::size_t>(content.length) * (isDictionary ? 2 : 1);
    for (std::size_t i = 0; i < count; ++i) {
        const quint64 object = number(content.begin + i * _referenceWidth, _referenceWidth);
        if (!addElement(object, depth, sum))
            return false;
    }
    return !isDictionary || checkKeys(content);
}

bool ShapeReader::addElement(quint64 object, unsigned depth, Seen &sum)
{
    if (!visit(object, depth + 1))
        return false;
    const Seen &element = _seen[static_cast<std::size_t>(object)];
    sum.memory += element.memory;
    if (sum.memory > propertyListLimits::memory)
        return refuse(QStringLiteral("it holds too much"));
    sum.height = std::max<std::uint8_t>(sum.height, static_cast<std::uint8_t>(element.height + 1));
    return true;
}

// The keys stand before the values; all of them are visited by now.
bool ShapeReader::checkKeys(const Content &content)
{
    for (std::size_t i = 0; i < content.length; ++i) {
        Content key;
        if (!readContent(number(content.begin + i * _referenceWidth, _referenceWidth), key))
            return false;
        if (key.kind != Kind::Ascii && key.kind != Kind::Utf16)
            return refuse(QStringLiteral("a key is no text"));
    }
    return true;
}

} // namespace

std::optional<QString> propertyListTrouble(const QByteArray &data)
{
    ShapeReader reader(
        bytesOf(std::string_view(data.constData(), static_cast<std::size_t>(data.size()))));
    if (reader.isSound())
        return std::nullopt;
    return reader.trouble();
}

} // namespace nimbrel
