// A delegate over a new, empty encrypted folder, and small words for tests of it.
#pragma once

#include "fs/NBNimbrelFS.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace nimbrel::test {

// One iteration, so that making a delegate costs nothing.
[[nodiscard]] NBPreferencesDictionary quickPreferences(std::int64_t blockSize = 4096,
                                                       bool areFilenamesEncrypted = true);

// Files are made with the permissions asked for, whoever runs the tests.
class FixedUmask final
{
public:
    FixedUmask();
    ~FixedUmask();
    FixedUmask(const FixedUmask &) = delete;
    FixedUmask &operator=(const FixedUmask &) = delete;

private:
    mode_t _before;
};

class TestDelegate final
{
public:
    explicit TestDelegate(std::int64_t blockSize = 4096, bool areFilenamesEncrypted = true);

    [[nodiscard]] NBNimbrelFS &operator*() const noexcept { return *_delegate; }
    [[nodiscard]] NBNimbrelFS *operator->() const noexcept { return _delegate.get(); }
    [[nodiscard]] const std::string &root() const noexcept { return _root; }
    [[nodiscard]] std::string onDisk(const std::string &path) const;

    // Through the delegate; false results are test failures.
    NBFileHandle create(const std::string &path, std::string_view content = {}) const;
    NBFileHandle open(const std::string &path) const;
    // All of a file, by one read from its start.
    [[nodiscard]] std::string content(NBFileHandle &file) const;
    [[nodiscard]] std::string contentAt(const std::string &path) const;

private:
    FixedUmask _umask;
    TempFolder _temp;
    std::string _root;
    std::unique_ptr<NBNimbrelFS> _delegate;
};

// Size of an open file; -1 when it can't be told.
[[nodiscard]] std::int64_t sizeOf(const NBFileHandle &file);
// What lies on disk behind an open file.
[[nodiscard]] Bytes diskBytes(const NBFileHandle &file);
// Puts `bytes` on disk as they are.
void setDiskBytes(const NBFileHandle &file, ByteView bytes);
// A file of the kernel's own memory, for tests that change one very often.
[[nodiscard]] NBFileHandle memoryFile();

// The bytes of a text that may be written to.
[[nodiscard]] inline ByteSpan spanOf(std::string &text)
{
    return {reinterpret_cast<std::uint8_t *>(text.data()), text.size()};
}

} // namespace nimbrel::test
