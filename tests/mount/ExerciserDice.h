// Chance, as the exerciser needs it: everything follows from the seed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace nimbrel::test {

class ExerciserDice final
{
public:
    static constexpr std::size_t largestFile = std::size_t{300} * 1024; // bytes

    // `block` is the disk's block size in bytes: mistakes live around its multiples.
    ExerciserDice(std::uint64_t seed, std::size_t block);

    [[nodiscard]] std::size_t below(std::size_t limit); // 0 up to limit - 1
    [[nodiscard]] bool oneIn(std::size_t count) { return below(count) == 0; }

    // A place in a file of that size or behind its end, mostly close to some border.
    [[nodiscard]] std::size_t offset(std::size_t fileSize);
    // How much to read or write from there on; at least 1, unless the place is the last.
    [[nodiscard]] std::size_t length(std::size_t offset);
    // Bytes to write; now and then all zeros, which a sparse disk may take for a hole.
    [[nodiscard]] std::string_view bytes(std::size_t length);

private:
    [[nodiscard]] std::size_t aroundBorder();
    [[nodiscard]] std::size_t near(std::size_t place);

    std::mt19937_64 _generator;
    std::size_t _block;
    std::string _noise;
    std::string _zeros;
};

} // namespace nimbrel::test
