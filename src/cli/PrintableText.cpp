#include "cli/PrintableText.h"

#include "crypto/Utf8.h"

#include <fmt/format.h>

#include <system_error>

namespace nimbrel {

namespace {

// The length that a UTF-8 character with this first byte has, were it well-formed.
std::size_t characterLength(unsigned char first)
{
    if (first < 0xC0U)
        return 1;
    if (first < 0xE0U)
        return 2;
    return first < 0xF0U ? 3 : 4;
}

// U+0080 to U+009F act on terminals as the lower control characters do.
bool isUpperControl(std::string_view character)
{
    return character.size() == 2 && character[0] == '\xC2' &&
           static_cast<unsigned char>(character[1]) < 0xA0U;
}

std::string escape(unsigned char byte)
{
    switch (byte) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return fmt::format("\\x{:02x}", byte);
    }
}

} // namespace

std::string printable(std::string_view text)
{
    std::string made;
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        std::string_view character = text.substr(0, characterLength(first));
        const bool isControl = first < 0x20U || first == 0x7FU || isUpperControl(character);
        if (!isControl && isUtf8(character)) {
            made += character;
        } else {
            character = text.substr(0, 1);
            made += escape(first);
        }
        text.remove_prefix(character.size());
    }
    return made;
}

std::string errorText(int code)
{
    return std::generic_category().message(code);
}

} // namespace nimbrel
