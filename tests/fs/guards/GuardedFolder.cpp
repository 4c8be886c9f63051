#include "fs/guards/GuardedFolder.h"

#include "fs/GuardedListing.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

template <class T>
T take(NBErrnoOr<T> result, const std::string &what)
{
    if (!result)
        throw std::runtime_error(what + ": " + std::strerror(result.code()));
    return *std::move(result);
}

} // namespace

ClearedUmask::ClearedUmask() : _before(::umask(0)) {}

ClearedUmask::~ClearedUmask()
{
    ::umask(_before);
}

GuardedFolder::GuardedFolder(GuardedFolderOptions options) : _store(std::move(options.store))
{
    if (_store.empty()) {
        _temp = std::make_unique<TempFolder>();
        _store = _temp->makeFolder("store");
    }
    _preferences.set(preferenceKey::blockSize, options.blockSize);
    _preferences.set(preferenceKey::allowHoles, options.allowHoles);
    _preferences.set(preferenceKey::areFilenamesEncrypted, !options.plainNames);
    _preferences.set(preferenceKey::kdfIterations, std::int64_t{1}); // deriving costs nothing
    reopen();
    _preferences.set(preferenceKey::encodedKey, _delegate->settings().encodedKey);
    _preferences.set(preferenceKey::salt, _delegate->settings().salt);
}

std::unique_ptr<NBNimbrelFS> GuardedFolder::bareDelegate() const
{
    std::unique_ptr<NBNimbrelFS> delegate = NBNimbrelFS::withRootPath(_store, _preferences);
    if (delegate == nullptr)
        throw std::runtime_error("no delegate");
    return delegate;
}

void GuardedFolder::reopen()
{
    _content.reset();
    _tree.reset();
    _delegate = bareDelegate();
    _content = std::make_unique<GuardedContent>(*_delegate);
    _tree = std::make_unique<GuardedTree>(*_delegate);
}

NBErrnoOr<std::vector<NBDirectoryEntry>> GuardedFolder::list(const std::string &path) const
{
    NBErrnoOr<GuardedListing> listing = GuardedListing::open(*_delegate, path);
    if (!listing)
        return listing.error();
    std::vector<NBDirectoryEntry> entries;
    for (;;) {
        const NBErrnoOr<NBDirectoryEntry *> entry = listing->next();
        if (!entry)
            return entry.error();
        if (*entry == nullptr)
            return entries;
        if (!isDotName((*entry)->name))
            entries.push_back(**entry);
    }
}

NBFileHandle GuardedFolder::create(const std::string &path, std::string_view text) const
{
    NBFileHandle file = take(_tree->create(path, O_RDWR | O_EXCL, 0644, thisUser()), path);
    if (take(_content->write(file, bytesOf(text), 0), path) != text.size())
        throw std::runtime_error(path + ": not all of it");
    return file;
}

NBFileHandle GuardedFolder::open(const std::string &path, int flags) const
{
    return take(_tree->open(path, flags), path);
}

std::string GuardedFolder::read(NBFileHandle &file) const
{
    // With room behind the end, which a read must not fill.
    constexpr std::size_t room = 5;
    std::string text(static_cast<std::size_t>(sizeOf(file)) + room, '?');
    const std::size_t got = take(_content->read(file, spanOf(text), 0), "read");
    text.resize(got);
    return text;
}

std::string GuardedFolder::readAt(const std::string &path) const
{
    NBFileHandle file = open(path, O_RDONLY);
    return read(file);
}

NBFileHandle memoryFile()
{
    NBFileHandle file{.descriptor = UniqueFd(::memfd_create("nimbrel-guards", MFD_CLOEXEC))};
    if (!file.descriptor)
        throw std::runtime_error("no memory file");
    return file;
}

std::int64_t sizeOf(const NBFileHandle &file)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        throw std::runtime_error("no size");
    return attributes.st_size;
}

Creator thisUser()
{
    return {::geteuid(), ::getegid()};
}

void PlainModel::write(std::string_view data, std::int64_t offset)
{
    if (data.empty())
        return;
    const std::size_t end = static_cast<std::size_t>(offset) + data.size();
    _text.resize(std::max(_text.size(), end));
    _text.replace(static_cast<std::size_t>(offset), data.size(), data);
}

void PlainModel::clear(std::int64_t from, std::int64_t to)
{
    for (std::int64_t i = from; i < std::min(to, size()); ++i)
        _text[static_cast<std::size_t>(i)] = '\0';
}

std::string nameOfHoles(const testing::TestParamInfo<bool> &info)
{
    return info.param ? "WithHoles" : "WithoutHoles";
}

std::string difference(std::string_view wanted, std::string_view got)
{
    if (wanted == got)
        return {};
    const std::size_t both = std::min(wanted.size(), got.size());
    const auto at = std::mismatch(wanted.begin(),
                                  wanted.begin() + static_cast<std::ptrdiff_t>(both), got.begin())
                        .first -
                    wanted.begin();
    return "differs at byte " + std::to_string(at) + ", " + std::to_string(wanted.size()) +
           " bytes wanted, " + std::to_string(got.size()) + " got";
}

} // namespace nimbrel::test
