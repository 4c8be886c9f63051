#include "fs/MountHolders.h"

#include "config/UniqueFd.h"
#include "fs/MountTable.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace nimbrel {

namespace {

namespace fs = std::filesystem;

// proc(5)'s links are read as text: nobody asks the disk.
std::string linkText(const std::string &link)
{
    std::string text(PATH_MAX, '\0');
    const ssize_t length = ::readlink(link.c_str(), text.data(), text.size());
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return text;
}

// Names of /proc that are numbers: processes, descriptors. What may not be read has none.
std::vector<std::string> numberedEntries(const std::string &folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        std::string name = it->path().filename();
        if (std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; }))
            names.push_back(std::move(name));
    }
    return names;
}

// Which mount an open file belongs to, as the kernel numbers them.
std::optional<unsigned> mountNumber(const std::string &fdinfo)
{
    std::ifstream stream(fdinfo);
    std::string key;
    for (unsigned value = 0; stream >> key;)
        if (key == "mnt_id:")
            return stream >> value ? std::optional(value) : std::nullopt;
    return std::nullopt;
}

std::optional<std::string> openFileOn(const Mount &disk, const std::string &process)
{
    for (const std::string &number : numberedEntries(process + "/fd"))
        if (mountNumber(fmt::format("{}/fdinfo/{}", process, number)) == disk.id)
            return linkText(fmt::format("{}/fd/{}", process, number));
    return std::nullopt;
}

// A link's text may also mean a folder that the disk covers. O_PATH asks the disk nothing.
std::optional<std::string> folderOn(const Mount &disk, const std::string &link)
{
    std::string text = linkText(link);
    if (!isAtOrBelow(text, disk.point))
        return std::nullopt;
    const UniqueFd folder(::open(link.c_str(), O_PATH | O_CLOEXEC));
    if (!folder || mountNumber(fmt::format("/proc/self/fdinfo/{}", folder.get())) != disk.id)
        return std::nullopt;
    return text;
}

// "00:2b" of a line of /proc/PID/maps.
bool isDevice(std::string_view text, unsigned long device)
{
    unsigned major = 0;
    unsigned minor = 0;
    const char *end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, major, 16);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != ':')
        return false;
    const auto second = std::from_chars(first.ptr + 1, end, minor, 16);
    return second.ec == std::errc() && makedev(major, minor) == device;
}

// address permissions offset device inode path
std::optional<std::string> mappingOn(const Mount &disk, const std::string &process)
{
    std::ifstream stream(process + "/maps");
    std::string address;
    std::string permissions;
    std::string offset;
    std::string device;
    std::string inode;
    std::string path;
    while (stream >> address >> permissions >> offset >> device >> inode) {
        std::getline(stream >> std::noskipws, path);
        stream >> std::skipws;
        const std::size_t begin = path.find('/');
        if (begin == std::string::npos || !isDevice(device, disk.device))
            continue;
        if (isAtOrBelow(std::string_view(path).substr(begin), disk.point))
            return path.substr(begin);
    }
    return std::nullopt;
}

std::optional<std::string> heldBy(const std::string &process, const Mount &disk)
{
    if (std::optional<std::string> file = openFileOn(disk, process))
        return file;
    for (const char *link : {"/cwd", "/root"})
        if (std::optional<std::string> folder = folderOn(disk, process + link))
            return folder;
    return mappingOn(disk, process);
}

std::string programName(const std::string &process)
{
    std::ifstream stream(process + "/comm");
    std::string name;
    std::getline(stream, name);
    return name;
}

std::string filled(std::string text, std::string_view place, const std::string &with)
{
    if (const std::size_t at = text.find(place); at != std::string::npos)
        text.replace(at, place.size(), with);
    return text;
}

std::string describe(const MountHolder &holder, const HolderWords &words)
{
    if (holder.process == 0)
        return filled(words.mounted, "{path}", holder.path);
    const std::string who = fmt::format("{} ({})", holder.name, holder.process);
    const std::string &form = holder.path.empty() ? words.uses : words.hasOpen;
    return filled(filled(form, "{who}", who), "{path}", holder.path);
}

} // namespace

std::vector<MountHolder> mountHolders(const std::string &mountPoint)
{
    std::vector<MountHolder> holders;
    const std::vector<Mount> table = mountTable();
    const std::optional<Mount> disk = mountAt(table, mountPoint);
    if (!disk)
        return holders;
    for (const Mount &mount : table)
        if (mount.parent == disk->id)
            holders.push_back({.process = 0, .name = {}, .path = mount.point});
    for (const std::string &number : numberedEntries("/proc")) {
        const std::string process = "/proc/" + number;
        if (std::optional<std::string> path = heldBy(process, *disk))
            holders.push_back({.process = static_cast<pid_t>(std::stol(number)),
                               .name = programName(process),
                               .path = *std::move(path)});
    }
    return holders;
}

std::string describeHolders(const std::vector<MountHolder> &holders, const HolderWords &words)
{
    constexpr std::size_t named = 3;
    std::string text;
    for (std::size_t i = 0; i < std::min(named, holders.size()); ++i)
        text += (i == 0 ? "" : ", ") + describe(holders[i], words);
    if (holders.size() > named)
        text += filled(words.more, "{count}", std::to_string(holders.size() - named));
    return text;
}

} // namespace nimbrel
