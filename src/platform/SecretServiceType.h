#pragma once

#include <glib-object.h>

namespace nimbrel {

// libsecret's SecretService that takes the connection it is given: g_async_initable_new_async with
// "g-connection", "g-name", "g-object-path", "g-interface-name". libsecret's own always takes
// GLib's shared connection, with which the program would end, and which stays broken once it broke.
[[nodiscard]] GType secretServiceType();

} // namespace nimbrel
