// What a single value may be.
#include "platform/ShapeReader.h"

namespace nimbrel {

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

} // namespace nimbrel
