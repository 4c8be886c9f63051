#include "fs/Node.h"

#include <algorithm>
#include <bit>

namespace nimbrel {

namespace {

std::uint64_t nanoseconds(const timespec &time) noexcept
{
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U +
           static_cast<std::uint64_t>(time.tv_nsec);
}

} // namespace

ContentVersion ContentVersion::of(const struct stat &attributes) noexcept
{
    return {nanoseconds(attributes.st_mtim), nanoseconds(attributes.st_ctim), attributes.st_size};
}

std::uint64_t ContentVersion::digest() const noexcept
{
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U; // odd, bits well spread
    std::uint64_t digest = 1;
    for (const std::uint64_t part : {modified, changed, static_cast<std::uint64_t>(size)})
        digest = std::rotl((digest ^ part) * factor, 29);
    return std::max<std::uint64_t>(digest, 1);
}

const std::vector<OpenFile *> &Node::openFiles() const noexcept
{
    static const std::vector<OpenFile *> none;
    return _opened == nullptr ? none : _opened->files;
}

ContentVersion Node::version() const noexcept
{
    return _opened == nullptr ? ContentVersion() : _opened->version;
}

void Node::setVersion(const ContentVersion &version)
{
    opened().version = version;
}

Node::Opened &Node::opened()
{
    if (_opened == nullptr)
        _opened = std::make_unique<Opened>();
    return *_opened;
}

void Node::addOpenFile(OpenFile &file)
{
    opened().files.push_back(&file);
}

void Node::removeOpenFile(OpenFile &file) noexcept
{
    if (_opened == nullptr)
        return;
    std::vector<OpenFile *> &files = _opened->files;
    files.erase(std::remove(files.begin(), files.end(), &file), files.end());
    if (files.empty())
        std::vector<OpenFile *>().swap(files); // the version alone is kept
}

} // namespace nimbrel
