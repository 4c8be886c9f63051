#include "mount/OpenFile.h"

#include "mount/Calls.h"

#include <unistd.h>

namespace nimbrel::test {

OpenFile::OpenFile(const std::string &path, int flags, mode_t mode)
    : _path(path), _file(must(::open(path.c_str(), flags | O_CLOEXEC, mode), "open " + path))
{
}

void OpenFile::writeAt(std::string_view data, off_t offset) const
{
    while (!data.empty()) {
        const ssize_t done =
            must(::pwrite(id(), data.data(), data.size(), offset), "pwrite " + _path);
        if (done == 0)
            throw std::runtime_error("pwrite " + _path + " wrote nothing");
        data.remove_prefix(static_cast<std::size_t>(done));
        offset += done;
    }
}

void OpenFile::write(std::string_view data) const
{
    const ssize_t done = must(::write(id(), data.data(), data.size()), "write " + _path);
    if (static_cast<std::size_t>(done) != data.size())
        throw std::runtime_error("write " + _path + " wrote a part");
}

std::string OpenFile::readAt(std::size_t size, off_t offset) const
{
    std::string text(size, '\x55');
    std::size_t got = 0;
    while (got < size) {
        const ssize_t done =
            must(::pread(id(), text.data() + got, size - got, offset + static_cast<off_t>(got)),
                 "pread " + _path);
        if (done == 0)
            break;
        got += static_cast<std::size_t>(done);
    }
    text.resize(got);
    return text;
}

std::string OpenFile::all() const
{
    return readAt(static_cast<std::size_t>(size()) + 1, 0);
}

void OpenFile::truncate(off_t size) const
{
    must(::ftruncate(id(), size), "ftruncate " + _path);
}

void OpenFile::sync() const
{
    must(::fsync(id()), "fsync " + _path);
}

struct stat OpenFile::status() const
{
    struct stat status = {};
    must(::fstat(id(), &status), "fstat " + _path);
    return status;
}

void OpenFile::close()
{
    must(::close(_file.release()), "close " + _path);
}

struct stat statusOf(const std::string &path)
{
    struct stat status = {};
    must(::lstat(path.c_str(), &status), "lstat " + path);
    return status;
}

bool exists(const std::string &path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) == 0)
        return true;
    if (errno != ENOENT)
        must(-1, "lstat " + path);
    return false;
}

} // namespace nimbrel::test
