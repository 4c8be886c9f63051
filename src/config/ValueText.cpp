#include "config/ValueText.h"

#include <algorithm>
#include <array>
#include <limits>

namespace nimbrel {

namespace {

using namespace std::string_view_literals;

// In UTF-8. No two of them end alike with one inside the other, so they can be cut from the end,
// too.
constexpr std::array whiteSpaces = {"\t"sv,           "\n"sv,           "\v"sv,
                                    "\f"sv,           "\r"sv,           " "sv,
                                    "\xC2\x85"sv,     "\xC2\xA0"sv,     "\xE1\x9A\x80"sv,
                                    "\xE2\x80\x80"sv, "\xE2\x80\x81"sv, "\xE2\x80\x82"sv,
                                    "\xE2\x80\x83"sv, "\xE2\x80\x84"sv, "\xE2\x80\x85"sv,
                                    "\xE2\x80\x86"sv, "\xE2\x80\x87"sv, "\xE2\x80\x88"sv,
                                    "\xE2\x80\x89"sv, "\xE2\x80\x8A"sv, "\xE2\x80\xA8"sv,
                                    "\xE2\x80\xA9"sv, "\xE2\x80\xAF"sv, "\xE2\x81\x9F"sv,
                                    "\xE3\x80\x80"sv};

std::size_t whiteSpaceAtStart(std::string_view text) noexcept
{
    const auto found =
        std::find_if(whiteSpaces.begin(), whiteSpaces.end(),
                     [&](std::string_view space) { return text.starts_with(space); });
    return found == whiteSpaces.end() ? 0 : found->size();
}

std::size_t whiteSpaceAtEnd(std::string_view text) noexcept
{
    const auto found = std::find_if(whiteSpaces.begin(), whiteSpaces.end(),
                                    [&](std::string_view space) { return text.ends_with(space); });
    return found == whiteSpaces.end() ? 0 : found->size();
}

std::string_view withoutLeadingSpace(std::string_view text) noexcept
{
    while (const std::size_t length = whiteSpaceAtStart(text))
        text.remove_prefix(length);
    return text;
}

bool isSign(char character) noexcept
{
    return character == '+' || character == '-';
}

bool isDigit(char character) noexcept
{
    return character >= '0' && character <= '9';
}

} // namespace

std::string_view trimmedText(std::string_view text) noexcept
{
    text = withoutLeadingSpace(text);
    while (const std::size_t length = whiteSpaceAtEnd(text))
        text.remove_suffix(length);
    return text;
}

std::int64_t integerOfText(std::string_view text) noexcept
{
    using Limits = std::numeric_limits<std::int64_t>;
    text = withoutLeadingSpace(text);
    const bool isNegative = text.starts_with('-');
    if (!text.empty() && isSign(text.front()))
        text.remove_prefix(1);
    // Gathered as a negative number: that side of the range holds one more.
    std::int64_t value = 0;
    for (const char character : text) {
        if (!isDigit(character))
            break;
        const std::int64_t digit = character - '0';
        if (value < (Limits::min() + digit) / 10)
            return isNegative ? Limits::min() : Limits::max();
        value = value * 10 - digit;
    }
    if (isNegative)
        return value;
    return value == Limits::min() ? Limits::max() : -value;
}

bool booleanOfText(std::string_view text) noexcept
{
    text = withoutLeadingSpace(text);
    if (!text.empty() && isSign(text.front()))
        text.remove_prefix(1);
    const std::size_t start = text.find_first_not_of('0');
    if (start == std::string_view::npos)
        return false;
    return "YyTt123456789"sv.find(text[start]) != std::string_view::npos;
}

} // namespace nimbrel
