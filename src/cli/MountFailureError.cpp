#include "cli/MountFailureError.h"

namespace nimbrel {

namespace {

ExitStatus statusOf(MountFailure::Cause cause)
{
    switch (cause) {
    case MountFailure::Cause::Folder:
        return ExitStatus::FolderRefused;
    case MountFailure::Cause::MountPoint:
        return ExitStatus::MountPointTrouble;
    case MountFailure::Cause::Fuse:
        break;
    }
    return ExitStatus::Failed;
}

} // namespace

CommandError commandError(const MountFailure &failure)
{
    return {statusOf(failure.cause), failure.message};
}

} // namespace nimbrel
