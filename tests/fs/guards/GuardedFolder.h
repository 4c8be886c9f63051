// An encrypted folder with both guards over its delegate.
#pragma once

#include "fs/GuardedContent.h"
#include "fs/GuardedTree.h"
#include "support/TempFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

struct GuardedFolderOptions
{
    std::int64_t blockSize = 4096; // bytes
    bool allowHoles = true;
    bool plainNames = false;
    std::string store = {}; // the encrypted folder; empty: a new temporary one
};

// Items are made with the permissions asked for, whoever runs the tests.
class ClearedUmask final
{
public:
    ClearedUmask();
    ~ClearedUmask();
    ClearedUmask(const ClearedUmask &) = delete;
    ClearedUmask &operator=(const ClearedUmask &) = delete;

private:
    mode_t _before;
};

// A step that fails throws std::runtime_error with the errno: a test must not go on from there.
class GuardedFolder final
{
public:
    explicit GuardedFolder(GuardedFolderOptions options = {});

    [[nodiscard]] NBNimbrelFS &delegate() const noexcept { return *_delegate; }
    [[nodiscard]] GuardedContent &content() const noexcept { return *_content; }
    [[nodiscard]] GuardedTree &tree() const noexcept { return *_tree; }
    [[nodiscard]] const std::string &store() const noexcept { return _store; }
    [[nodiscard]] std::string onDisk(const std::string &path) const
    {
        return _delegate->_securePathWithPath(path);
    }
    // Another delegate with the same key; nothing of the first one stays.
    void reopen();
    // A delegate of its own over the same folder, as exact as it is made.
    [[nodiscard]] std::unique_ptr<NBNimbrelFS> bareDelegate() const;

    // What a folder shows, without "." and "..".
    [[nodiscard]] NBErrnoOr<std::vector<NBDirectoryEntry>> list(const std::string &path) const;

    [[nodiscard]] NBFileHandle create(const std::string &path, std::string_view text = {}) const;
    [[nodiscard]] NBFileHandle open(const std::string &path, int flags = O_RDWR) const;
    // All of it.
    [[nodiscard]] std::string read(NBFileHandle &file) const;
    [[nodiscard]] std::string readAt(const std::string &path) const;

private:
    ClearedUmask _umask;
    std::unique_ptr<TempFolder> _temp;
    std::string _store;
    NBPreferencesDictionary _preferences;
    std::unique_ptr<NBNimbrelFS> _delegate;
    std::unique_ptr<GuardedContent> _content;
    std::unique_ptr<GuardedTree> _tree;
};

// A file on disk that has no name and lies in memory: for tests that write many thousand times.
[[nodiscard]] NBFileHandle memoryFile();

[[nodiscard]] std::int64_t sizeOf(const NBFileHandle &file);
[[nodiscard]] Creator thisUser();

// The bytes of a text that may be written to.
[[nodiscard]] inline ByteSpan spanOf(std::string &text)
{
    return {reinterpret_cast<std::uint8_t *>(text.data()), text.size()};
}

// A file's content, kept in memory as it ought to be.
class PlainModel final
{
public:
    void write(std::string_view data, std::int64_t offset);
    void setSize(std::int64_t size) { _text.resize(static_cast<std::size_t>(size)); }
    void clear(std::int64_t from, std::int64_t to); // what it has of this range becomes zeros
    [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(_text.size()); }
    [[nodiscard]] const std::string &text() const noexcept { return _text; }

private:
    std::string _text;
};

// Of tests that run with allowHoles on and off.
[[nodiscard]] std::string nameOfHoles(const testing::TestParamInfo<bool> &info);

// Empty where they are equal, else where they first differ and how long they are.
[[nodiscard]] std::string difference(std::string_view wanted, std::string_view got);

} // namespace nimbrel::test
