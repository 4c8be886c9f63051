#include "platform/ShapeReader.h"

#include "platform/PropertyListShape.h"

#include <algorithm>
#include <string_view>

namespace nimbrel {

namespace {

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr quint64 nodeMemory = 128; // bytes that libplist takes for a value besides its content

} // namespace

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

} // namespace nimbrel
