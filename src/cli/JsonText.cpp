#include "cli/JsonText.h"

#include "crypto/Utf8.h"

#include <fmt/format.h>

namespace nimbrel {

namespace {

void appendCharacter(std::string &json, char character, bool isUtf8Text)
{
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\')
        json += {'\\', character};
    else if (byte < 0x20U || byte == 0x7FU)
        json += fmt::format("\\u{:04x}", byte);
    else if (byte >= 0x80U && !isUtf8Text)
        json += "\\ufffd";
    else
        json += character;
}

} // namespace

std::string jsonString(std::string_view text)
{
    const bool isUtf8Text = isUtf8(text);
    std::string json = "\"";
    for (const char character : text)
        appendCharacter(json, character, isUtf8Text);
    return json + '"';
}

} // namespace nimbrel
