#include "platform/SettingsFileCheck.h"

#include <algorithm>
#include <array>
#include <optional>

namespace nimbrel {

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

bool isHexDigit(char character)
{
    return QByteArrayView("0123456789abcdefABCDEF").contains(character);
}

QByteArrayView withoutBlanks(QByteArrayView line)
{
    while (!line.isEmpty() && isBlank(line.front()))
        line = line.sliced(1);
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line;
}

// How long the escape is that `text` begins with; 0 for one that QSettings doesn't write. One that
// stands for "@" could hide a typed value.
qsizetype escapeLength(QByteArrayView text)
{
    if (text.size() < 2)
        return 0;
    if (QByteArrayView("abfnrtv\"?'\\").contains(text[1]))
        return 2;
    if (text[1] == '0') // more octal digits would be part of it
        return text.size() > 2 && text[2] >= '0' && text[2] <= '7' ? 0 : 2;
    if (text[1] != 'x')
        return 0;
    qsizetype end = 2;
    while (end < text.size() && isHexDigit(text[end]))
        ++end;
    const uint code = text.sliced(2, end - 2).toByteArray().toUInt(nullptr, 16);
    return end == 2 || end > 6 || code == '@' ? 0 : end;
}

bool isKindOfOurs(QByteArrayView value)
{
    constexpr std::array<QByteArrayView, 3> kinds = {"@Invalid()", "@String(", "@ByteArray("};
    return std::any_of(kinds.begin(), kinds.end(),
                       [value](QByteArrayView kind) { return value.startsWith(kind); });
}

// QSettings takes "@String(text" for plain text.
bool isClosed(QByteArrayView value)
{
    value = withoutBlanks(value);
    if (value.endsWith('"'))
        value.chop(1);
    return value.endsWith(')');
}

// QSettings skips blanks, quotes and a byte order mark before a value's first character.
QByteArrayView fromFirstCharacter(QByteArrayView value)
{
    bool inQuotes = false;
    for (;;) {
        if (value.startsWith('"'))
            inQuotes = !inQuotes;
        else if (value.startsWith(byteOrderMark))
            value = value.sliced(byteOrderMark.size() - 1);
        else if (inQuotes || value.isEmpty() || !isBlank(value.front()))
            return value;
        value = value.sliced(1);
    }
}

// Up to a comment behind it. Nothing when quotes are open, an escape is none, or it is a list.
std::optional<QByteArrayView> withoutComment(QByteArrayView value)
{
    bool inQuotes = false;
    qsizetype at = 0;
    while (at < value.size() && (inQuotes || value[at] != ';')) {
        const char character = value[at];
        const qsizetype length = character == '\\' ? escapeLength(value.sliced(at)) : 1;
        if (length == 0 || (character == ',' && !inQuotes))
            return std::nullopt;
        inQuotes = inQuotes != (character == '"');
        at += length;
    }
    if (inQuotes)
        return std::nullopt;
    return value.first(at);
}

bool isValue(QByteArrayView text)
{
    const auto value = withoutComment(text);
    if (!value)
        return false;
    const QByteArrayView content = fromFirstCharacter(*value);
    return !content.startsWith('@') || content.startsWith("@@") ||
           (isKindOfOurs(content) && isClosed(content));
}

bool isPair(QByteArrayView line)
{
    qsizetype equals = 0;
    while (equals < line.size() && line[equals] != '=') {
        if (line[equals] == '"' || line[equals] == ';')
            return false;
        equals += line[equals] == '\\' ? 2 : 1; // it stands for the slash in a key
    }
    return equals < line.size() && !line.first(equals).trimmed().isEmpty() &&
           isValue(line.sliced(equals + 1));
}

bool isSection(QByteArrayView line)
{
    const qsizetype end = line.indexOf(']');
    if (end < 2)
        return false;
    const QByteArrayView name = line.sliced(1, end - 1);
    const QByteArrayView rest = withoutBlanks(line.sliced(end + 1));
    return !name.contains('"') && !name.contains('\\') && !name.contains(';') &&
           (rest.isEmpty() || rest.startsWith(';'));
}

} // namespace

CheckedSettings checkedSettings(QByteArrayView text)
{
    CheckedSettings checked;
    if (text.startsWith(byteOrderMark))
        text = text.sliced(byteOrderMark.size());
    const auto isBreak = [](char character) { return character == '\n' || character == '\r'; };
    for (const auto *start = text.begin(); start < text.end();) {
        const auto *end = std::find_if(start, text.end(), isBreak);
        const QByteArrayView line = withoutBlanks(QByteArrayView(start, end));
        start = end + 1;
        if (line.isEmpty() || line.startsWith(';') || line.startsWith('#'))
            continue;
        if (line.isValidUtf8() && (line.startsWith('[') ? isSection(line) : isPair(line)))
            checked.text.append(line).append('\n');
        else
            checked.isDamaged = true;
    }
    return checked;
}

} // namespace nimbrel
