#include "config/AtomicFile.h"
#include "config/Child.h"
#include "config/ConfigurationWriter.h"
#include "config/Configurations.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <thread>

namespace nimbrel::test {

namespace {

constexpr int deaths = 50;

ino_t fileNumberOf(const std::string &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_ino;
}

// Waits until the writer is at work, and then for a moment that differs each time.
void waitAWhile(std::mt19937 &random, const std::string &path, ino_t before)
{
    EXPECT_TRUE(eventually([&] { return fileNumberOf(path) != before; }));
    std::uniform_int_distribution<int> microseconds(0, 20'000);
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
}

TEST(InterruptedWriteTest, ConfigurationOpensAfterEveryDeathOfItsWriter)
{
    const TempFolder temp;
    const std::string folder = temp.makeFolder("Documents.nmc");
    const std::string path = folder + "/.encfs6.xml";
    const std::string backups = temp / "backups";
    const NBNimbrelFSSettings first = freshSettings("one", {.keySize = 128, .kdfIterations = 1});
    NBNimbrelFSSettings second = first;
    changePassphrase(second, "one", "two");
    ASSERT_EQ(writeConfiguration(path, first, "one", backups), std::nullopt);
    const std::string key = keyOfFile(path, "one");
    ASSERT_NE(key, "");

    std::mt19937 random(1);
    for (int death = 0; death < deaths; ++death) {
        const ino_t before = fileNumberOf(path);
        Child child([&]() -> int {
            for (;;)
                if (writeConfiguration(path, first, "one", backups) ||
                    writeConfiguration(path, second, "two", backups))
                    return 1;
        });
        waitAWhile(random, path, before);
        child.kill();
        EXPECT_EQ(child.wait(), 128 + SIGKILL);
        const bool opens = keyOfFile(path, "one") == key || keyOfFile(path, "two") == key;
        ASSERT_TRUE(opens) << death;
    }
    // What a death may leave behind can't be taken for a configuration.
    for (const std::string &name : namesIn(folder))
        EXPECT_TRUE(name == ".encfs6.xml" || name.starts_with(".nimbrel-")) << name;
}

TEST(InterruptedWriteTest, ReaderAlwaysSeesAWholeFile)
{
    const TempFolder folder;
    const std::string path = folder / "a";
    const std::string one(20'000, '1');
    const std::string two(30'000, '2');
    ASSERT_EQ(replaceFile(path, one), std::nullopt);
    Child child([&]() -> int {
        for (;;)
            if (replaceFile(path, two) || replaceFile(path, one))
                return 1;
    });
    for (int i = 0; i < 500; ++i) {
        const std::string text = readFile(path);
        ASSERT_TRUE(text == one || text == two) << text.size();
    }
    child.kill();
    EXPECT_EQ(child.wait(), 128 + SIGKILL);
}

} // namespace

} // namespace nimbrel::test
