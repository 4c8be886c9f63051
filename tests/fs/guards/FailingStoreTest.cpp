// A store that takes a part of a write and no more, at every byte.
#include "fs/guards/GuardedFolder.h"
#include "fs/guards/StoreFaults.h"
#include "support/Files.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

struct Case
{
    std::int64_t blockSize;
    bool allowHoles;
};

// No write of this process may go behind `bytes` while it lives; what stands there already stays.
class SizeLimit final
{
public:
    explicit SizeLimit(std::int64_t bytes) : _handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &_before), 0);
        const rlimit limit{static_cast<rlim_t>(bytes), _before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~SizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &_before);
        std::signal(SIGXFSZ, _handler);
    }
    SizeLimit(const SizeLimit &) = delete;
    SizeLimit &operator=(const SizeLimit &) = delete;

private:
    void (*_handler)(int);
    rlimit _before{};
};

class FailingStoreTest : public testing::TestWithParam<Case>
{
protected:
    // A file with content, in which the second half of its blocks may be holes.
    void prepare(std::int64_t size)
    {
        text = noise(static_cast<std::size_t>(size), 1);
        file = memoryFile();
        ASSERT_TRUE(folder.content().write(file, bytesOf(text), 0));
        const std::int64_t hole = 2 * GetParam().blockSize;
        if (size >= hole + GetParam().blockSize) {
            ASSERT_TRUE(folder.content().allocate(file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                                                  hole, GetParam().blockSize));
            std::fill_n(text.begin() + hole, GetParam().blockSize, '\0');
        }
    }
    [[nodiscard]] std::string now() { return folder.read(file); }
    [[nodiscard]] std::string onDisk() const
    {
        std::string bytes(static_cast<std::size_t>(sizeOf(file)), '\0');
        EXPECT_EQ(::pread(file.descriptor.get(), bytes.data(), bytes.size(), 0), sizeOf(file));
        return bytes;
    }

    // What a write may leave: everything, a part that its count tells, or nothing and an error.
    void judgeWrite(const NBErrnoOr<std::size_t> &put, const std::string &data, std::int64_t offset)
    {
        PlainModel model;
        model.write(text, 0);
        if (put)
            model.write(data.substr(0, *put), offset);
        ASSERT_EQ(difference(model.text(), now()), "") << "result " << put.code();
    }
    // A size that couldn't be set leaves the file as it was, or cut less than it should be.
    void judgeSize(const NBDone &done, std::int64_t size)
    {
        PlainModel model;
        model.write(text, 0);
        const std::string got = now();
        if (done)
            model.setSize(size);
        else if (size < model.size())
            model.setSize(std::clamp<std::int64_t>(static_cast<std::int64_t>(got.size()), size,
                                                   model.size()));
        ASSERT_EQ(difference(model.text(), got), "") << "result " << done.code();
    }

    [[nodiscard]] std::vector<std::int64_t> places() const
    {
        const std::int64_t block = GetParam().blockSize;
        return {0,
                1,
                block - 1,
                block,
                block + 5,
                2 * block,
                2 * block + 3,
                3 * block - 1,
                3 * block,
                3 * block + 7,
                4 * block + 1,
                5 * block};
    }

    GuardedFolder folder{{.blockSize = GetParam().blockSize, .allowHoles = GetParam().allowHoles}};
    NBFileHandle file;
    std::string text;
};

} // namespace

TEST_P(FailingStoreTest, NoWriteTakesWhatWasSafe)
{
    const std::int64_t block = GetParam().blockSize;
    for (const std::int64_t size : {block / 2, 3 * block, 3 * block + 5})
        for (const std::int64_t offset : places())
            for (const std::int64_t length : {std::int64_t{3}, block, 2 * block + 1})
                for (std::size_t room = 0; room <= static_cast<std::size_t>(5 * block); ++room) {
                    prepare(size);
                    SCOPED_TRACE(testing::Message() << length << " bytes at " << offset << " of "
                                                    << size << ", room for " << room);
                    const std::string data = noise(static_cast<std::size_t>(length), 2);
                    bool hasStruck = false;
                    NBErrnoOr<std::size_t> put = NBErrno{0};
                    {
                        const WriteFault fault(room, 1, ENOSPC);
                        put = folder.content().write(file, bytesOf(data), offset);
                        hasStruck = fault.hasStruck();
                    }
                    ASSERT_TRUE(put || put.code() == ENOSPC);
                    judgeWrite(put, data, offset);
                    if (HasFailure())
                        return;
                    if (!hasStruck)
                        break; // there was room for all
                }
}

