// Folders read piece by piece, and changed by others meanwhile.
#include "mount/Calls.h"
#include "mount/Child.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <unistd.h>

namespace nimbrel::test {
namespace {

struct Close
{
    void operator()(DIR *stream) const { ::closedir(stream); }
};

class FolderReadingTest : public testing::Test
{
protected:
    static constexpr int staying = 3000;

    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
        make("staying ", staying);
        make("going ", staying / 3);
    }

    void make(const std::string &stem, int count) const
    {
        for (int i = 0; i < count; ++i)
            OpenFile(*_disk / (stem + std::to_string(i)), O_WRONLY | O_CREAT);
    }

    void remove(const std::string &stem, int count) const
    {
        for (int i = 0; i < count; ++i)
            must(::unlink((*_disk / (stem + std::to_string(i))).c_str()), "unlink");
    }

    [[nodiscard]] std::unique_ptr<DIR, Close> open() const
    {
        std::unique_ptr<DIR, Close> stream(::opendir(_disk->plain().c_str()));
        if (!stream)
            must(-1, "opendir");
        return stream;
    }

    static std::string next(DIR *stream)
    {
        errno = 0;
        const dirent *entry = ::readdir(stream);
        if (entry == nullptr && errno != 0)
            must(-1, "readdir");
        return entry == nullptr ? std::string() : static_cast<const char *>(entry->d_name);
    }

    // Reads on to the end; how often each name came.
    static void readOn(DIR *stream, std::map<std::string, int> &seen, int limit = 1'000'000)
    {
        while (limit-- > 0) {
            const std::string name = next(stream);
            if (name.empty())
                return;
            ++seen[name];
        }
    }

    static void expectStayingOnce(const std::map<std::string, int> &seen)
    {
        int missing = 0;
        int repeated = 0;
        for (int i = 0; i < staying; ++i) {
            const auto found = seen.find("staying " + std::to_string(i));
            missing += found == seen.end() ? 1 : 0;
            repeated += found != seen.end() && found->second > 1 ? 1 : 0;
        }
        EXPECT_EQ(missing, 0);
        EXPECT_EQ(repeated, 0);
    }

    std::unique_ptr<MountedFolder> _disk;
};

TEST_F(FolderReadingTest, RemovalsMeanwhileHideNothingThatStays)
{
    const auto stream = open();
    std::map<std::string, int> seen;
    readOn(stream.get(), seen, 700);
    Child other([&] {
        remove("going ", staying / 3);
        return 0;
    });
    ASSERT_EQ(other.wait(), 0);
    readOn(stream.get(), seen);
    expectStayingOnce(seen);
}

TEST_F(FolderReadingTest, AdditionsMeanwhileRepeatNothing)
{
    const auto stream = open();
    std::map<std::string, int> seen;
    readOn(stream.get(), seen, 700);
    Child other([&] {
        make("coming ", staying);
        return 0;
    });
    ASSERT_EQ(other.wait(), 0);
    readOn(stream.get(), seen);
    expectStayingOnce(seen);
}

TEST_F(FolderReadingTest, ChangesAllTheTimeDisturbNoReader)
{
    Child other([&] {
        for (;;) { // until it is killed
            make("coming ", 200);
            remove("coming ", 200);
        }
        return 0;
    });
    for (int round = 0; round < 10; ++round) {
        const auto stream = open();
        std::map<std::string, int> seen;
        readOn(stream.get(), seen);
        expectStayingOnce(seen);
    }
}

TEST_F(FolderReadingTest, RemovingWhatIsReadEmptiesTheFolder)
{
    const auto stream = open();
    for (std::string name = next(stream.get()); !name.empty(); name = next(stream.get())) {
        if (name != "." && name != "..")
            must(::unlink((*_disk / name).c_str()), "unlink " + name);
    }
    std::map<std::string, int> left;
    readOn(open().get(), left);
    EXPECT_EQ(left, (std::map<std::string, int>{{".", 1}, {"..", 1}}));
}

TEST_F(FolderReadingTest, GoesBackToAPlaceThatWasTold)
{
    const auto stream = open();
    std::vector<std::pair<long, std::string>> places;
    for (;;) {
        const long place = ::telldir(stream.get());
        const std::string name = next(stream.get());
        if (name.empty())
            break;
        places.emplace_back(place, name);
    }
    ASSERT_EQ(places.size(), static_cast<std::size_t>(staying + staying / 3 + 2));
    for (const std::size_t i : {std::size_t{3000}, std::size_t{2}, std::size_t{0},
                                std::size_t{1234}, places.size() - 1, std::size_t{500}}) {
        ::seekdir(stream.get(), places[i].first);
        EXPECT_EQ(next(stream.get()), places[i].second) << i;
    }
}

TEST_F(FolderReadingTest, StartsAnewWithWhatIsThereNow)
{
    const auto stream = open();
    std::map<std::string, int> seen;
    readOn(stream.get(), seen, 100);
    make("coming ", 5);
    remove("going ", staying / 3);
    ::rewinddir(stream.get());
    seen.clear();
    readOn(stream.get(), seen);
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(staying + 5 + 2));
    EXPECT_EQ(seen.count("coming 4"), 1U);
    EXPECT_EQ(seen.count("going 4"), 0U);
    expectStayingOnce(seen);
}

} // namespace
} // namespace nimbrel::test
