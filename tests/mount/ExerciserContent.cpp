// What the exerciser does to the content of files.
#include "mount/Calls.h"
#include "mount/Exerciser.h"
#include "mount/Mapping.h"
#include "mount/OrdinaryDisk.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

void put(std::string &content, std::size_t offset, std::string_view data)
{
    if (content.size() < offset + data.size())
        content.resize(offset + data.size(), '\0');
    content.replace(offset, data.size(), data);
}

std::string_view piece(const std::string &content, std::size_t offset, std::size_t length)
{
    return offset >= content.size() ? std::string_view()
                                    : std::string_view(content).substr(offset, length);
}

bool isZero(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte == '\0'; });
}

std::size_t pageSize()
{
    return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

} // namespace

void Exerciser::write()
{
    Handle *handle = someHandle(O_WRONLY);
    if (handle == nullptr || (handle->flags & O_APPEND) != 0)
        return;
    const std::size_t offset = _dice.offset(handle->content->bytes.size());
    const std::size_t length = _dice.length(offset);
    const std::string_view data = _dice.bytes(length);
    note(*handle, fmt::format("write {} at {}", length, offset));
    handle->file.writeAt(data, static_cast<off_t>(offset));
    if (length != 0)
        put(handle->content->bytes, offset, data);
}

void Exerciser::append()
{
    Handle *handle = someHandle(O_WRONLY);
    if (handle == nullptr || (handle->flags & O_APPEND) == 0)
        return;
    const std::size_t size = handle->content->bytes.size();
    const std::size_t length = std::min(_dice.length(0), ExerciserDice::largestFile - size);
    const std::string_view data = _dice.bytes(length);
    note(*handle, fmt::format("append {}", length));
    handle->file.write(data);
    put(handle->content->bytes, size, data);
}

void Exerciser::read()
{
    const Handle *handle = someHandle(O_RDONLY);
    if (handle == nullptr)
        return;
    const std::size_t offset = _dice.offset(handle->content->bytes.size());
    const std::size_t length = _dice.length(offset);
    note(*handle, fmt::format("read {} at {}", length, offset));
    compare(fmt::format("read at {}", offset), piece(handle->content->bytes, offset, length),
            handle->file.readAt(length, static_cast<off_t>(offset)));
}

void Exerciser::truncate()
{
    const std::string *path = _dice.oneIn(2) ? someFile() : nullptr;
    Handle *handle = path == nullptr ? someHandle(O_WRONLY) : nullptr;
    if (path == nullptr && handle == nullptr)
        return;
    const std::shared_ptr<Content> content = path != nullptr ? _files.at(*path) : handle->content;
    const std::size_t size = _dice.offset(content->bytes.size());
    note(content, fmt::format("truncate {} from {} to {}",
                              path != nullptr ? *path : std::to_string(handle->file.id()),
                              content->bytes.size(), size));
    if (path != nullptr)
        must(::truncate((_disk / *path).c_str(), static_cast<off_t>(size)), "truncate");
    else
        handle->file.truncate(static_cast<off_t>(size));
    content->bytes.resize(size, '\0');
}

void Exerciser::allocate()
{
    Handle *handle = someHandle(O_WRONLY);
    if (handle == nullptr)
        return;
    constexpr std::array modes{0, FALLOC_FL_KEEP_SIZE, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                               FALLOC_FL_ZERO_RANGE, FALLOC_FL_ZERO_RANGE | FALLOC_FL_KEEP_SIZE};
    const int mode = modes[_dice.below(modes.size())];
    std::string &content = handle->content->bytes;
    const std::size_t offset = _dice.offset(content.size());
    const std::size_t length = _dice.length(offset);
    if (length == 0)
        return;
    note(*handle, fmt::format("allocate {:#x} {} at {}", mode, length, offset));
    const int error = errnoOf([&] {
        return ::fallocate(handle->file.id(), mode, static_cast<off_t>(offset),
                           static_cast<off_t>(length));
    });
    if (error == EOPNOTSUPP && onOrdinaryDisk())
        return;
    errno = error;
    must(error == 0 ? 0 : -1, "fallocate");
    if ((mode & FALLOC_FL_KEEP_SIZE) == 0 && content.size() < offset + length)
        content.resize(offset + length, '\0');
    if ((mode & (FALLOC_FL_PUNCH_HOLE | FALLOC_FL_ZERO_RANGE)) != 0 && offset < content.size())
        std::fill_n(content.begin() + static_cast<std::ptrdiff_t>(offset),
                    std::min(length, content.size() - offset), '\0');
}

