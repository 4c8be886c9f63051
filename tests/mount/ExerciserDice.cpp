#include "mount/ExerciserDice.h"

#include "support/Files.h"

#include <algorithm>

namespace nimbrel::test {

ExerciserDice::ExerciserDice(std::uint64_t seed, std::size_t block)
    : _generator(seed), _block(block), _noise(noise(2 * largestFile, seed)),
      _zeros(largestFile, '\0')
{
}

std::size_t ExerciserDice::below(std::size_t limit)
{
    return static_cast<std::size_t>(_generator()) % limit;
}

// Up to 17 bytes before or behind: one more than the cipher's own unit.
std::size_t ExerciserDice::near(std::size_t place)
{
    const std::size_t moved = place + below(35);
    return std::min(moved < 17 ? 0 : moved - 17, largestFile);
}

std::size_t ExerciserDice::aroundBorder()
{
    constexpr std::size_t page = 4096;
    constexpr std::size_t request = std::size_t{128} * 1024;
    const std::size_t units[] = {_block, _block, page, request};
    const std::size_t unit = units[below(4)];
    return near(unit * below(largestFile / unit + 1));
}

std::size_t ExerciserDice::offset(std::size_t fileSize)
{
    switch (below(8)) {
    case 0:
    case 1:
    case 2:
        return aroundBorder();
    case 3:
    case 4:
        return near(fileSize);
    case 5:
        return near(0);
    case 6: // the last block's start
        return near(fileSize - fileSize % _block);
    default:
        return below(largestFile);
    }
}

std::size_t ExerciserDice::length(std::size_t offset)
{
    const std::size_t room = largestFile - offset;
    const std::size_t untilBorder = _block - offset % _block;
    std::size_t length = 0;
    switch (below(8)) {
    case 0:
    case 1:
        length = 1 + below(33);
        break;
    case 2:
        length = untilBorder;
        break;
    case 3:
        length = near(untilBorder + _block * below(3));
        break;
    case 4:
        length = _block * (1 + below(2));
        break;
    case 5:
        length = 1 + below(std::size_t{64} * 1024);
        break;
    default:
        length = 1 + below(std::min<std::size_t>(2 * _block, 20'000));
        break;
    }
    return std::min(std::max<std::size_t>(length, 1), room);
}

std::string_view ExerciserDice::bytes(std::size_t length)
{
    if (oneIn(20))
        return std::string_view(_zeros).substr(0, length);
    return std::string_view(_noise).substr(below(largestFile), length);
}

} // namespace nimbrel::test
