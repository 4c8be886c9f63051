#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace nimbrel::test {

namespace {

struct Work
{
    reference::Key key;
    Bytes plain = {};
    Bytes cipher = {};
    std::string name = {};
    int wrong = 0;
};

Work workOf(std::size_t number)
{
    Work work{.key = {noiseKeyData(number % 2 == 0 ? 128 : 256, number)},
              .plain = noiseBytes(40 * 256 + number, number),
              .name = "name " + std::to_string(number)};
    work.cipher = reference::run(work.plain, 256, number, work.key, reference::Direction::Encrypt);
    return work;
}

void doWork(Work &work, std::size_t number)
{
    for (int round = 0; round < 20; ++round) {
        const NBCryptor cryptor = cryptorWithData(work.key.data, 256);
        Bytes bytes = work.plain;
        work.wrong += !cryptor.encryptRun(bytes, number, bytes) || bytes != work.cipher;
        work.wrong += !cryptor.decryptRun(bytes, number, bytes) || bytes != work.plain;
        work.wrong += cryptor.decodeString(cryptor.encodeString(work.name).value()) != work.name;
    }
}

} // namespace

TEST(NBCryptorThreadsTest, DifferentCryptorsWorkInDifferentThreadsAtOnce)
{
    constexpr std::size_t count = 6;
    std::vector<Work> works;
    for (std::size_t i = 0; i < count; ++i)
        works.push_back(workOf(i));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i)
        threads.emplace_back([&work = works[i], i] { doWork(work, i); });
    for (std::thread &thread : threads)
        thread.join();
    for (const Work &work : works)
        EXPECT_EQ(work.wrong, 0) << work.name;
}

TEST(NBCryptorThreadsTest, ACopyWorksInAnotherThreadAtOnce)
{
    Work work = workOf(4);
    const NBCryptor first = cryptorWithData(work.key.data, 256);
    const std::optional<NBCryptor> second = first.copy();
    ASSERT_TRUE(second.has_value());
    const auto wrongOnes = [&work](const NBCryptor &cryptor) {
        int wrong = 0;
        for (int round = 0; round < 200; ++round) {
            Bytes bytes = work.plain;
            wrong += !cryptor.encryptRun(bytes, 4, bytes) || bytes != work.cipher;
            wrong += cryptor.decodeString(cryptor.encodeString(work.name).value()) != work.name;
        }
        return wrong;
    };
    int elsewhere = 0;
    std::thread thread([&] { elsewhere = wrongOnes(*second); });
    EXPECT_EQ(wrongOnes(first), 0);
    thread.join();
    EXPECT_EQ(elsewhere, 0);
    EXPECT_EQ(second->writeKeyWithPassphrase("a"), first.writeKeyWithPassphrase("a"));
    EXPECT_EQ(second->blockSize(), 256U);
}

} // namespace nimbrel::test