TEST_P(FailingStoreTest, NoChangeOfSizeTakesWhatWasSafe)
{
    const std::int64_t block = GetParam().blockSize;
    for (const std::int64_t size : {block / 2, 3 * block, 3 * block + 5})
        for (const std::int64_t wanted : places())
            for (std::size_t room = 0; room <= static_cast<std::size_t>(5 * block); ++room) {
                prepare(size);
                SCOPED_TRACE(testing::Message()
                             << size << " to " << wanted << ", room for " << room);
                bool hasStruck = false;
                NBDone done;
                {
                    const WriteFault fault(room, 1, ENOSPC);
                    done = folder.content().setSize(file, wanted);
                    hasStruck = fault.hasStruck();
                }
                ASSERT_TRUE(done || done.code() == ENOSPC);
                judgeSize(done, wanted);
                if (HasFailure())
                    return;
                if (!hasStruck)
                    break;
            }
}

TEST_P(FailingStoreTest, ALimitOfFileSizesTakesNothing)
{
    const std::int64_t block = GetParam().blockSize;
    for (const std::int64_t size : {block / 2, 3 * block, 3 * block + 5})
        for (const std::int64_t offset : places())
            for (std::int64_t limit = 0; limit <= 5 * block; limit += 1) {
                prepare(size);
                SCOPED_TRACE(testing::Message()
                             << "at " << offset << " of " << size << ", limit " << limit);
                const std::string data = noise(static_cast<std::size_t>(block + 3), 3);
                NBErrnoOr<std::size_t> put = NBErrno{0};
                {
                    const SizeLimit limited(limit);
                    put = folder.content().write(file, bytesOf(data), offset);
                }
                ASSERT_TRUE(put || put.code() == EFBIG);
                judgeWrite(put, data, offset);
                if (HasFailure())
                    return;
            }
}

TEST_P(FailingStoreTest, ALimitOfFileSizesTakesNothingFromACutOrGrownFile)
{
    const std::int64_t block = GetParam().blockSize;
    for (const std::int64_t size : {block / 2, 3 * block, 3 * block + 5})
        for (const std::int64_t wanted : places())
            for (std::int64_t limit = 0; limit <= 5 * block; limit += 1) {
                prepare(size);
                SCOPED_TRACE(testing::Message() << size << " to " << wanted << ", limit " << limit);
                NBDone done;
                {
                    const SizeLimit limited(limit);
                    done = folder.content().setSize(file, wanted);
                }
                ASSERT_TRUE(done || done.code() == EFBIG);
                judgeSize(done, wanted);
                if (HasFailure())
                    return;
            }
}

TEST_P(FailingStoreTest, AMendedHoleIsAHoleAgain)
{
    const std::int64_t block = GetParam().blockSize;
    prepare(4 * block);
    const std::string before = onDisk();
    {
        const WriteFault fault(5, 1, ENOSPC);
        EXPECT_EQ(folder.content().write(file, bytesOf("new"), 2 * block + 1).code(), ENOSPC);
    }
    EXPECT_EQ(onDisk(), before);
}

TEST_P(FailingStoreTest, AFullStoreWorksAgainWhenItHasRoom)
{
    prepare(3 * GetParam().blockSize + 5);
    const std::string data = noise(100, 4);
    const std::int64_t offset = 10 * GetParam().blockSize + 3;
    {
        const WriteFault fault(7, 1, ENOSPC);
        EXPECT_EQ(folder.content().write(file, bytesOf(data), offset).code(), ENOSPC);
    }
    EXPECT_EQ(sizeOf(file), static_cast<std::int64_t>(text.size()));
    const NBErrnoOr<std::size_t> put = folder.content().write(file, bytesOf(data), offset);
    judgeWrite(put, data, offset);
    EXPECT_EQ(*put, data.size());
}

INSTANTIATE_TEST_SUITE_P(Blocks, FailingStoreTest,
                         testing::Values(Case{16, true}, Case{16, false}, Case{48, true},
                                         Case{48, false}),
                         [](const auto &each) {
                             return "Block" + std::to_string(each.param.blockSize) +
                                    (each.param.allowHoles ? "WithHoles" : "WithoutHoles");
                         });

} // namespace nimbrel::test
