// The nodes of libplist's trees.
#pragma once

#include "crypto/CHandle.h"

#include <plist/plist.h>

#include <QtGlobal>

namespace nimbrel {

// A node that no other holds; it frees all below it. A plist_t belongs to the node around it.
using PropertyListNode = CHandle<void, plist_free>;

namespace keyedArchiveForm {
inline constexpr const char *archiver = "NSKeyedArchiver";
inline constexpr quint64 version = 100000;
inline constexpr quint64 null = 0; // the place of "$null", which stands for a missing object
} // namespace keyedArchiveForm

} // namespace nimbrel
