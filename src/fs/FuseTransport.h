// What passes between the kernel and libfuse, looked at on its way.
#pragma once

#include "crypto/Bytes.h"

struct fuse_session;

namespace nimbrel {

struct FuseDisk;

// Puts itself between the FUSE device and a mounted `session`, whose user data is its FuseDisk:
// agrees with the kernel on what this libfuse has no word for. False when libfuse refuses.
//
// The agreement (FUSE_HANDLE_KILLPRIV_V2 of linux/fuse.h): set-uid bits and file capabilities are
// taken away here, when a write says so. Else the kernel asks for `security.capability` before each
// single write.
[[nodiscard]] bool installTransport(fuse_session *session);

// Notes what libfuse won't pass on of a request that is about to be served.
void noteRequest(ByteView message, FuseDisk &disk);

} // namespace nimbrel
