// Files that can't grow any further on a full store: what they held stays.
#include "mount/Calls.h"
#include "mount/Child.h"
#include "mount/FullStore.h"
#include "mount/Mapping.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <algorithm>
#include <string>
#include <vector>

namespace nimbrel::test {

namespace {

class FullStoreGrowthTest : public FullStore
{
protected:
    struct Case
    {
        std::size_t size;
        std::string path;
        std::string old;
    };

    std::vector<Case> makeFiles(const std::vector<std::size_t> &sizes)
    {
        std::vector<Case> cases;
        for (const std::size_t size : sizes) {
            cases.push_back({size, disk() / std::to_string(size), noise(size, size)});
            writeFile(cases.back().path, cases.back().old);
        }
        return cases;
    }

    // Appends to each file on the full store; old bytes and taken bytes are there, and no others.
    void appendToEach(const std::vector<std::size_t> &sizes, std::uint64_t leaving)
    {
        std::vector<Case> cases = makeFiles(sizes);
        store().fill(leaving);
        const std::string added = noise(300'000, 99);
        for (Case &item : cases) {
            const OpenFile file(item.path, O_RDWR);
            const Written written = writeAll(file.id(), added, static_cast<off_t>(item.size));
            EXPECT_EQ(written.error, ENOSPC) << item.size;
            item.old += added.substr(0, written.size);
            EXPECT_TRUE(file.all() == item.old) << item.size;
        }
        disk().remount();
        for (const Case &item : cases) {
            const std::string now = readFile(item.path);
            EXPECT_EQ(now.size(), item.old.size()) << item.size;
            EXPECT_TRUE(now == item.old) << item.size;
        }
    }
};

bool isZeros(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte == '\0'; });
}

TEST_P(FullStoreGrowthTest, AFailedAppendKeepsTheOldBytes)
{
    appendToEach({0, 1, 100, 4095, 4096, 5000, 8192, 12'000}, 0);
}

TEST_P(FullStoreGrowthTest, AnAppendThatFitsInPartKeepsWhatWasTaken)
{
    appendToEach({5000}, 20'000);
}

// A block larger than the store's own pieces must not be left half written.
TEST_P(FullStoreGrowthTest, AFailedAppendKeepsTheOldBytesOfALargeBlock)
{
    makeDisk({.blockSize = 65'536});
    appendToEach({100, 5000, 65'535, 65'536, 70'000}, 0);
}

TEST_P(FullStoreGrowthTest, AnAppendThatFitsInPartKeepsTheOldBytesOfALargeBlock)
{
    makeDisk({.blockSize = 65'536});
    appendToEach({5000}, 20'000);
}

TEST_P(FullStoreGrowthTest, AnAppendThatFitsInPartKeepsTheOldBytesOfALargerLastBlock)
{
    makeDisk({.blockSize = 65'536});
    appendToEach({70'000}, 20'000);
}

TEST_P(FullStoreGrowthTest, AFailedWriteIntoAHoleLeavesZeros)
{
    const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
    file.truncate(1'000'000);
    store().fill();
    const Written written = writeAll(file.id(), noise(200'000, 1), 500'000);
    EXPECT_EQ(written.error, ENOSPC);
    EXPECT_EQ(file.size(), 1'000'000);
    EXPECT_TRUE(isZeros(file.readAt(500'000, 0)));
    EXPECT_TRUE(file.readAt(written.size, 500'000) == noise(200'000, 1).substr(0, written.size));
    const off_t behind = 500'000 + static_cast<off_t>(written.size);
    EXPECT_TRUE(isZeros(file.readAt(1'000'000, behind)));
}

TEST_P(FullStoreGrowthTest, AFailedTruncationLeavesTheFileAsItWas)
{
    const std::vector<Case> cases = makeFiles({0, 100, 4096, 5000});
    store().fill();
    for (const Case &item : cases) {
        constexpr off_t wanted = 1'000'100;
        const int error = errnoOf([&] { return ::truncate(item.path.c_str(), wanted); });
        const std::string now = readFile(item.path);
        if (error == 0) { // a store with holes may find room for it
            EXPECT_EQ(now.size(), static_cast<std::size_t>(wanted));
            EXPECT_TRUE(now.starts_with(item.old)) << item.size;
            EXPECT_TRUE(isZeros(std::string_view(now).substr(item.size))) << item.size;
        } else {
            EXPECT_EQ(error, ENOSPC);
            EXPECT_EQ(now.size(), item.size);
            EXPECT_TRUE(now == item.old) << item.size;
        }
    }
}

// Some stores keep the part that they could allocate: zeros behind the old end.
TEST_P(FullStoreGrowthTest, AFailedAllocationKeepsTheOldBytes)
{
    const std::vector<Case> cases = makeFiles({100, 5000});
    store().fill();
    for (const Case &item : cases) {
        const OpenFile file(item.path, O_RDWR);
        const int error = errnoOf([&] { return ::fallocate(file.id(), 0, 0, 2'000'100); });
        EXPECT_TRUE(error == ENOSPC || error == 0) << error;
        const std::string now = file.all();
        EXPECT_GE(now.size(), error == 0 ? 2'000'100U : item.size);
        EXPECT_TRUE(now.starts_with(item.old)) << item.size;
        EXPECT_TRUE(isZeros(std::string_view(now).substr(item.size))) << item.size;
    }
}

// A program that writes through memory learns of it by a signal or by an error; never by loss.
TEST_P(FullStoreGrowthTest, AMappedWriteIsNeverLostInSilence)
{
    constexpr std::size_t size = 300'000;
    const std::string path = disk() / "a";
    OpenFile(path, O_CREAT | O_RDWR).truncate(size);
    store().fill();
    const std::string data = noise(size, 2);
    Child writer([&] {
        OpenFile file(path, O_RDWR);
        {
            const Mapping map(file.id(), size, PROT_READ | PROT_WRITE, MAP_SHARED);
            std::copy(data.begin(), data.end(), map.data());
            map.sync(); // throws, as the two below
        }
        file.sync();
        file.close();
        return 0;
    });
    EXPECT_NE(writer.wait(), 0) << "nobody told that the bytes found no place";
    disk().remount();
    EXPECT_EQ(readFile(path).size(), size);
}

NIMBREL_ON_EACH_STORE(FullStoreGrowthTest);

} // namespace

} // namespace nimbrel::test
