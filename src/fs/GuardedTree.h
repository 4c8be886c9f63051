// Names, folders, links and attributes as programs expect them, over a delegate that is exact.
#pragma once

#include "fs/NBNimbrelFS.h"
#include "fs/Ownership.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <vector>

namespace nimbrel {

// All paths are plain, absolute and rooted at the mount point. Every error is a positive errno,
// never 0. One call at a time.
class GuardedTree final
{
public:
    explicit GuardedTree(NBNimbrelFS &delegate); // outlives this
    // The kernel lets only those in who may (default_permissions); else the store decides for this
    // process, which is its only user.
    void setIsCheckedByKernel(bool isChecked) noexcept { _isCheckedByKernel = isChecked; }

    // The longest plain name in bytes: 189 with encrypted names, the store's own (255) else.
    [[nodiscard]] std::size_t longestName() const noexcept;
    // ENAMETOOLONG, EILSEQ (not UTF-8, with encrypted names: it could be stored and never listed).
    NBDone checkName(std::string_view name) const;

    // lstat(2), but a link's size is that of its plain target.
    NBErrnoOr<struct stat> attributes(const std::string &path);
    NBErrnoOr<struct stat> attributes(const NBFileHandle &file);
    NBErrnoOr<struct statvfs> fileSystem(const std::string &path); // f_namemax is longestName()

    NBErrnoOr<NBFileHandle> open(const std::string &path, int flags);
    // `mode` is applied under the process's umask, so that default ACLs of the folder count; the
    // new item belongs to `creator`, its group to the folder's where that is setgid.
    NBErrnoOr<NBFileHandle> create(const std::string &path, int flags, mode_t mode,
                                   Creator creator);
    NBDone makeFolder(const std::string &path, mode_t mode, Creator creator);
    NBDone makeNode(const std::string &path, mode_t mode, dev_t device, Creator creator);
    NBDone makeLink(const std::string &path, const std::string &target, Creator creator);
    NBDone hardLink(const std::string &path, const std::string &newPath);
    NBErrnoOr<std::string> linkTarget(const std::string &path);
    // `flags`: RENAME_NOREPLACE, RENAME_EXCHANGE of renameat2(2), or 0; others are EINVAL.
    NBDone move(const std::string &path, const std::string &newPath, unsigned flags);
    NBDone removeFile(const std::string &path);   // never a folder: EISDIR
    NBDone removeFolder(const std::string &path); // ENOTEMPTY where a cloud's own files are in it

    // Of an item by its path, never through a link; a size is set by GuardedContent.
    NBDone setAttributes(const std::string &path, const NBItemAttributes &attributes);
    // Of an open file, also of one that has no name any more.
    NBDone setAttributes(NBFileHandle &file, const NBItemAttributes &attributes);
    NBDone syncFolder(const std::string &path);
    // access(2) for this process: `mask` of R_OK, W_OK, X_OK, or F_OK.
    NBDone checkAccess(const std::string &path, int mask);
    // Takes set-uid and set-gid bits off a file that is about to be changed by somebody who may not
    // keep them. A store does so itself, but not for root's writes.
    NBDone dropPrivileges(const NBFileHandle &file);

    // Until an ACL was seen on a private disk, an item without one says EOPNOTSUPP instead of
    // ENODATA: programs ask for each file else. Folders that are shared by ACLs have one
    // themselves.
    void lookForAccessLists();
    NBErrnoOr<std::vector<std::string>> extendedAttributes(const std::string &path);
    NBErrnoOr<Bytes> extendedAttribute(const std::string &path, const std::string &name);
    NBDone setExtendedAttribute(const std::string &path, const std::string &name, ByteView value,
                                int options);
    NBDone removeExtendedAttribute(const std::string &path, const std::string &name);

private:
    // Names of attributes, looked through for access lists.
    std::vector<std::string> noted(std::vector<std::string> names);
    // EPERM for the folder's own configuration, ENAMETOOLONG or EILSEQ for names that can't be.
    NBDone checkChange(const std::string &path);
    NBDone checkNew(const std::string &path);
    NBErrnoOr<struct stat> rootAttributes();
    NBErrnoOr<NBFileHandle> openOnce(const std::string &path, int flags);
    // Gives what was just made to its creator; where that fails `undo` takes it away again.
    NBDone handOver(const std::string &path, Creator creator,
                    NBDone (GuardedTree::*undo)(const std::string &));

    NBNimbrelFS &_delegate;
    bool _isCheckedByKernel = false;
    bool _hasAccessLists = false; // one was seen
};

} // namespace nimbrel
