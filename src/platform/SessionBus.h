#pragma once

#include "platform/GlibCall.h"

#include <string>

namespace nimbrel {

// Where the session bus is, as the environment or its usual place says; empty when there is none.
// Libraries that find none start one of their own, a program that nobody sees and nobody ends: ask
// here first.
[[nodiscard]] std::string sessionBusAddress();

// A connection of one's own. GLib ends a program whose shared connection breaks; this one may
// break, for mounted disks live on without a bus. Null when there is none, with `error` where a bus
// is named and can't be reached.
[[nodiscard]] GlibObject<GDBusConnection> connectToSessionBus(GlibCall &call, GlibError &error);

} // namespace nimbrel
