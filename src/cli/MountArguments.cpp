#include "cli/MountArguments.h"

#include "cli/CommandError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nimbrel {

namespace {

// Those that tell the system whose disk this is, or take away what protects the machine from it.
constexpr std::array<std::string_view, 11> reserved = {
    "fsname",       "subtype", "fd",   "rootmode",           "user_id", "group_id", "blkdev",
    "auto_unmount", "dev",     "suid", "default_permissions"};

void requireAllowed(const std::string &option)
{
    const std::string_view name = std::string_view(option).substr(0, option.find('='));
    if (name.empty() || std::find(reserved.begin(), reserved.end(), name) != reserved.end())
        throw CommandError(ExitStatus::Usage, fmt::format("-o {} can't be given", option),
                           "nimbrelctl sets such options itself; leave it out");
}

std::vector<std::string> splitAtCommas(const std::string &text)
{
    std::vector<std::string> pieces(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ',')
            pieces.emplace_back();
        else if (text[i] == '\\' && i + 1 < text.size())
            pieces.back().append({text[i], text[++i]});
        else
            pieces.back() += text[i];
    }
    return pieces;
}

} // namespace

MountArguments mountArguments(const std::vector<std::string> &given, bool readOnly, bool allowOther)
{
    MountArguments arguments;
    for (const std::string &text : given)
        for (std::string &option : splitAtCommas(text)) {
            requireAllowed(option);
            arguments.options.push_back(std::move(option));
        }
    if (readOnly)
        arguments.options.emplace_back("ro");
    if (allowOther)
        arguments.options.emplace_back("allow_other");
    const auto has = [&](std::string_view name) {
        return std::find(arguments.options.begin(), arguments.options.end(), name) !=
               arguments.options.end();
    };
    arguments.allowOther = has("allow_other");
    arguments.nonempty = has("nonempty");
    return arguments;
}

} // namespace nimbrel
