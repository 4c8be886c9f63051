// A store that is really full.
#include "fs/guards/ChildProcess.h"
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr std::size_t storeSize = 512 * 1024;

struct FullStoreTest : testing::TestWithParam<std::int64_t>
{
    [[nodiscard]] static GuardedFolderOptions on(const std::string &store, bool allowHoles = true)
    {
        return {.blockSize = GetParam(), .allowHoles = allowHoles, .store = store};
    }
};

// Takes all the room that the store has left.
void fillUp(const std::string &store)
{
    const UniqueFd file(::open((store + "/ballast").c_str(), O_CREAT | O_WRONLY, 0600));
    const std::string page(4096, 'x');
    while (::write(file.get(), page.data(), page.size()) > 0) {
    }
    EXPECT_EQ(errno, ENOSPC);
}

void makeRoom(const std::string &store)
{
    EXPECT_EQ(::unlink((store + "/ballast").c_str()), 0);
}

} // namespace

TEST_P(FullStoreTest, EveryAcknowledgedAppendReadsBack)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store));
        NBFileHandle file = folder.create("/file");
        std::mt19937_64 random(1);
        std::string wanted;
        int error = 0;
        while (error == 0) {
            const std::string piece = noise(random() % 9000, random());
            const NBErrnoOr<std::size_t> put = folder.content().append(file, bytesOf(piece));
            error = put.code();
            wanted += piece.substr(0, put ? *put : 0);
        }
        EXPECT_EQ(error, ENOSPC);
        EXPECT_EQ(difference(wanted, folder.readAt("/file")), "");
        // Deleting and writing go on.
        ASSERT_TRUE(folder.content().setSize(file, 1000));
        ASSERT_TRUE(folder.content().append(file, bytesOf("more")));
        EXPECT_EQ(difference(wanted.substr(0, 1000) + "more", folder.readAt("/file")), "");
    }));
}

TEST_P(FullStoreTest, HolesThatCannotBeFilledStayZeros)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store));
        NBFileHandle file = folder.create("/file", "begin");
        // Not in a page of the store's that it has already.
        const std::int64_t hole = 10 * std::max<std::int64_t>(GetParam(), 4096);
        ASSERT_TRUE(folder.content().setSize(file, 2 * hole));
        fillUp(store);
        const std::string before = folder.readAt("/file");
        EXPECT_EQ(folder.content().write(file, bytesOf("new"), hole + 5).code(), ENOSPC);
        EXPECT_EQ(difference(before, folder.readAt("/file")), "");
        makeRoom(store);
        EXPECT_TRUE(folder.content().write(file, bytesOf("new"), hole + 5));
    }));
}

TEST_P(FullStoreTest, ACutInsideAHoleLosesNothing)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store));
        NBFileHandle file = folder.create("/file", noise(100, 2));
        ASSERT_TRUE(folder.content().setSize(file, 20 * GetParam() + 7));
        fillUp(store);
        const std::int64_t size = 10 * GetParam() + 5;
        const NBDone cut = folder.content().setSize(file, size);
        EXPECT_TRUE(cut || cut.code() == ENOSPC);
        const std::string got = folder.readAt("/file");
        EXPECT_GE(static_cast<std::int64_t>(got.size()), size);
        EXPECT_EQ(difference(noise(100, 2) + std::string(got.size() - 100, '\0'), got), "");
    }));
}

TEST_P(FullStoreTest, GapsWithoutHolesAreAllOrNothing)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store, false));
        const std::string old = noise(100, 3);
        NBFileHandle file = folder.create("/file", old);
        EXPECT_EQ(folder.content().write(file, bytesOf("new"), 10 * storeSize).code(), ENOSPC);
        EXPECT_EQ(folder.content().setSize(file, 10 * storeSize).code(), ENOSPC);
        EXPECT_EQ(difference(old, folder.readAt("/file")), "");
        EXPECT_TRUE(folder.content().write(file, bytesOf("new"), 1000));
    }));
}

TEST_P(FullStoreTest, AllocatingMoreThanThereIsChangesNothing)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store));
        const std::string old = noise(5000, 4);
        NBFileHandle file = folder.create("/file", old);
        for (const int mode : {0, FALLOC_FL_KEEP_SIZE, FALLOC_FL_ZERO_RANGE})
            EXPECT_EQ(folder.content().allocate(file, mode, 0, 10 * storeSize).code(), ENOSPC);
        EXPECT_EQ(difference(old, folder.readAt("/file")), "");
    }));
}

TEST_P(FullStoreTest, AllocatedRoomIsThereWhenTheStoreIsFull)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        GuardedFolder folder(on(store));
        NBFileHandle file = folder.create("/file", "begin");
        ASSERT_TRUE(folder.content().allocate(file, 0, 0, 100'000));
        fillUp(store);
        const std::string text = noise(100'000, 5);
        EXPECT_EQ(*folder.content().write(file, bytesOf(text), 0), text.size());
        EXPECT_EQ(difference(text, folder.readAt("/file")), "");
    }));
}

TEST_P(FullStoreTest, NoOrderOfCallsLosesAByte)
{
    expectPassed(onSmallStore(storeSize, [](const std::string &store) {
        const std::uint64_t seed = std::random_device()();
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937_64 random(seed);
        GuardedFolder folder(on(store));
        NBFileHandle file = folder.create("/file", noise(70'000, seed));
        PlainModel model;
        model.write(noise(70'000, seed), 0);
        int refused = 0;
        for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
            if (i % 30 == 5)
                fillUp(store);
            if (i % 30 == 29)
                makeRoom(store);
            const auto offset = static_cast<std::int64_t>(random() % 400'000);
            if (random() % 3 != 0) {
                const std::string data = noise(random() % 30'000, random());
                const NBErrnoOr<std::size_t> put =
                    folder.content().write(file, bytesOf(data), offset);
                model.write(data.substr(0, put ? *put : 0), offset);
                refused += put ? 0 : 1;
            } else {
                const NBDone done = folder.content().setSize(file, offset);
                refused += done ? 0 : 1;
                if (done)
                    model.setSize(offset);
                else if (offset < model.size()) // cut, but less than asked for
                    model.setSize(std::max(offset, std::min(model.size(), sizeOf(file))));
            }
            EXPECT_EQ(difference(model.text(), folder.readAt("/file")), "") << "step " << i;
        }
        EXPECT_GT(refused, 0);
    }));
}

INSTANTIATE_TEST_SUITE_P(Blocks, FullStoreTest, testing::Values(64, 1024, 4096, 12288),
                         [](const auto &each) { return "Of" + std::to_string(each.param); });

} // namespace nimbrel::test
