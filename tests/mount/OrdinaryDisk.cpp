#include "mount/OrdinaryDisk.h"

#include <cstdlib>
#include <string_view>

namespace nimbrel::test {

bool onOrdinaryDisk()
{
    const char *value = std::getenv("NIMBREL_TEST_PLAIN");
    return value != nullptr && std::string_view(value) == "1";
}

std::size_t longestName()
{
    constexpr std::size_t encrypted = 189;
    constexpr std::size_t ordinary = 255;
    return onOrdinaryDisk() ? ordinary : encrypted;
}

} // namespace nimbrel::test
