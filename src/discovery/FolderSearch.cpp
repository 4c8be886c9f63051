#include "discovery/FolderSearch.h"

#include "config/ConfigurationLookup.h"
#include "fs/DirectoryNames.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <strings.h>
#include <sys/stat.h>
#include <utility>

namespace nimbrel {

namespace {

bool isDirectory(int folder, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat attributes = {}; // some file systems don't tell the kind
    return ::fstatat(folder, entry.d_name, &attributes, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(attributes.st_mode);
}

bool holds(int folder, const std::string &path)
{
    struct stat attributes = {};
    return ::fstatat(folder, path.c_str(), &attributes, 0) == 0;
}

bool hasConfiguration(int folder, const std::string &name)
{
    return holds(folder, name + '/' + std::string(configurationFileName)) ||
           holds(folder, name + '/' + std::string(oldConfigurationFileName));
}

// By its extension, in any case: the new one is enough, the old one isn't.
bool isEncryptedFolder(int folder, const char *name)
{
    const char *const dot = ::strrchr(name, '.');
    if (dot == nullptr)
        return false;
    return ::strcasecmp(dot, ".nmc") == 0 ||
           (::strcasecmp(dot, ".nm") == 0 && hasConfiguration(folder, name));
}

std::string canonical(const std::string &path)
{
    const std::unique_ptr<char, CFree<std::free>> resolved(::realpath(path.c_str(), nullptr));
    return resolved == nullptr ? path : std::string(resolved.get());
}

bool isForeign(const Mount &mount)
{
    return isFuse(mount) && !mount.type.starts_with("fuseblk"); // that one is an ordinary disk
}

} // namespace

FolderSearch::FolderSearch(std::string folder, std::stop_token stop,
                           const std::vector<Mount> &mounts)
    : _folder(std::move(folder)), _stop(std::move(stop))
{
    if (!_stop.stop_requested())
        passOverForeignDisks(mounts);
}

std::vector<std::string> FolderSearch::run()
{
    std::vector<std::string> found;
    if (_stop.stop_requested())
        return found;
    // The next one to look at is the last one.
    const auto push = [](std::vector<Entry> &waiting, std::vector<Entry> entries) {
        waiting.insert(waiting.end(), std::make_move_iterator(entries.rbegin()),
                       std::make_move_iterator(entries.rend()));
    };
    std::vector<Entry> waiting;
    push(waiting, list(_folder, 0));
    while (!waiting.empty() && !_stop.stop_requested()) {
        Entry entry = std::move(waiting.back());
        waiting.pop_back();
        if (entry.isTaken)
            found.push_back(std::move(entry.path));
        else
            push(waiting, list(entry.path, O_NOFOLLOW));
    }
    return found;
}

void FolderSearch::passOverForeignDisks(const std::vector<Mount> &mounts)
{
    const std::string root = canonical(_folder.empty() ? "/" : _folder);
    for (const Mount &mount : mounts)
        if (isForeign(mount) && mount.point != root && isAtOrBelow(mount.point, root))
            _foreign.insert(_folder + mount.point.substr(root == "/" ? 0 : root.size()));
}

std::vector<FolderSearch::Entry> FolderSearch::list(const std::string &folder, int flags)
{
    std::vector<Entry> entries;
    const DirectoryHandle directory =
        openDirectoryAt(AT_FDCWD, folder.empty() ? "/" : folder.c_str(), flags);
    if (directory == nullptr)
        return entries; // it can't be read, or its path is too long for the kernel
    const int descriptor = ::dirfd(directory.get());
    while (const dirent *entry = _stop.stop_requested() ? nullptr : ::readdir(directory.get())) {
        ++_visited;
        if (entry->d_name[0] == '.')
            continue;
        const bool isTaken = isEncryptedFolder(descriptor, entry->d_name);
        if (!isTaken && !isDirectory(descriptor, *entry))
            continue;
        std::string path = folder + '/' + entry->d_name;
        if (isTaken || !_foreign.contains(path))
            entries.push_back({std::move(path), isTaken});
    }
    return entries;
}

} // namespace nimbrel
