#include "config/ConfigurationText.h"

#include <fmt/format.h>

namespace nimbrel {

namespace {

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

} // namespace

std::optional<std::string> filledTemplate(std::string_view text,
                                          std::span<const std::string> values)
{
    constexpr std::string_view placeholder = "%@";
    std::string result;
    for (const std::string &value : values) {
        const std::size_t place = text.find(placeholder);
        if (place == std::string_view::npos)
            return std::nullopt;
        result += text.substr(0, place);
        result += escaped(value);
        text.remove_prefix(place + placeholder.size());
    }
    if (text.find(placeholder) != std::string_view::npos)
        return std::nullopt;
    return result += text;
}

std::optional<std::string> textWithElement(std::string_view text, std::string_view name,
                                           std::string_view value)
{
    const std::string opening = fmt::format("<{}>", name);
    const std::size_t start = text.find(opening);
    const std::size_t end = text.find(fmt::format("</{}>", name));
    if (start == std::string_view::npos || end == std::string_view::npos || end < start)
        return std::nullopt;
    return fmt::format("{}{}{}", text.substr(0, start + opening.size()), escaped(value),
                       text.substr(end));
}

} // namespace nimbrel
