// What the operations of one mounted disk share.
#pragma once

#include "fs/GuardedContent.h"
#include "fs/GuardedTree.h"
#include "fs/KeptListings.h"
#include "fs/NodeReclaimer.h"
#include "fs/NodeTable.h"
#include "fs/OpenFolder.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

namespace nimbrel {

// One open file of the kernel's.
struct OpenFile
{
    NBFileHandle handle;
    Node *node = nullptr;
    bool isWritable = false;
};

// The kernel's handles, owned here: what it never gives back goes with the disk.
template <class T>
class Handles final
{
public:
    // The number that the kernel gets for it.
    [[nodiscard]] std::uint64_t add(std::unique_ptr<T> object)
    {
        T *const pointer = object.get();
        _objects.emplace(pointer, std::move(object));
        return reinterpret_cast<std::uint64_t>(pointer);
    }
    [[nodiscard]] static T &at(std::uint64_t number) noexcept
    {
        return *reinterpret_cast<T *>(number); // NOLINT(performance-no-int-to-ptr): what add gave
    }
    void remove(std::uint64_t number) { _objects.erase(&at(number)); }

private:
    std::unordered_map<T *, std::unique_ptr<T>> _objects;
};

// Whether these are attributes of the item that `node` stands for.
[[nodiscard]] inline bool isSameItem(const Node &node, const struct stat &attributes) noexcept
{
    return attributes.st_ino == node.inode && attributes.st_dev == node.device;
}

// The disk's threads come here one at a time; what one has to reply needs no other thing of this,
// so that it may give up its turn first.
struct FuseDisk
{
    // `lettingOthersIn`: the kernel checks permissions, for users that aren't this process's.
    FuseDisk(std::shared_ptr<NBNimbrelFS> filesystem, bool lettingOthersIn);

    const bool isShared;
    std::shared_ptr<NBNimbrelFS> delegate;
    GuardedTree tree;
    GuardedContent content;
    NodeTable nodes;
    Handles<OpenFile> files;
    Handles<OpenFolder> folders;
    KeptListings listings;
    NodeReclaimer *reclaimer = nullptr;           // of what the kernel knows and nobody uses
    std::string path;                             // of the item at hand
    ByteSpan reply;                               // room for the bytes of a reply
    std::unique_lock<std::mutex> *turn = nullptr; // of the thread that serves
    bool dropsPrivileges = false;                 // the write at hand takes set-uid bits away
    std::optional<mode_t> umask;                  // the threads', once a request has set it
    std::uint64_t greeting = 0;     // the kernel's greeting while it isn't answered; 0: none
    std::function<void()> didStart; // called when the kernel has said hello
    // Makes the kernel ask for a node's attributes before it uses them again.
    std::function<void(std::uint64_t number)> forgetAttributes;

    // The item that the kernel means by a node number. ESTALE where another item, or none, stands
    // under the name that it knows: the kernel then looks again at once.
    NBErrnoOr<struct stat> attributesOf(Node &node);
    // Keeps what is remembered of items small, after one more.
    void boundMemory();
    // The path of a node that is still what the kernel takes it for.
    NBErrnoOr<std::string> checkedPathOf(Node &node);

private:
    unsigned _itemsSinceLook = 0;
};

} // namespace nimbrel
