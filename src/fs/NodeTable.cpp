#include "fs/NodeTable.h"

#include <algorithm>
#include <functional>

namespace nimbrel {

namespace {

constexpr std::size_t deepestPath = 4096; // components; the kernel's paths are shorter

bool sameTime(const timespec &one, const timespec &other) noexcept
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

} // namespace

ContentVersion ContentVersion::of(const struct stat &attributes) noexcept
{
    return {attributes.st_mtim, attributes.st_ctim, attributes.st_size};
}

bool ContentVersion::operator==(const ContentVersion &other) const noexcept
{
    return size == other.size && sameTime(modified, other.modified) &&
           sameTime(changed, other.changed);
}

std::size_t NodeTable::Hash::operator()(const Identity &identity) const noexcept
{
    return std::hash<std::uint64_t>()(identity.inode * 31 + identity.device);
}

std::size_t NodeTable::Hash::operator()(const NodeName &name) const noexcept
{
    return std::hash<std::string>()(name.name) ^ std::hash<Node *>()(name.folder);
}

NodeTable::NodeTable()
{
    auto root = std::make_unique<Node>();
    root->number = rootNumber;
    root->type = S_IFDIR;
    root->lookups = 1; // the kernel never forgets it
    _root = root.get();
    _nodes.emplace(rootNumber, std::move(root));
}

NodeTable::~NodeTable() = default;

Node *NodeTable::find(std::uint64_t number) noexcept
{
    const auto found = _nodes.find(number);
    return found == _nodes.end() ? nullptr : found->second.get();
}

NBErrnoOr<std::string> NodeTable::pathOf(const Node &node) const
{
    if (&node == _root)
        return std::string("/");
    std::vector<const std::string *> parts;
    std::size_t length = 0;
    for (const Node *step = &node; step != _root; step = step->names.front()->folder) {
        // Folders that were moved into each other from outside make a ring until they are looked
        // up again.
        if (step->names.empty() || parts.size() > deepestPath)
            return NBErrno{ESTALE};
        parts.push_back(&step->names.front()->name);
        length += parts.back()->size() + 1;
    }
    std::string path;
    path.reserve(length);
    for (auto part = parts.rbegin(); part != parts.rend(); ++part)
        path.append(1, '/').append(**part);
    return path;
}

NBErrnoOr<std::string> NodeTable::pathOf(const Node &folder, std::string_view name) const
{
    NBErrnoOr<std::string> path = pathOf(folder);
    if (path) {
        if (path->size() > 1)
            path->append(1, '/');
        path->append(name);
    }
    return path;
}

Node &NodeTable::nodeFor(const struct stat &attributes)
{
    const Identity identity{attributes.st_dev, attributes.st_ino};
    const mode_t type = attributes.st_mode & S_IFMT;
    const auto found = _byIdentity.find(identity);
    if (found != _byIdentity.end() && found->second->type == type)
        return *found->second;
    auto node = std::make_unique<Node>();
    node->number = _nextNumber++;
    node->device = attributes.st_dev;
    node->inode = attributes.st_ino;
    node->type = type;
    Node &reference = *node;
    _nodes.emplace(reference.number, std::move(node));
    _byIdentity.insert_or_assign(identity, &reference);
    return reference;
}

Node &NodeTable::refer(Node &folder, std::string_view name, const struct stat &attributes)
{
    Node &node = nodeFor(attributes);
    ++node.lookups;
    addName(node, folder, name);
    return node;
}

void NodeTable::addName(Node &node, Node &folder, std::string_view name)
{
    auto [entry, isNew] = _byName.try_emplace(NodeName{&folder, std::string(name)}, &node);
    if (!isNew) {
        if (entry->second == &node)
            return;
        // Somebody put another item under this name, or a folder that the kernel knew elsewhere.
        dropName(entry);
        entry = _byName.try_emplace(NodeName{&folder, std::string(name)}, &node).first;
    }
    ++folder.children;
    // The newest name first: an older one may have been moved away from outside. A folder has one.
    node.names.insert(node.names.begin(), &entry->first);
    while (S_ISDIR(node.type) && node.names.size() > 1)
        dropIfUnused(detachName(node, *node.names.back()));
}

// Takes one name off a node and gives the folder that it stood in.
Node &NodeTable::detachName(Node &node, const NodeName &name)
{
    Node &folder = *name.folder;
    std::erase(node.names, &name);
    _byName.erase(_byName.find(name));
    --folder.children;
    return folder;
}

void NodeTable::dropName(Names::iterator name)
{
    Node &node = *name->second;
    Node &folder = detachName(node, name->first);
    ++folder.lookups; // stays until the node is done with
    leaveIndexIfGone(node);
    dropIfUnused(node);
    --folder.lookups;
    dropIfUnused(folder);
}

// The number of an item on disk may be given to a new one as soon as nobody holds it open.
void NodeTable::leaveIndexIfGone(Node &node)
{
    if (!node.names.empty() || !node.openFiles.empty())
        return;
    const auto found = _byIdentity.find({node.device, node.inode});
    if (found != _byIdentity.end() && found->second == &node)
        _byIdentity.erase(found);
}

void NodeTable::dropIfUnused(Node &node)
{
    if (node.lookups != 0 || node.children != 0 || !node.openFiles.empty())
        return;
    std::vector<Node *> folders;
    while (!node.names.empty())
        folders.push_back(&detachName(node, *node.names.back()));
    leaveIndexIfGone(node);
    _nodes.erase(node.number);
    // Two names may stand in one folder: it goes with the last of them.
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    for (Node *folder : folders)
        dropIfUnused(*folder);
}

void NodeTable::forget(std::uint64_t number, std::uint64_t references)
{
    Node *node = find(number);
    if (node == nullptr || node == _root)
        return;
    node->lookups -= std::min(node->lookups, references);
    dropIfUnused(*node);
}

void NodeTable::nameRemoved(Node &folder, std::string_view name)
{
    const auto found = _byName.find(NodeName{&folder, std::string(name)});
    if (found != _byName.end())
        dropName(found);
}

void NodeTable::nameMoved(Node &folder, std::string_view name, Node &newFolder,
                          std::string_view newName)
{
    const auto found = _byName.find(NodeName{&folder, std::string(name)});
    if (found == _byName.end()) {
        nameRemoved(newFolder, newName);
        return;
    }
    Node &node = *found->second;
    Node &oldFolder = detachName(node, found->first);
    ++oldFolder.lookups; // stays until the new name stands
    addName(node, newFolder, newName);
    --oldFolder.lookups;
    dropIfUnused(oldFolder);
}

void NodeTable::namesExchanged(Node &folder, std::string_view name, Node &otherFolder,
                               std::string_view otherName)
{
    const auto one = _byName.find(NodeName{&folder, std::string(name)});
    const auto other = _byName.find(NodeName{&otherFolder, std::string(otherName)});
    if (one == _byName.end() || other == _byName.end()) {
        // Half-known: what isn't known is looked up again.
        nameRemoved(folder, name);
        nameRemoved(otherFolder, otherName);
        return;
    }
    Node &first = *one->second;
    Node &second = *other->second;
    std::swap(one->second, other->second);
    std::replace(first.names.begin(), first.names.end(), &one->first, &other->first);
    std::replace(second.names.begin(), second.names.end(), &other->first, &one->first);
}

void NodeTable::opened(Node &node, OpenFile &file)
{
    node.openFiles.push_back(&file);
}

void NodeTable::closed(Node &node, OpenFile &file)
{
    std::erase(node.openFiles, &file);
    leaveIndexIfGone(node);
    dropIfUnused(node);
}

} // namespace nimbrel
