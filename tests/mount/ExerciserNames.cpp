// What the exerciser does to names, and how it compares the disk with its model.
#include "mount/Calls.h"
#include "mount/Exerciser.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <iterator>
#include <unistd.h>

namespace nimbrel::test {

std::string Exerciser::somePath()
{
    static const char *const paths[] = {"a", "b", "c", "folder/d", "folder/e"};
    return paths[_dice.below(std::size(paths))];
}

const std::string *Exerciser::someFile()
{
    const auto found = _files.find(somePath());
    return found == _files.end() ? nullptr : &found->first;
}

void Exerciser::open()
{
    constexpr std::size_t most = 6;
    if (_handles.size() >= most)
        close();
    const std::string path = somePath();
    constexpr int accesses[] = {O_RDWR, O_RDWR, O_RDONLY, O_WRONLY};
    int flags = accesses[_dice.below(4)] | O_CREAT;
    if (_dice.oneIn(5))
        flags |= O_APPEND;
    if (_dice.oneIn(20) && (flags & O_ACCMODE) != O_RDONLY)
        flags |= O_TRUNC;
    std::shared_ptr<Content> &content = _files[path];
    if (!content)
        content = std::make_shared<Content>();
    note(content, fmt::format("open {} with {:#o}", path, flags));
    auto handle = std::make_unique<Handle>(Handle{OpenFile(_disk / path, flags), content, flags});
    if ((flags & O_TRUNC) != 0)
        content->bytes.clear();
    note(*handle, "was opened");
    _handles.push_back(std::move(handle));
}

void Exerciser::close()
{
    if (_handles.empty())
        return;
    const auto place = _handles.begin() + static_cast<std::ptrdiff_t>(_dice.below(_handles.size()));
    note(**place, "close");
    (*place)->file.close();
    _handles.erase(place);
}

void Exerciser::rename()
{
    const std::string *from = someFile();
    const std::string to = somePath();
    if (from == nullptr)
        return;
    note(_files.at(*from), fmt::format("rename {} to {}", *from, to));
    must(::rename((_disk / *from).c_str(), (_disk / to).c_str()), "rename");
    const std::shared_ptr<Content> content = _files.at(*from);
    const auto found = _files.find(to);
    if (found != _files.end() && found->second == content)
        return; // two names of one file: nothing happens
    _files.erase(*from);
    _files[to] = content;
}

void Exerciser::exchange()
{
    const std::string *one = someFile();
    const std::string *other = someFile();
    if (one == nullptr || other == nullptr || one == other)
        return;
    note(_files.at(*one), fmt::format("exchange {} and {}", *one, *other));
    note(_files.at(*other), fmt::format("exchange {} and {}", *one, *other));
    must(::renameat2(AT_FDCWD, (_disk / *one).c_str(), AT_FDCWD, (_disk / *other).c_str(),
                     RENAME_EXCHANGE),
         "renameat2");
    std::swap(_files.at(*one), _files.at(*other));
}

void Exerciser::link()
{
    const std::string *from = someFile();
    const std::string to = somePath();
    if (from == nullptr)
        return;
    note(_files.at(*from), fmt::format("link {} as {}", *from, to));
    const int error =
        errnoOf([&] { return ::link((_disk / *from).c_str(), (_disk / to).c_str()); });
    compare("link's errno", std::to_string(_files.contains(to) ? EEXIST : 0),
            std::to_string(error));
    _files.emplace(to, _files.at(*from));
}

void Exerciser::unlink()
{
    const std::string *path = someFile();
    if (path == nullptr)
        return;
    note(_files.at(*path), fmt::format("unlink {}", *path));
    must(::unlink((_disk / *path).c_str()), "unlink");
    _files.erase(*path);
}

void Exerciser::compareStatus()
{
    const std::string path = somePath();
    const auto found = _files.find(path);
    _current.reset();
    compare(path + " is there", found == _files.end() ? "no" : "yes",
            exists(_disk / path) ? "yes" : "no");
    if (found == _files.end())
        return;
    note(found->second, fmt::format("status of {}", path));
    const struct stat status = statusOf(_disk / path);
    const auto links = std::count_if(_files.begin(), _files.end(), [&](const auto &each) {
        return each.second == found->second;
    });
    compare(path + " status", fmt::format("{} bytes, {} links", found->second->bytes.size(), links),
            fmt::format("{} bytes, {} links", status.st_size, status.st_nlink));
}

void Exerciser::compareListing()
{
    _current.reset();
    std::vector<std::string> expected;
    for (const auto &[path, content] : _files)
        expected.push_back(path);
    std::vector<std::string> seen = namesIn(_disk.plain());
    std::erase(seen, "folder");
    for (const std::string &name : namesIn(_disk / "folder"))
        seen.push_back("folder/" + name);
    std::sort(seen.begin(), seen.end());
    compare("names", fmt::format("{}", fmt::join(expected, " ")),
            fmt::format("{}", fmt::join(seen, " ")));
}

void Exerciser::compareAll()
{
    for (const auto &[path, content] : _files) {
        note(content, "read all of " + path);
        compare(path, content->bytes, readFile(_disk / path));
    }
    for (const auto &handle : _handles) {
        if ((handle->flags & O_ACCMODE) == O_WRONLY)
            continue;
        note(*handle, "read all");
        compare("all of a handle", handle->content->bytes, handle->file.all());
    }
    compareListing();
}

void Exerciser::remount()
{
    _handles.clear();
    _current.reset();
    _disk.remount();
    for (const auto &[path, content] : _files)
        note(content, "new mount");
    compareAll();
}

} // namespace nimbrel::test
