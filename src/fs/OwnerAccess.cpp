#include "fs/OwnerAccess.h"

#include "fs/OnDiskPath.h"
#include "fs/Ownership.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

NBDone withOwnerAccess(const std::string &onDiskPath, mode_t needed,
                       const std::function<NBDone()> &work)
{
    constexpr mode_t access = S_IRUSR | S_IWUSR;
    const NBErrno refused{EACCES};
    const NBErrnoOr<UniqueFd> item = openOnDisk(onDiskPath, O_PATH | O_NOFOLLOW);
    struct stat attributes = {};
    if (!item || ::fstat(item->get(), &attributes) != 0)
        return refused;
    const mode_t mode = attributes.st_mode & 07777U;
    // A change of mode may cost the set-gid bit for good: who isn't in the group can't set it.
    if (!S_ISREG(attributes.st_mode) || attributes.st_uid != ::geteuid() ||
        (mode & needed) != needed || (mode & access) == access || (mode & S_ISGID) != 0)
        return refused;
    if (!changeMode(item->get(), mode | access))
        return refused;
    const NBDone done = work();
    const NBDone restored = changeMode(item->get(), mode);
    return restored ? done : restored;
}

} // namespace nimbrel
