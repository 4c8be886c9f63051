// Every offset and size of small files, against the content path's definition.
#include "fs/ModelFile.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

constexpr std::int64_t largest = 70;

Bytes plainBytes(std::int64_t size, std::uint64_t seed)
{
    const std::string text = noise(static_cast<std::size_t>(size), seed);
    const ByteView bytes = bytesOf(text);
    return {bytes.begin(), bytes.end()};
}

// What a file of that size looks like on disk.
Bytes encryptedFile(const NBCryptor &cryptor, std::int64_t size)
{
    return cryptor.encrypt(plainBytes(size, 1)).value();
}

// One share of the sweep: the file sizes that leave `remainder` when divided by 8.
struct Share
{
    std::int64_t blockSize;
    std::int64_t remainder;
};

class BlockArithmeticTest : public testing::TestWithParam<Share>
{
protected:
    // Each file size of the share, with a file that the test may fill as it likes.
    template <class Check>
    void forEachFileSize(Check check)
    {
        for (std::int64_t fileSize = GetParam().remainder; fileSize <= largest; fileSize += 8) {
            check(fileSize);
            if (HasFatalFailure())
                return;
        }
    }

    TestDelegate delegate{GetParam().blockSize};
    NBFileHandle file = memoryFile();
    const NBCryptor &cryptor = delegate->cryptor();
};

std::string nameOfShare(const testing::TestParamInfo<Share> &info)
{
    return "Block" + std::to_string(info.param.blockSize) + "Share" +
           std::to_string(info.param.remainder);
}

std::vector<Share> shares()
{
    std::vector<Share> all;
    for (const std::int64_t blockSize : {16, 32})
        for (std::int64_t remainder = 0; remainder < 8; ++remainder)
            all.push_back({blockSize, remainder});
    return all;
}

} // namespace

TEST_P(BlockArithmeticTest, EveryReadGivesWhatTheDefinitionGives)
{
    forEachFileSize([&](std::int64_t fileSize) {
        const ModelFile model(cryptor, GetParam().blockSize, encryptedFile(cryptor, fileSize));
        setDiskBytes(file, model.disk());
        for (std::int64_t offset = 0; offset <= fileSize + 2; ++offset)
            for (std::size_t size = 0; size <= largest + 18; ++size) {
                Bytes buffer(size, 0xAA);
                const NBErrnoOr<std::size_t> got =
                    delegate->readFileAtPath("/file", file, buffer, offset);
                const std::optional<Bytes> expected = model.read(size, offset);
                ASSERT_EQ(got.code(), expected ? 0 : EIO)
                    << fileSize << " " << offset << " " << size;
                buffer.resize(got ? *got : 0);
                ASSERT_EQ(buffer, expected.value_or(Bytes()))
                    << fileSize << " " << offset << " " << size;
            }
    });
}

TEST_P(BlockArithmeticTest, EveryWriteLeavesWhatTheDefinitionLeaves)
{
    const Bytes news = plainBytes(largest, 2);
    forEachFileSize([&](std::int64_t fileSize) {
        const Bytes before = encryptedFile(cryptor, fileSize);
        for (std::int64_t offset = 0; offset <= largest + 2; ++offset)
            for (std::size_t size = 0; size <= static_cast<std::size_t>(largest); ++size) {
                setDiskBytes(file, before);
                ModelFile model(cryptor, GetParam().blockSize, before);
                const ByteView data = ByteView(news).first(size);
                const std::size_t expected = model.write(data, offset);
                const NBErrnoOr<std::size_t> written =
                    delegate->writeFileAtPath("/file", file, data, offset);
                ASSERT_EQ(written.code(), 0);
                ASSERT_EQ(*written, expected) << fileSize << " " << offset << " " << size;
                ASSERT_EQ(diskBytes(file), model.disk())
                    << fileSize << " " << offset << " " << size;
            }
    });
    EXPECT_EQ(file.lastWriteError, 0);
}

TEST_P(BlockArithmeticTest, EveryChangeOfSizeLeavesWhatTheDefinitionLeaves)
{
    forEachFileSize([&](std::int64_t fileSize) {
        const Bytes before = encryptedFile(cryptor, fileSize);
        for (std::int64_t size = 0; size <= largest; ++size) {
            setDiskBytes(file, before);
            ModelFile model(cryptor, GetParam().blockSize, before);
            model.setSize(size);
            ASSERT_TRUE(delegate->setAttributes({.size = size}, "/", &file));
            ASSERT_EQ(diskBytes(file), model.disk()) << fileSize << " to " << size;
        }
    });
    EXPECT_EQ(file.lastWriteError, 0);
}

TEST_P(BlockArithmeticTest, EveryChangeOfSizeByPathLeavesTheSame)
{
    const NBFileHandle stored = delegate.create("/file");
    forEachFileSize([&](std::int64_t fileSize) {
        const Bytes before = encryptedFile(cryptor, fileSize);
        for (std::int64_t size = 0; size <= largest; ++size) {
            if (size == fileSize && size > 0)
                continue; // leaves a descriptor open, by design
            setDiskBytes(stored, before);
            ModelFile model(cryptor, GetParam().blockSize, before);
            model.setSize(size);
            ASSERT_TRUE(delegate->setAttributes({.size = size}, "/file", nullptr));
            ASSERT_EQ(diskBytes(stored), model.disk()) << fileSize << " to " << size;
        }
    });
}

TEST_P(BlockArithmeticTest, ShrinkingKeepsWhatStays)
{
    forEachFileSize([&](std::int64_t fileSize) {
        const Bytes before = encryptedFile(cryptor, fileSize);
        const std::string plain = noise(static_cast<std::size_t>(fileSize), 1);
        for (std::int64_t size = 0; size <= fileSize; ++size) {
            setDiskBytes(file, before);
            ASSERT_TRUE(delegate->setAttributes({.size = size}, "/", &file));
            ASSERT_EQ(delegate.content(file), plain.substr(0, static_cast<std::size_t>(size)));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Shares, BlockArithmeticTest, testing::ValuesIn(shares()), nameOfShare);

} // namespace nimbrel::test
