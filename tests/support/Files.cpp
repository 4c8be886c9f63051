#include "support/Files.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace nimbrel::test {

namespace {

[[noreturn]] void fail(const std::string &path)
{
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

} // namespace

std::string readFile(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        fail(path);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    if (stream.bad())
        fail(path);
    return text;
}

void writeFile(const std::string &path, std::string_view text)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream)
        fail(path);
}

std::string dataFile(std::string_view name)
{
    return std::string(NIMBREL_TEST_DATA) + "/" + std::string(name);
}

std::string toHex(ByteView bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        hex.push_back(digits[byte >> 4U]);
        hex.push_back(digits[byte & 15U]);
    }
    return hex;
}

Bytes fromHex(std::string_view hex)
{
    Bytes bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(
            static_cast<std::uint8_t>(std::stoul(std::string(hex.substr(i, 2)), nullptr, 16)));
    return bytes;
}

std::string noise(std::size_t size, std::uint64_t seed)
{
    std::mt19937_64 generator(seed);
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; i += 8) {
        const std::uint64_t word = generator();
        std::memcpy(text.data() + i, &word, std::min<std::size_t>(8, size - i));
    }
    return text;
}

} // namespace nimbrel::test
