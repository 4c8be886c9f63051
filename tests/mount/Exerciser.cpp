#include "mount/Exerciser.h"

#include "mount/Calls.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>
#include <sys/stat.h>

namespace nimbrel::test {

struct Exerciser::Operation
{
    std::size_t weight;
    void (Exerciser::*run)();
};

const std::vector<Exerciser::Operation> &Exerciser::operations()
{
    static const std::vector<Operation> table{
        {220, &Exerciser::write},        {40, &Exerciser::append},
        {220, &Exerciser::read},         {60, &Exerciser::truncate},
        {25, &Exerciser::allocate},      {40, &Exerciser::writeMapped},
        {30, &Exerciser::readMapped},    {15, &Exerciser::copyRange},
        {20, &Exerciser::locateHoles},   {30, &Exerciser::forgetCache},
        {60, &Exerciser::open},          {40, &Exerciser::close},
        {12, &Exerciser::rename},        {5, &Exerciser::exchange},
        {8, &Exerciser::link},           {10, &Exerciser::unlink},
        {30, &Exerciser::compareStatus}, {4, &Exerciser::compareListing},
        {2, &Exerciser::compareAll}};
    return table;
}

Exerciser::Exerciser(MountedFolder &disk, std::uint64_t seed, std::size_t block)
    : _disk(disk), _dice(seed, block)
{
    must(::mkdir((_disk / "folder").c_str(), 0755), "mkdir");
}

void Exerciser::work(long operations)
{
    constexpr long remounts = 8;
    const long between = std::max(operations / remounts, 1L);
    try {
        for (_number = 1; _number <= operations; ++_number) {
            if (_number % between == 0)
                remount();
            else
                step();
        }
        compareAll();
        _handles.clear();
    } catch (const std::exception &error) {
        _handles.clear(); // so that the disk can go
        throw std::runtime_error(
            fmt::format("operation {}: {}\n{}", _number, error.what(), history()));
    }
}

void Exerciser::step()
{
    static const std::size_t sum = std::accumulate(
        operations().begin(), operations().end(), std::size_t{0},
        [](std::size_t weights, const Operation &each) { return weights + each.weight; });
    std::size_t place = _dice.below(sum);
    for (const Operation &each : operations()) {
        if (place < each.weight) {
            (this->*each.run)();
            return;
        }
        place -= each.weight;
    }
}

void Exerciser::note(const std::shared_ptr<Content> &content, const std::string &text)
{
    constexpr std::size_t kept = 60;
    _current = content;
    content->history.push_back(fmt::format("{:>8} {}", _number, text));
    if (content->history.size() > kept)
        content->history.pop_front();
}

void Exerciser::note(const Handle &handle, const std::string &text)
{
    note(handle.content, fmt::format("handle {}, size {}: {}", handle.file.id(),
                                     handle.content->bytes.size(), text));
}

std::string Exerciser::history() const
{
    return _current ? fmt::format("{}\n", fmt::join(_current->history, "\n")) : std::string();
}

Exerciser::Handle *Exerciser::someHandle(int neededFlags)
{
    if (_handles.empty())
        return nullptr;
    Handle *handle = _handles[_dice.below(_handles.size())].get();
    const int mode = handle->flags & O_ACCMODE;
    return mode == neededFlags || mode == O_RDWR ? handle : nullptr;
}

void Exerciser::compare(const std::string &what, std::string_view expected,
                        std::string_view seen) const
{
    if (expected == seen)
        return;
    const auto [one, other] =
        std::mismatch(expected.begin(), expected.end(), seen.begin(), seen.end());
    const auto place = one - expected.begin();
    const auto hex = [](std::string_view text, auto from) {
        return from == text.end() ? std::string("end")
                                  : fmt::format("{:02x}", static_cast<unsigned char>(*from));
    };
    throw std::runtime_error(fmt::format(
        "{}: {} bytes expected, {} seen; the first difference is at {}: {} expected, {} seen", what,
        expected.size(), seen.size(), place, hex(expected, one), hex(seen, other)));
}

} // namespace nimbrel::test
