#pragma once

#include "fs/MountTable.h"

#include <cstddef>
#include <stop_token>
#include <string>
#include <unordered_set>
#include <vector>

namespace nimbrel {

// Looks for encrypted folders in one folder, which may hold hundreds of thousands of files, so it
// asks the kernel for as little as can be: one listing a folder, with the kinds in it.
//
// In the order of the listings, a folder before what is in it. Names that begin with a dot are
// hidden. An encrypted folder is a package: what is in it has ciphered names and isn't looked at.
// Links aren't followed, so a tree has an end; folders that can't be read are passed over; so are
// file systems of other programs (FUSE) below the folder, which are no part of it, may show its own
// decrypted content, and may not answer.
class FolderSearch final
{
public:
    // `folder` without a final slash ("" is the root); it may be a link itself.
    FolderSearch(std::string folder, std::stop_token stop,
                 const std::vector<Mount> &mounts = mountTable());

    // The paths of what was found; when stopped, of what was found until then.
    [[nodiscard]] std::vector<std::string> run();

    // How many entries the listings have had so far.
    [[nodiscard]] std::size_t visited() const noexcept { return _visited; }

private:
    struct Entry
    {
        std::string path;
        bool isTaken = false;
    };

    void passOverForeignDisks(const std::vector<Mount> &mounts);
    // The entries of a folder that matter, in the order of its listing.
    [[nodiscard]] std::vector<Entry> list(const std::string &folder, int flags);

    std::string _folder;
    std::stop_token _stop;
    std::unordered_set<std::string> _foreign;
    std::size_t _visited = 0;
};

} // namespace nimbrel
