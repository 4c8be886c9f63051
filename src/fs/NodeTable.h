// What the kernel's node numbers stand for.
#pragma once

#include "fs/NBErrno.h"
#include "fs/NodeIdentities.h"
#include "fs/NodeNames.h"
#include "fs/NodePlace.h"
#include "fs/NodePool.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace nimbrel {

// Node numbers are never used twice. A node stays while the kernel holds a reference or a node
// below it stays. Some 130 bytes a node with a short name.
class NodeTable final
{
public:
    static constexpr std::uint64_t rootNumber = 1;
    // More than these, and the kernel is to forget some: it does so of itself only when the whole
    // machine is short of memory.
    static constexpr std::size_t itemsKept = 100'000;
    static constexpr std::size_t bytesKept = std::size_t{16} * 1024 * 1024; // where names are long

    // `itemsToKeep` is for tests.
    explicit NodeTable(std::size_t itemsToKeep = itemsKept);
    NodeTable(const NodeTable &) = delete;
    NodeTable &operator=(const NodeTable &) = delete;

    [[nodiscard]] Node &root() noexcept { return *_root; }
    // Null for a number that isn't known.
    [[nodiscard]] Node *find(std::uint64_t number) noexcept;
    // Plain path; ESTALE where the node has no name any more.
    [[nodiscard]] NBErrnoOr<std::string> pathOf(const Node &node) const;
    [[nodiscard]] NBErrnoOr<std::string> pathOf(const Node &folder, std::string_view name) const;
    // The same into a string of the caller's, whose memory is used again.
    NBDone pathInto(const Node &node, std::string &path) const;
    NBDone pathInto(const Node &folder, std::string_view name, std::string &path) const;
    // The folder that a node stands in; the node itself for the root and for what has no name.
    [[nodiscard]] const Node &folderAbove(const Node &node) const noexcept;

    // The node for what `attributes` tell of `name` in `folder`, with one more reference.
    Node &refer(Node &folder, std::string_view name, const struct stat &attributes);
    void forget(std::uint64_t number, std::uint64_t references);
    void nameRemoved(Node &folder, std::string_view name);
    void nameMoved(Node &folder, std::string_view name, Node &newFolder, std::string_view newName);
    void namesExchanged(Node &folder, std::string_view name, Node &otherFolder,
                        std::string_view otherName);

    void opened(Node &node, OpenFile &file);
    void closed(Node &node, OpenFile &file);

    [[nodiscard]] std::size_t size() const noexcept { return _pool.size(); }

    // Where the kernel should let go of items, about `most` places: nothing until there are too
    // many, then those that weren't asked about for longest. Cheap enough for every request.
    // Folders go only where they are most of the items: the kernel drops even one that is in use,
    // and whoever works in it is without a path until somebody looks it up again.
    [[nodiscard]] std::vector<NodePlace> reclaimable(std::size_t most);

private:
    class Hold;

    [[nodiscard]] NBErrnoOr<std::size_t> lengthOfPath(const Node &node) const;
    void writePath(const Node &node, char *end) const noexcept;

    [[nodiscard]] NodeName *findName(const Node &folder, std::string_view name) const noexcept;
    Node &makeNode(const struct stat &attributes);
    void addName(Node &node, Node &folder, std::string_view name);
    void linkName(Node &node, NodeName &name) noexcept;
    void unlinkName(NodeName &name) noexcept;
    Node &detachName(NodeName &name) noexcept;
    void dropName(NodeName &name) noexcept;
    void dropIfUnused(Node &node) noexcept;
    void leaveIdentitiesIfGone(Node &node) noexcept;
    void release(Node &node) noexcept;

    void noteUse(Node &node) noexcept;
    void takeBackOffer(Node &node) noexcept;
    [[nodiscard]] std::size_t expected() const noexcept;
    [[nodiscard]] std::size_t itemsToKeep() const noexcept;
    [[nodiscard]] Node &nextAtHand() noexcept;
    [[nodiscard]] bool isReclaimable(Node &node, bool withFolders) noexcept;
    void offer(Node &node, std::vector<NodePlace> &places);

    NodePool _pool;
    NodeIdentities _identities{_pool};
    NodeNames _names;
    Node *_root;
    std::size_t _folders = 0;
    const std::size_t _itemsToKeep;
    std::size_t _offered = 0; // nodes that the kernel is asked to forget
    NodeSlot _hand = noSlot;  // goes round all slots
};

} // namespace nimbrel
