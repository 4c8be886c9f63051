// Long random runs against a file in memory, looked at through fresh delegates.
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>

namespace nimbrel::test {

namespace {

struct ModelCase
{
    std::int64_t blockSize;
    bool allowHoles;
};

class GuardedModelTest : public testing::TestWithParam<ModelCase>
{
protected:
    static constexpr int steps = 400;

    std::int64_t number(std::int64_t most)
    {
        return std::uniform_int_distribution<std::int64_t>(0, most)(random);
    }
    // Near a block's border as often as not: that is where mistakes live.
    std::int64_t place(std::int64_t most)
    {
        const std::int64_t at = number(most);
        if (number(1) == 0)
            return at;
        const std::int64_t block = GetParam().blockSize;
        return std::max<std::int64_t>(0, at / block * block + number(2) - 1);
    }
    [[nodiscard]] std::int64_t most() const { return 12 * GetParam().blockSize; }

    void write()
    {
        const std::string data =
            noise(static_cast<std::size_t>(place(3 * GetParam().blockSize)), random());
        const std::int64_t offset = number(3) == 0 ? model.size() : place(most());
        const NBErrnoOr<std::size_t> put = folder.content().write(file, bytesOf(data), offset);
        ASSERT_TRUE(put && *put == data.size());
        model.write(data, offset);
    }
    void setSize()
    {
        const std::int64_t size = place(most());
        ASSERT_TRUE(folder.content().setSize(file, size));
        model.setSize(size);
    }
    void allocate()
    {
        constexpr std::array<int, 5> modes = {
            0, FALLOC_FL_KEEP_SIZE, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
            FALLOC_FL_ZERO_RANGE, FALLOC_FL_ZERO_RANGE | FALLOC_FL_KEEP_SIZE};
        const int mode = modes.at(static_cast<std::size_t>(number(4)));
        const std::int64_t offset = place(most());
        const std::int64_t length = 1 + place(most() / 2);
        ASSERT_TRUE(folder.content().allocate(file, mode, offset, length));
        if ((mode & ~FALLOC_FL_KEEP_SIZE) != 0)
            model.clear(offset, offset + length);
        if ((mode & FALLOC_FL_KEEP_SIZE) == 0 && model.size() < offset + length)
            model.setSize(offset + length);
    }
    void read()
    {
        const std::int64_t offset = place(most());
        std::string text(static_cast<std::size_t>(place(most())), '?');
        const NBErrnoOr<std::size_t> got = folder.content().read(file, spanOf(text), offset);
        ASSERT_TRUE(got);
        const std::string wanted =
            offset >= model.size()
                ? ""
                : model.text().substr(static_cast<std::size_t>(offset), text.size());
        ASSERT_EQ(difference(wanted, text.substr(0, *got)), "");
    }
    void reopen()
    {
        folder.reopen();
        file = folder.open("/file");
    }
    void step()
    {
        const std::int64_t what = number(19);
        if (what < 9)
            write();
        else if (what < 12)
            setSize();
        else if (what < 15)
            allocate();
        else if (what < 19)
            read();
        else
            reopen();
    }

    std::uint64_t seed = std::random_device()();
    std::mt19937_64 random{seed};
    GuardedFolder folder{{.blockSize = GetParam().blockSize, .allowHoles = GetParam().allowHoles}};
    NBFileHandle file = folder.create("/file");
    PlainModel model;
};

std::string nameOfCase(const testing::TestParamInfo<ModelCase> &info)
{
    return "Block" + std::to_string(info.param.blockSize) +
           (info.param.allowHoles ? "WithHoles" : "WithoutHoles");
}

} // namespace

TEST_P(GuardedModelTest, AFileIsWhatWasWrittenToIt)
{
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        step();
        ASSERT_EQ(difference(model.text(), folder.readAt("/file")), "");
    }
    reopen();
    EXPECT_EQ(difference(model.text(), folder.readAt("/file")), "");
}

INSTANTIATE_TEST_SUITE_P(Blocks, GuardedModelTest,
                         testing::Values(ModelCase{16, true}, ModelCase{16, false},
                                         ModelCase{48, true}, ModelCase{48, false},
                                         ModelCase{64, true}, ModelCase{64, false},
                                         ModelCase{1024, true}, ModelCase{1024, false},
                                         ModelCase{4096, true}, ModelCase{4096, false},
                                         ModelCase{16384, true}, ModelCase{16384, false}),
                         nameOfCase);

} // namespace nimbrel::test
