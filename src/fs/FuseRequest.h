// One request of the kernel's: the only minus signs and the only catch-all stand here.
#pragma once

#include "fs/FuseDisk.h"

#define FUSE_USE_VERSION FUSE_MAKE_VERSION(3, 14)
#include <fuse_lowlevel.h>

#include <new>
#include <string>

namespace nimbrel {

// No longer than a second: a cloud client changes the folder under the disk at any time.
inline constexpr double attributesStay = 1.0; // seconds

[[nodiscard]] inline FuseDisk &diskOf(fuse_req_t request)
{
    return *static_cast<FuseDisk *>(fuse_req_userdata(request));
}

[[nodiscard]] inline OpenFile &fileOf(const fuse_file_info &info)
{
    return Handles<OpenFile>::at(info.fh);
}

[[nodiscard]] inline OpenFolder &folderOf(const fuse_file_info &info)
{
    return Handles<OpenFolder>::at(info.fh);
}

// Makes new items as the caller would: his umask, unless the folder has default ACLs, and his
// ownership. The thread has a umask of its own.
[[nodiscard]] Creator creatorOf(fuse_req_t request);

// Runs `work`, which replies itself when it gives no error; every error and exception becomes the
// reply.
template <class Work>
void answer(fuse_req_t request, Work work) noexcept
{
    int code = EIO;
    try {
        const NBDone done = work();
        if (done)
            return;
        code = done.code();
    } catch (const std::bad_alloc &) {
        code = ENOMEM;
    } catch (...) {
        code = EIO;
    }
    fuse_reply_err(request, code == 0 ? EIO : code);
}

// For requests whose whole answer is success or an errno.
template <class Work>
void answerDone(fuse_req_t request, Work work) noexcept
{
    answer(request, [&]() -> NBDone {
        const NBDone done = work();
        if (done)
            fuse_reply_err(request, 0);
        return done;
    });
}

// The node behind a number; ESTALE for one that isn't known.
[[nodiscard]] NBErrnoOr<Node *> nodeOf(FuseDisk &disk, fuse_ino_t number);

// What the kernel is told of `name` in `folder`, which has these attributes: refers to its node.
[[nodiscard]] fuse_entry_param entryFor(FuseDisk &disk, Node &folder, std::string_view name,
                                        const struct stat &attributes);

// Looks at `name` in `folder` and replies with its entry. Where the kernel doesn't take the reply
// the reference is given back.
NBDone replyEntry(fuse_req_t request, Node &folder, const char *name);

} // namespace nimbrel
