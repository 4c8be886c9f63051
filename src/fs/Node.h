// An item that the kernel knows.
#pragma once

#include "fs/ContentVersion.h"

#include <cstdint>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace nimbrel {

struct NodeName;
struct OpenFile;

// A node's place in the pool. 32 bits: links between nodes are most of the table's memory.
using NodeSlot = std::uint32_t;
inline constexpr NodeSlot noSlot = 0;

// It stands for one item on disk, whatever names that has: hard links share a node, so that they
// share the kernel's cache. There are very many of these: a byte more here is a tenth of a
// megabyte.
struct Node
{
    std::uint64_t number = 0; // 0: a free place of the pool
    ino_t inode = 0;
    // ContentVersion::digest() of the attributes that the kernel has of it; 0 where it has none, or
    // takes them for outdated itself.
    std::uint64_t told = 0;
    std::uint32_t device = 0; // the kernel's device numbers have 32 bits
    std::uint16_t type = 0;   // S_IFMT bits

    [[nodiscard]] bool isFolder() const noexcept { return S_ISDIR(type); }
    [[nodiscard]] bool isLinked() const noexcept { return names != nullptr; }
    [[nodiscard]] bool isOpen() const noexcept { return !openFiles().empty(); }
    [[nodiscard]] const std::vector<OpenFile *> &openFiles() const noexcept;
    // Nothing like a real one until it is set first.
    [[nodiscard]] ContentVersion version() const noexcept;
    void setVersion(const ContentVersion &version);

    // What follows is the table's own.
    bool wasUsed : 1 = false;    // looked up, or asked about, since the hand passed
    bool isOffered : 1 = false;  // the kernel is asked to forget it
    bool isIdentity : 1 = false; // found by device and inode
    std::uint64_t lookups = 0;   // references that the kernel holds
    std::uint32_t children = 0;  // names of other nodes that stand in this folder
    NodeSlot next = noSlot;      // in its chain of the identities, or of the free places
    NodeName *names = nullptr;   // newest first; none: unlinked

    void addOpenFile(OpenFile &file);
    void removeOpenFile(OpenFile &file) noexcept;

private:
    struct Opened
    {
        ContentVersion version;
        std::vector<OpenFile *> files;
    };
    Opened &opened();

    std::unique_ptr<Opened> _opened; // only of what was opened once
};

static_assert(sizeof(Node) <= 64);

} // namespace nimbrel
