#pragma once

#include <string>
#include <vector>

namespace nimbrel {

// Whether these options let other users in: allow_other or allow_root.
[[nodiscard]] bool isShared(const std::vector<std::string> &options);

// Translates a volume's options into those of libfuse's mount, in order and once each: drops what
// the original platform alone has (volname=, modules=, from_code=, to_code=, iconpath=,
// native_xattr, local, auto_cache, fssubtype=) and what names the disk in the mount table, adds
// fsname= (the encrypted folder; a comma or backslash is escaped), subtype=nimbrel, nosuid, nodev,
// and default_permissions where the disk is shared. Others pass through, behind those that are
// added: the last one counts.
[[nodiscard]] std::vector<std::string> libfuseOptions(const std::vector<std::string> &options,
                                                      const std::string &encryptedFolder);

} // namespace nimbrel
