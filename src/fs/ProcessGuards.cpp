#include "fs/ProcessGuards.h"

#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace nimbrel {

int forbidDumps()
{
    const rlimit none{0, 0};
    if (::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) != 0 || ::setrlimit(RLIMIT_CORE, &none) != 0)
        return errno;
    return 0;
}

void prepareToServe()
{
    // A refusal leaves the old limit, which is no reason not to mount.
    rlimit files{};
    if (::getrlimit(RLIMIT_NOFILE, &files) == 0 && files.rlim_cur < files.rlim_max) {
        files.rlim_cur = files.rlim_max;
        (void)::setrlimit(RLIMIT_NOFILE, &files);
    }
    ::signal(SIGPIPE, SIG_IGN);
}

} // namespace nimbrel
