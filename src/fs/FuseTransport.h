// What passes between the kernel and libfuse, looked at on its way.
#pragma once

struct fuse_session;

namespace nimbrel {

// Puts itself between the FUSE device and a mounted `session`, whose user data is its FuseDisk:
// agrees with the kernel on what this libfuse has no word for, and notes what it doesn't pass on.
// False when libfuse refuses.
//
// The agreement (FUSE_HANDLE_KILLPRIV_V2 of linux/fuse.h): set-uid bits and file capabilities are
// taken away here, when a write says so. Else the kernel asks for `security.capability` before each
// single write.
[[nodiscard]] bool installTransport(fuse_session *session);

} // namespace nimbrel
