#include "mount/SmallVolume.h"

#include "mount/Calls.h"
#include "mount/OpenFile.h"
#include "support/Process.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr const char *ballast = "/ballast";
constexpr const char *ballastItems = "/ballast-items";

void mountMemory(const std::string &path)
{
    if (::mount("tmpfs", path.c_str(), "tmpfs", MS_NOSUID | MS_NODEV,
                "size=16m,nr_inodes=1000,mode=755") != 0)
        throw NoSmallVolume(std::string("no tmpfs can be mounted: ") + std::strerror(errno));
}

void need(const std::string &script)
{
    const RunResult result = shell(script);
    if (result.status != 0)
        throw NoSmallVolume(script + ": " + result.error);
}

void mountDisk(const std::string &image, const std::string &path)
{
    need("PATH=$PATH:/usr/sbin:/sbin; truncate -s 16M '" + image +
         "' && mkfs.ext4 -q -F -m 0 -N 1000 '" + image + "' && mount -o loop '" + image + "' '" +
         path + "' && chmod 755 '" + path + "'");
}

// Writes until the store takes no more, or `enough` says so.
template <class Enough>
void writeOn(const OpenFile &file, std::size_t piece, Enough enough)
{
    const std::string data(piece, 'b');
    while (!enough()) {
        if (::write(file.id(), data.data(), data.size()) > 0)
            continue;
        if (errno != ENOSPC)
            must(-1, "write ballast");
        return;
    }
}

} // namespace

void PrintTo(SmallVolumeKind kind, std::ostream *stream)
{
    *stream << (kind == SmallVolumeKind::Memory ? "tmpfs" : "ext4");
}

SmallVolume::SmallVolume(SmallVolumeKind kind) : _path(_temp.makeFolder("volume"))
{
    if (::geteuid() != 0)
        throw NoSmallVolume("only root can mount a small volume");
    if (kind == SmallVolumeKind::Memory)
        mountMemory(_path);
    else
        mountDisk(_temp / "image", _path);
}

SmallVolume::~SmallVolume()
{
    // Something else on the machine may look into it for a moment.
    const bool gone = eventually([&] { return ::umount2(_path.c_str(), 0) == 0; });
    if (!gone)
        ::umount2(_path.c_str(), MNT_DETACH);
}

std::string SmallVolume::makeFolder() const
{
    std::string path = _path + "/folder-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr)
        must(-1, "mkdtemp " + path);
    must(::chmod(path.c_str(), 0755), "chmod " + path);
    return path;
}

std::uint64_t SmallVolume::freeBytes() const
{
    struct statvfs space = {};
    must(::statvfs(_path.c_str(), &space), "statvfs " + _path);
    return std::uint64_t{space.f_bavail} * space.f_frsize;
}

void SmallVolume::takeSpace(std::size_t piece, std::uint64_t leaving) const
{
    const OpenFile file(_path + ballast, O_WRONLY | O_CREAT | O_APPEND);
    writeOn(file, piece, [&] { return leaving > 0 && freeBytes() < leaving + piece; });
    // Space that was only reserved is settled, and what is left over shows.
    must(::syncfs(file.id()), "syncfs");
}

void SmallVolume::fill(std::uint64_t leaving) const
{
    constexpr std::size_t large = std::size_t{1} << 18U;
    constexpr std::size_t small = 4096;
    for (int round = 0; round < 2; ++round) {
        takeSpace(large, leaving);
        takeSpace(small, leaving);
    }
}

void SmallVolume::fillItems() const
{
    std::filesystem::create_directory(_path + ballastItems);
    for (int i = 0;; ++i) {
        const std::string path = _path + ballastItems + "/" + std::to_string(i);
        if (UniqueFd(::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)))
            continue;
        if (errno != ENOSPC)
            must(-1, path);
        return;
    }
}

void SmallVolume::freeAll() const
{
    std::filesystem::remove(_path + ballast);
    std::filesystem::remove_all(_path + ballastItems);
}

void SmallVolume::makeReadOnly() const
{
    must(::mount(nullptr, _path.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
         "remount " + _path);
}

} // namespace nimbrel::test
