#pragma once

#include "platform/GlibCall.h"
#include "platform/SessionBusAddress.h"

namespace nimbrel {

// A connection of one's own. GLib ends a program whose shared connection breaks; this one may
// break, for mounted disks live on without a bus. Null when there is none, with `error` where a bus
// is named and can't be reached.
[[nodiscard]] GlibObject<GDBusConnection> connectToSessionBus(GlibCall &call, GlibError &error);

} // namespace nimbrel
