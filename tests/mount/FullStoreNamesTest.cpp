// A store that has room for no further item, or none for a larger folder.
#include "mount/Calls.h"
#include "mount/FullStore.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <functional>
#include <string>
#include <sys/xattr.h>
#include <vector>

namespace nimbrel::test {

namespace {

class FullStoreNamesTest : public FullStore
{
};

struct Making
{
    const char *what;
    std::function<int(const std::string &)> make;
};

int makeFile(const std::string &path)
{
    return UniqueFd(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)) ? 0 : -1;
}

std::vector<Making> makings()
{
    return {
        {"file", makeFile},
        {"folder", [](const std::string &path) { return ::mkdir(path.c_str(), 0755); }},
        {"link", [](const std::string &path) { return ::symlink("target", path.c_str()); }},
        {"pipe", [](const std::string &path) { return ::mkfifo(path.c_str(), 0600); }},
    };
}

TEST_P(FullStoreNamesTest, NothingIsMadeWhereNoItemIsLeft)
{
    store().fillItems();
    for (const Making &making : makings())
        EXPECT_EQ(errnoOf([&] { return making.make(disk() / making.what); }), ENOSPC)
            << making.what;
    EXPECT_EQ(namesIn(disk().plain()).size(), 0U);
    store().freeAll();
    for (const Making &making : makings())
        EXPECT_EQ(errnoOf([&] { return making.make(disk() / making.what); }), 0) << making.what;
    EXPECT_EQ(namesIn(disk().plain()).size(), makings().size());
}

TEST_P(FullStoreNamesTest, RenamingWorksWhereNoItemIsLeft)
{
    writeFile(disk() / "a", "text");
    writeFile(disk() / "b", "older");
    store().fillItems();
    EXPECT_EQ(errnoOf([&] { return ::rename((disk() / "a").c_str(), (disk() / "b").c_str()); }), 0);
    disk().remount();
    EXPECT_EQ(namesIn(disk().plain()), std::vector<std::string>{"b"});
    EXPECT_EQ(readFile(disk() / "b"), "text");
}

TEST_P(FullStoreNamesTest, ReplacingByTruncationWorksWhereNoItemIsLeft)
{
    writeFile(disk() / "a", noise(10'000, 1));
    store().fillItems();
    writeFile(disk() / "a", "short");
    disk().remount();
    EXPECT_EQ(readFile(disk() / "a"), "short");
}

// A safe save, as editors do it, fails whole: the old text stays.
TEST_P(FullStoreNamesTest, ASaveThatFindsNoSpaceLeavesTheOldText)
{
    const std::string old = noise(200'000, 2);
    writeFile(disk() / "text", old);
    store().fill();
    {
        const OpenFile file(disk() / "text.new", O_CREAT | O_WRONLY);
        EXPECT_EQ(writeAll(file.id(), noise(400'000, 3)).error, ENOSPC);
    }
    EXPECT_EQ(errnoOf([&] { return ::unlink((disk() / "text.new").c_str()); }), 0);
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "text") == old);
    EXPECT_EQ(namesIn(disk().plain()), std::vector<std::string>{"text"});
}

TEST_P(FullStoreNamesTest, ALargeAttributeIsAnsweredAsByTheStore)
{
    writeFile(disk() / "a", "text");
    writeFile(disk().encrypted() + "/direct", "text");
    const std::string value(3000, 'v');
    const auto set = [&](const std::string &path) {
        return ::setxattr(path.c_str(), "user.large", value.data(), value.size(), 0);
    };
    store().fill();
    const int direct = errnoOf([&] { return set(disk().encrypted() + "/direct"); });
    EXPECT_EQ(errnoOf([&] { return set(disk() / "a"); }), direct);
    EXPECT_EQ(readFile(disk() / "a"), "text");
}

NIMBREL_ON_EACH_STORE(FullStoreNamesTest);

} // namespace

} // namespace nimbrel::test
