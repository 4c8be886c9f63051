#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

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

} // namespace nimbrel::test
