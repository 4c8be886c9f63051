#include "cli/ShellWord.h"

#include "cli/PrintableText.h"

#include <algorithm>
#include <cctype>

namespace nimbrel {

namespace {

bool isHarmless(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80U || std::isalnum(byte) != 0 ||
           std::string_view("/._-+,:=@%").find(character) != std::string_view::npos;
}

} // namespace

std::string shellWord(std::string_view text)
{
    std::string shown = printable(text);
    if (shown != text) { // bash's form, which knows the escapes
        std::string word = "$'";
        for (const char character : text) {
            if (character == '\'' || character == '\\')
                word += '\\';
            word += character;
        }
        return printable(word + "'");
    }
    if (!text.empty() && std::all_of(text.begin(), text.end(), isHarmless))
        return shown;
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += "'\\'";
        word += character;
    }
    return word + "'";
}

} // namespace nimbrel
