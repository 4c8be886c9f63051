// Random work against a model in memory. NIMBREL_EXERCISER_OPERATIONS sets how much of it,
// NIMBREL_EXERCISER_SEED repeats a run that failed.
#include "mount/Exerciser.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <random>

namespace nimbrel::test {
namespace {

std::uint64_t fromEnvironment(const char *name, std::uint64_t otherwise)
{
    const char *text = std::getenv(name);
    if (text == nullptr)
        return otherwise;
    std::uint64_t number = 0;
    if (std::from_chars(text, text + std::strlen(text), number).ec != std::errc())
        throw std::runtime_error(std::string(name) + " is no number");
    return number;
}

class ExerciserTest : public testing::TestWithParam<long>
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }
};

TEST_P(ExerciserTest, RandomWorkLeavesTheDiskAsTheModelSays)
{
    const std::uint64_t seed = fromEnvironment("NIMBREL_EXERCISER_SEED", std::random_device{}());
    const auto operations = fromEnvironment("NIMBREL_EXERCISER_OPERATIONS", 100'000);
    std::cout << "seed " << seed << ", " << operations << " operations\n" << std::flush;
    MountedFolder disk({.blockSize = GetParam()});
    Exerciser exerciser(disk, seed, static_cast<std::size_t>(GetParam()));
    try {
        exerciser.work(static_cast<long>(operations));
    } catch (const std::exception &error) {
        FAIL() << "seed " << seed << ", " << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(Blocks, ExerciserTest, testing::Values(1024L, 4096L, 65536L),
                         [](const auto &each) { return std::to_string(each.param); });

} // namespace
} // namespace nimbrel::test