void Exerciser::writeMapped()
{
    Handle *handle = someHandle(O_RDWR);
    if (handle == nullptr || handle->content->bytes.empty())
        return;
    std::string &content = handle->content->bytes;
    const std::size_t offset = _dice.offset(content.size()) % content.size();
    const std::size_t length = std::min(_dice.length(offset), content.size() - offset);
    const std::size_t start = offset - offset % pageSize();
    const std::string_view data = _dice.bytes(length);
    const bool sync = _dice.oneIn(3);
    note(*handle, fmt::format("write mapped {} at {}{}", length, offset, sync ? ", synced" : ""));
    const Mapping mapping(handle->file.id(), offset - start + length, PROT_READ | PROT_WRITE,
                          MAP_SHARED, static_cast<off_t>(start));
    mapping.put(offset - start, data);
    if (sync)
        mapping.sync();
    put(content, offset, data);
}

void Exerciser::readMapped()
{
    const Handle *handle = someHandle(O_RDONLY);
    if (handle == nullptr || handle->content->bytes.empty())
        return;
    const std::string &content = handle->content->bytes;
    const std::size_t offset = _dice.offset(content.size()) % content.size();
    const std::size_t length = std::min(_dice.length(offset), content.size() - offset);
    const std::size_t start = offset - offset % pageSize();
    note(*handle, fmt::format("read mapped {} at {}", length, offset));
    const Mapping mapping(handle->file.id(), offset - start + length, PROT_READ, MAP_SHARED,
                          static_cast<off_t>(start));
    compare(fmt::format("mapped from {}", offset), piece(content, offset, length),
            mapping.take(offset - start, length));
}

void Exerciser::copyRange()
{
    const Handle *from = someHandle(O_RDONLY);
    Handle *to = someHandle(O_WRONLY);
    if (from == nullptr || to == nullptr || from->content == to->content ||
        (to->flags & O_APPEND) != 0)
        return;
    const std::size_t source = _dice.offset(from->content->bytes.size());
    const std::size_t target = _dice.offset(to->content->bytes.size());
    const std::size_t length = _dice.length(std::max(source, target));
    note(*to, fmt::format("copy {} from {} of handle {} to {}", length, source, from->file.id(),
                          target));
    auto sourceOffset = static_cast<off64_t>(source);
    auto targetOffset = static_cast<off64_t>(target);
    const auto copied = static_cast<std::size_t>(must(
        ::copy_file_range(from->file.id(), &sourceOffset, to->file.id(), &targetOffset, length, 0),
        "copy_file_range"));
    const std::string data(piece(from->content->bytes, source, copied));
    compare("copied", std::to_string(data.size()), std::to_string(copied));
    if (copied != 0)
        put(to->content->bytes, target, data);
}

void Exerciser::locateHoles()
{
    const Handle *handle = someHandle(O_RDONLY);
    if (handle == nullptr || handle->content->bytes.empty())
        return;
    const std::string &content = handle->content->bytes;
    const auto size = static_cast<off_t>(content.size());
    const auto start = static_cast<off_t>(_dice.offset(content.size()) % content.size());
    note(*handle, fmt::format("locate holes from {}", start));
    const off_t found = ::lseek(handle->file.id(), start, SEEK_DATA);
    if (found < 0 && errno != ENXIO)
        must(-1, "SEEK_DATA");
    const off_t data = found < 0 ? size : found;
    const off_t hole = must(::lseek(handle->file.id(), start, SEEK_HOLE), "SEEK_HOLE");
    if (data < start || data > size || hole < start || hole > size)
        throw std::runtime_error(fmt::format("data at {}, hole at {}", data, hole));
    if (!isZero(piece(content, static_cast<std::size_t>(start),
                      static_cast<std::size_t>(data - start))))
        throw std::runtime_error(fmt::format("data within a hole up to {}", data));
}

// What is read next comes from the disk and not from the kernel's memory.
void Exerciser::forgetCache()
{
    const Handle *handle = someHandle(O_WRONLY);
    if (handle == nullptr)
        return;
    note(*handle, "forget the cache");
    const int file = handle->file.id();
    // Only written pages can go. A sync down to the machine's own disk is slow: seldom.
    constexpr unsigned written =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    if (_dice.oneIn(20))
        must(_dice.oneIn(2) ? ::fsync(file) : ::fdatasync(file), "sync");
    else
        must(::sync_file_range(file, 0, 0, written), "sync_file_range");
    errno = ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    must(errno == 0 ? 0 : -1, "posix_fadvise");
}

} // namespace nimbrel::test
