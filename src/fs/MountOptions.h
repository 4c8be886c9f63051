#pragma once

#include <string>
#include <vector>

namespace nimbrel {

// Translates a volume's options into those of libfuse's mount, in order and once each: drops what
// the original platform alone has (volname=, modules=, from_code=, to_code=, iconpath=,
// native_xattr, local, auto_cache, fssubtype=) and what names the disk in the mount table, adds
// fsname= (the encrypted folder; a comma or backslash is escaped), subtype=nimbrel, nosuid, nodev,
// default_permissions. Others pass through, behind those that are added: the last one counts.
[[nodiscard]] std::vector<std::string> libfuseOptions(const std::vector<std::string> &options,
                                                      const std::string &encryptedFolder);

} // namespace nimbrel
