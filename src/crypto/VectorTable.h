// The vectors of one volume's first seeds, kept. Stays inside crypto/.
#pragma once

#include "crypto/NBEncryptionKey.h"
#include "crypto/StreamForm.h"

#include <bitset>
#include <cstdint>
#include <memory>
#include <span>

namespace nimbrel {

// A vector depends on key and seed alone, not on the file: what one file's first blocks need, all
// files' first blocks need, and a name's seed is one of 65,536. Each vector is derived when it is
// first asked for. Memory is taken for all of them at once (1 MiB, which the system backs page by
// page as it is used), so that asking allocates nothing.
class VectorTable final
{
public:
    VectorTable();

    // The vectors of the seeds from `first` on, which wrap at 64 bits. One table serves one key.
    void fill(std::uint64_t first, std::span<Vector> vectors, const NBEncryptionKey &key);
    // Those of a stream piece.
    [[nodiscard]] StreamVectors ofStream(std::uint64_t seed, const NBEncryptionKey &key);

private:
    static constexpr std::size_t keptSeeds = 65536;

    void copyKept(std::size_t first, std::span<Vector> vectors, const NBEncryptionKey &key);
    static void derive(std::uint64_t first, std::span<Vector> vectors, const NBEncryptionKey &key);

    std::unique_ptr<Vector[]> _vectors;
    std::bitset<keptSeeds> _known;
};

} // namespace nimbrel
