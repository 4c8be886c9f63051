// A disk whose encrypted folder lies on a small store, for tests that fill it up.
#pragma once

#include "mount/MountedFolder.h"
#include "mount/SmallVolume.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace nimbrel::test {

class FullStore : public testing::TestWithParam<SmallVolumeKind>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        try {
            _store = std::make_unique<SmallVolume>(GetParam());
        } catch (const NoSmallVolume &reason) {
            GTEST_SKIP() << reason.what();
        }
        makeDisk({});
    }

    void makeDisk(MountedFolderOptions options)
    {
        _disk.reset();
        options.backing = _store->makeFolder();
        _disk = std::make_unique<MountedFolder>(std::move(options));
    }

    [[nodiscard]] SmallVolume &store() { return *_store; }
    [[nodiscard]] MountedFolder &disk() { return *_disk; }

private:
    std::unique_ptr<SmallVolume> _store;
    std::unique_ptr<MountedFolder> _disk; // goes before its store
};

struct Written
{
    std::size_t size = 0; // bytes taken
    int error = 0;        // what ended it early
};

// As a careful program writes: on after a part, to the end or to the first error.
[[nodiscard]] inline Written writeAll(int file, std::string_view data, off_t offset = 0)
{
    Written written;
    while (written.size < data.size()) {
        const std::string_view rest = data.substr(written.size);
        const ssize_t done =
            ::pwrite(file, rest.data(), rest.size(), offset + static_cast<off_t>(written.size));
        if (done <= 0) {
            written.error = done == 0 ? EIO : errno;
            return written;
        }
        written.size += static_cast<std::size_t>(done);
    }
    return written;
}

#define NIMBREL_ON_EACH_STORE(suite)                                                               \
    INSTANTIATE_TEST_SUITE_P(OnEach, suite,                                                        \
                             testing::Values(nimbrel::test::SmallVolumeKind::Memory,               \
                                             nimbrel::test::SmallVolumeKind::Disk),                \
                             [](const auto &kind) {                                                \
                                 return kind.param == nimbrel::test::SmallVolumeKind::Memory       \
                                            ? "Tmpfs"                                              \
                                            : "Ext4";                                              \
                             })

} // namespace nimbrel::test
