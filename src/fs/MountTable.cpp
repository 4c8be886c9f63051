#include "fs/MountTable.h"

#include "config/UniqueFd.h"
#include "fs/DeadMountProbe.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

bool isOctal(char character) noexcept
{
    return character >= '0' && character <= '7';
}

// The kernel writes blanks, line ends, backslashes and '#' as a backslash and three octal digits.
std::string unescaped(std::string_view field)
{
    if (field.find('\\') == std::string_view::npos)
        return std::string(field);
    std::string text;
    text.reserve(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
        const std::string_view digits = field.substr(i + 1, 3);
        if (field[i] == '\\' && digits.size() == 3 && std::ranges::all_of(digits, isOctal)) {
            unsigned code = 0;
            std::from_chars(digits.data(), digits.data() + 3, code, 8);
            text.push_back(static_cast<char>(static_cast<unsigned char>(code)));
            i += 3;
        } else {
            text.push_back(field[i]);
        }
    }
    return text;
}

// At single blanks: a mount without a source has an empty field.
std::vector<std::string_view> split(std::string_view line, char separator)
{
    std::vector<std::string_view> fields;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find(separator, begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return fields;
}

std::optional<unsigned> number(std::string_view text)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<unsigned long> deviceNumber(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto major = number(text.substr(0, colon));
    const auto minor = number(text.substr(colon + 1));
    if (!major || !minor)
        return std::nullopt;
    return makedev(*major, *minor);
}

// id parent major:minor root point options [optional ...] - type source options
std::optional<Mount> parseLine(std::string_view line)
{
    constexpr std::size_t fixedFields = 6;
    const std::vector<std::string_view> fields = split(line, ' ');
    if (fields.size() < fixedFields)
        return std::nullopt;
    const auto dash = std::find(fields.begin() + fixedFields, fields.end(), "-");
    const auto id = number(fields[0]);
    const auto parent = number(fields[1]);
    const auto device = deviceNumber(fields[2]);
    if (std::distance(dash, fields.end()) < 3 || !id || !parent || !device)
        return std::nullopt;
    return Mount{.point = unescaped(fields[4]),
                 .type = unescaped(dash[1]),
                 .source = unescaped(dash[2]),
                 .device = *device,
                 .id = *id,
                 .parent = *parent,
                 .root = unescaped(fields[3])};
}

// Where a mount hangs: on none where the table begins, as in a root of its own.
bool standsOn(const std::vector<Mount> &table, const Mount &mount, const Mount *parent)
{
    if (parent != nullptr)
        return mount.parent == parent->id && mount.id != parent->id;
    return mount.parent == mount.id ||
           std::ranges::find(table, mount.parent, &Mount::id) == table.end();
}

// The mount that a walk along `path` enters first from `from`: the nearest one covers those behind.
const Mount *nextOnTheWay(const std::vector<Mount> &table, const Mount *from,
                          const std::string &path)
{
    const Mount *next = nullptr;
    for (const Mount &mount : table) {
        const bool onTheWay = isAtOrBelow(path, mount.point) && standsOn(table, mount, from);
        if (onTheWay && (next == nullptr || mount.point.size() < next->point.size()))
            next = &mount;
    }
    return next;
}

} // namespace

bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept
{
    if (folder == "/")
        return path.starts_with('/');
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::vector<Mount> parseMountTable(std::string_view mountinfo)
{
    std::vector<Mount> table;
    for (const std::string_view line : split(mountinfo, '\n'))
        if (std::optional<Mount> mount = parseLine(line))
            table.push_back(*std::move(mount));
    return table;
}

std::vector<Mount> mountTable()
{
    const UniqueFd file(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    std::string text;
    std::size_t size = 0;
    do { // the kernel gives whole lines, and as many as it likes
        text.resize(size + 65536);
        const ssize_t got = file ? ::read(file.get(), text.data() + size, text.size() - size) : 0;
        text.resize(size + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    } while (std::exchange(size, text.size()) != text.size());
    return parseMountTable(text);
}

std::optional<Mount> mountOf(const std::vector<Mount> &table, const std::string &path)
{
    const Mount *found = nullptr;
    // Each step goes one mount up; the count ends the walk even in a table that makes no sense.
    for (std::size_t step = 0; step < table.size(); ++step) {
        const Mount *next = nextOnTheWay(table, found, path);
        if (next == nullptr)
            break;
        found = next;
    }
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

std::optional<Mount> mountAt(const std::vector<Mount> &table, const std::string &path)
{
    std::optional<Mount> mount = mountOf(table, path);
    return mount && mount->point == path ? std::move(mount) : std::nullopt;
}

std::optional<Mount> mountAt(const std::string &path)
{
    return mountAt(mountTable(), path);
}

bool isFuse(const Mount &mount)
{
    return mount.type == "fuse" || mount.type == "fuseblk" || mount.type.starts_with("fuse.") ||
           mount.type.starts_with("fuseblk.");
}

bool isDeadMount(const std::string &path)
{
    const std::optional<Mount> mount = mountAt(path);
    return mount && isFuse(*mount) && hasLostItsProcess(path);
}

} // namespace nimbrel
