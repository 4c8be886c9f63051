// What the kernel's node numbers stand for.
#pragma once

#include "fs/NBErrno.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

namespace nimbrel {

struct OpenFile;
struct Node;

// One name of a node: the folder it stands in and the plain name there.
struct NodeName
{
    Node *folder;
    std::string name;
    bool operator==(const NodeName &) const = default;
};

// The state of an item's content on disk that the kernel's page cache was filled from.
struct ContentVersion
{
    timespec modified{};
    timespec changed{};
    off_t size = -1;

    [[nodiscard]] static ContentVersion of(const struct stat &attributes) noexcept;
    [[nodiscard]] bool operator==(const ContentVersion &other) const noexcept;
};

// An item that the kernel knows. It stands for one item on disk, whatever names that has: hard
// links share a node, so that they share the kernel's cache.
struct Node
{
    std::uint64_t number = 0;
    dev_t device = 0;
    ino_t inode = 0;
    mode_t type = 0;                     // S_IFMT bits
    std::uint64_t lookups = 0;           // references that the kernel holds
    std::uint64_t children = 0;          // names of other nodes that stand in this folder
    std::vector<const NodeName *> names; // none: unlinked
    std::vector<OpenFile *> openFiles;
    ContentVersion version;
};

// Node numbers are never used twice. A node stays while the kernel holds a reference or a node
// below it stays.
class NodeTable final
{
public:
    static constexpr std::uint64_t rootNumber = 1;

    NodeTable();
    ~NodeTable();
    NodeTable(const NodeTable &) = delete;
    NodeTable &operator=(const NodeTable &) = delete;

    [[nodiscard]] Node &root() noexcept { return *_root; }
    // Null for a number that isn't known.
    [[nodiscard]] Node *find(std::uint64_t number) noexcept;
    // Plain path; ESTALE where the node has no name any more.
    [[nodiscard]] NBErrnoOr<std::string> pathOf(const Node &node) const;
    [[nodiscard]] NBErrnoOr<std::string> pathOf(const Node &folder, std::string_view name) const;

    // The node for what `attributes` tell of `name` in `folder`, with one more reference.
    Node &refer(Node &folder, std::string_view name, const struct stat &attributes);
    void forget(std::uint64_t number, std::uint64_t references);
    void nameRemoved(Node &folder, std::string_view name);
    void nameMoved(Node &folder, std::string_view name, Node &newFolder, std::string_view newName);
    void namesExchanged(Node &folder, std::string_view name, Node &otherFolder,
                        std::string_view otherName);

    void opened(Node &node, OpenFile &file);
    void closed(Node &node, OpenFile &file);

    [[nodiscard]] std::size_t size() const noexcept { return _nodes.size(); }

private:
    struct Identity
    {
        dev_t device;
        ino_t inode;
        bool operator==(const Identity &) const = default;
    };
    struct Hash
    {
        std::size_t operator()(const Identity &identity) const noexcept;
        std::size_t operator()(const NodeName &name) const noexcept;
    };
    using Names = std::unordered_map<NodeName, Node *, Hash>;

    Node &nodeFor(const struct stat &attributes);
    void addName(Node &node, Node &folder, std::string_view name);
    Node &detachName(Node &node, const NodeName &name);
    void dropName(Names::iterator name);
    void dropIfUnused(Node &node);
    void leaveIndexIfGone(Node &node);

    std::unordered_map<std::uint64_t, std::unique_ptr<Node>> _nodes;
    std::unordered_map<Identity, Node *, Hash> _byIdentity;
    Names _byName;
    Node *_root;
    std::uint64_t _nextNumber = rootNumber + 1;
};

} // namespace nimbrel
