#include "mount/Tree.h"

#include "mount/Calls.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <dirent.h>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <unistd.h>

namespace nimbrel::test {

namespace {

std::string targetOf(const std::string &path)
{
    std::string target(4096, '\0');
    const ssize_t size =
        must(::readlink(path.c_str(), target.data(), target.size()), "readlink " + path);
    target.resize(static_cast<std::size_t>(size));
    return target;
}

std::string contentOf(const std::string &path, const struct stat &status)
{
    if (S_ISLNK(status.st_mode)) {
        const std::string target = targetOf(path);
        return fmt::format("link of {} bytes to {}", status.st_size, target);
    }
    if (S_ISDIR(status.st_mode))
        return "folder";
    if (!S_ISREG(status.st_mode))
        return fmt::format("special, type {:o}", status.st_mode & static_cast<mode_t>(S_IFMT));
    const std::string text = readFile(path);
    return fmt::format("file of {} bytes, {} read, digest {:x}", status.st_size, text.size(),
                       std::hash<std::string>{}(text));
}

std::string describe(const std::string &path, TreeDetail detail)
{
    const struct stat status = statusOf(path);
    std::string line = contentOf(path, status);
    if (detail == TreeDetail::Contents)
        return line;
    line += fmt::format(", mode {:o}, changed {}.{:09}", status.st_mode & 07777U,
                        status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    // File systems count a folder's links in different ways.
    if (!S_ISDIR(status.st_mode))
        line += fmt::format(", links {}", status.st_nlink);
    return line;
}

void addFolder(Tree &tree, const std::string &root, const std::string &below, TreeDetail detail)
{
    for (const std::string &name : namesIn(root + below)) {
        const std::string path = below + "/" + name;
        const std::string line = describe(root + path, detail);
        if (!tree.emplace(path, line).second)
            throw std::runtime_error("listed twice: " + path);
        if (line.starts_with("folder"))
            addFolder(tree, root, path, detail);
    }
}

} // namespace

Tree treeOf(const std::string &folder, TreeDetail detail)
{
    Tree tree;
    addFolder(tree, folder, "", detail);
    return tree;
}

std::string differences(const Tree &expected, const Tree &seen)
{
    constexpr int most = 10;
    std::string text;
    int count = 0;
    const auto add = [&](const std::string &line) {
        if (++count <= most)
            text += line + "\n";
    };
    for (const auto &[path, line] : expected) {
        const auto found = seen.find(path);
        if (found == seen.end())
            add(path + " is missing: " + line);
        else if (found->second != line)
            add(path + "\n  expected " + line + "\n  seen     " + found->second);
    }
    for (const auto &[path, line] : seen) {
        if (!expected.contains(path))
            add(path + " is not expected: " + line);
    }
    if (count > most)
        text += fmt::format("and {} more\n", count - most);
    return text;
}

std::vector<std::string> namesIn(const std::string &folder)
{
    struct Close
    {
        void operator()(DIR *stream) const { ::closedir(stream); }
    };
    const std::unique_ptr<DIR, Close> stream(::opendir(folder.c_str()));
    if (!stream)
        must(-1, "opendir " + folder);
    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(stream.get());
        if (entry == nullptr && errno != 0)
            must(-1, "readdir " + folder);
        if (entry == nullptr)
            return names;
        const std::string name = static_cast<const char *>(entry->d_name);
        if (name != "." && name != "..")
            names.push_back(name);
    }
}

} // namespace nimbrel::test
