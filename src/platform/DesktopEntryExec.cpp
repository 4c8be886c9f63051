#include "platform/DesktopEntry.h"

#include <cstring>

namespace nimbrel {

namespace {

bool isOneOf(char character, const char *characters)
{
    return character != '\0' && std::strchr(characters, character) != nullptr;
}

// Values of the kind "string": a backslash and a letter stand for what a line can't hold.
constexpr struct
{
    char letter;
    char character;
} escapes[] = {{'\\', '\\'}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'s', ' '}};

QByteArray escaped(const QByteArray &text)
{
    QByteArray made;
    for (const char character : text) {
        char letter = '\0';
        for (const auto &escape : escapes)
            if (escape.character == character && character != ' ')
                letter = escape.letter;
        if (letter == '\0')
            made += character;
        else
            (made += '\\') += letter;
    }
    return made;
}

// An escape that isn't defined stays as it stands.
QByteArray unescaped(const QByteArray &value)
{
    QByteArray made;
    for (qsizetype at = 0; at < value.size(); ++at) {
        made += value[at];
        if (value[at] != '\\' || at + 1 == value.size())
            continue;
        for (const auto &escape : escapes)
            if (escape.letter == value[at + 1]) {
                made.back() = escape.character;
                ++at;
                break;
            }
    }
    return made;
}

} // namespace

QByteArray execValue(const QByteArray &path, const QByteArray &argument)
{
    QByteArray quoted;
    for (const char character : path) {
        if (isOneOf(character, "\"`$\\"))
            quoted += '\\';
        if (character == '%') // would be a field code
            quoted += '%';
        quoted += character;
    }
    return escaped('"' + quoted + "\" " + argument);
}

QByteArray programOfExec(const QByteArray &value)
{
    const QByteArray command = unescaped(value);
    const bool isQuoted = command.startsWith('"');
    QByteArray program;
    for (qsizetype at = isQuoted ? 1 : 0; at < command.size(); ++at) {
        if (isOneOf(command[at], isQuoted ? "\"" : " \t\n"))
            return program;
        const bool isPair = command[at] == '\\' || command.sliced(at).startsWith("%%");
        if (isPair && at + 1 < command.size())
            ++at;
        program += command[at];
    }
    return isQuoted ? QByteArray() : program; // a quotation without its end is none
}

} // namespace nimbrel
