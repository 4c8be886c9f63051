#include "fs/MountOptions.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nimbrel {

namespace {

// By these two Nimbrel finds its own disks again, so nobody else sets them; `nonempty` is always
// on in libfuse 3, which refuses the word.
constexpr std::array<std::string_view, 8> droppedBeginnings = {
    "volname=",  "modules=",   "from_code=", "to_code=",
    "iconpath=", "fssubtype=", "fsname=",    "subtype="};
constexpr std::array<std::string_view, 4> droppedWords = {"native_xattr", "local", "auto_cache",
                                                          "nonempty"};

constexpr std::array<std::string_view, 2> sharingWords = {"allow_other", "allow_root"};

bool isDropped(std::string_view option)
{
    return option.empty() || std::ranges::find(droppedWords, option) != droppedWords.end() ||
           std::ranges::any_of(droppedBeginnings, [&](std::string_view beginning) {
               return option.starts_with(beginning);
           });
}

// libfuse takes options in one list: a comma ends one, a backslash protects what follows.
std::string escaped(std::string_view value)
{
    std::string text;
    for (const char character : value) {
        if (character == ',' || character == '\\')
            text.push_back('\\');
        text.push_back(character);
    }
    return text;
}

} // namespace

bool isShared(const std::vector<std::string> &options)
{
    return std::ranges::find_first_of(options, sharingWords) != options.end();
}

std::vector<std::string> libfuseOptions(const std::vector<std::string> &options,
                                        const std::string &encryptedFolder)
{
    std::vector<std::string> translated = {"fsname=" + escaped(encryptedFolder), "subtype=nimbrel",
                                           "nosuid", "nodev"};
    // On a private disk every caller is who serves it, and the store decides; where others are let
    // in the kernel has to.
    if (isShared(options))
        translated.emplace_back("default_permissions");
    for (const std::string &option : options)
        if (!isDropped(option) && std::ranges::find(translated, option) == translated.end())
            translated.push_back(option);
    return translated;
}

} // namespace nimbrel
