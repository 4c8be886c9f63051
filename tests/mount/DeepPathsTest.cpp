// Paths longer than one system call can name.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace nimbrel::test {
namespace {

constexpr int fewest = 15; // a store takes 4096 bytes, an encrypted name of this length 157
constexpr int most = 60;

const std::string hundred(100, 'd');

// The open folders from the disk's root down. No path is ever named in full.
class Chain final
{
public:
    explicit Chain(const std::string &root) { add(AT_FDCWD, root); }

    // Makes one folder more; false with ENAMETOOLONG where the store takes no longer path.
    [[nodiscard]] bool grow()
    {
        if (::mkdirat(last(), hundred.c_str(), 0755) == 0)
            return descend();
        if (errno != ENAMETOOLONG)
            must(-1, "mkdirat");
        return false;
    }

    bool descend()
    {
        add(last(), hundred);
        return true;
    }

    void ascend() { _folders.pop_back(); }
    [[nodiscard]] int last() const { return _folders.back().get(); }
    [[nodiscard]] int depth() const { return static_cast<int>(_folders.size()) - 1; }

private:
    void add(int parent, const std::string &name)
    {
        _folders.emplace_back(
            must(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), "openat"));
    }

    std::vector<UniqueFd> _folders;
};

void writeBelow(int folder, const std::string &text)
{
    const UniqueFd file(must(::openat(folder, "f", O_RDWR | O_CREAT | O_CLOEXEC, 0644), "openat"));
    ASSERT_EQ(::pwrite(file.get(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
}

std::string readBelow(int folder)
{
    const UniqueFd file(must(::openat(folder, "f", O_RDONLY | O_CLOEXEC), "openat f"));
    std::string text(100, '\0');
    text.resize(static_cast<std::size_t>(must(::read(file.get(), text.data(), 100), "read")));
    return text;
}

TEST(DeepPathsTest, GoDownAsFarAsTheStoreAllowsAndStayUsable)
{
    NIMBREL_NEED_FUSE();
    MountedFolder disk;
    int depth = 0;
    {
        Chain chain(disk.plain());
        while (chain.depth() < most && chain.grow()) {
        }
        depth = chain.depth();
        EXPECT_GE(depth, fewest);
        // The deepest folder may have no room left for a name in it.
        chain.ascend();
        writeBelow(chain.last(), "deep down");
        ASSERT_EQ(::renameat(chain.last(), "f", chain.last(), "g"), 0);
        ASSERT_EQ(::renameat(chain.last(), "g", chain.last(), "f"), 0);
        EXPECT_EQ(readBelow(chain.last()), "deep down");
    }
    disk.remount();
    Chain chain(disk.plain());
    while (chain.depth() < depth - 1)
        chain.descend();
    EXPECT_EQ(readBelow(chain.last()), "deep down");
    ASSERT_EQ(::unlinkat(chain.last(), "f", 0), 0);
    ASSERT_EQ(::unlinkat(chain.last(), hundred.c_str(), AT_REMOVEDIR), 0);
    while (chain.depth() > 0) {
        chain.ascend();
        ASSERT_EQ(::unlinkat(chain.last(), hundred.c_str(), AT_REMOVEDIR), 0) << chain.depth();
    }
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{});
}

TEST(DeepPathsTest, EveryLevelHoldsItsOwnFile)
{
    NIMBREL_NEED_FUSE();
    MountedFolder disk;
    {
        Chain chain(disk.plain());
        for (int i = 0; i < fewest; ++i) {
            writeBelow(chain.last(), "level " + std::to_string(i));
            ASSERT_TRUE(chain.grow());
        }
    }
    disk.remount();
    Chain chain(disk.plain());
    for (int i = 0; i < fewest; ++i) {
        EXPECT_EQ(readBelow(chain.last()), "level " + std::to_string(i));
        chain.descend();
    }
    EXPECT_EQ(namesIn(disk.plain()).size(), 2U);
}

} // namespace
} // namespace nimbrel::test
