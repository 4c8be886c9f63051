#include "cli/MountCommand.h"

#include "cli/Daemon.h"
#include "cli/EncryptedFolder.h"
#include "cli/MountArguments.h"
#include "cli/MountFailureError.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "cli/ServiceLoop.h"
#include "cli/ShellWord.h"
#include "fs/MountKeeper.h"
#include "fs/MountPointCheck.h"
#include "fs/ProcessGuards.h"

#include <fmt/format.h>

#include <functional>
#include <optional>

namespace nimbrel {

namespace {

// Canonical; throws CommandError where there is no mounting.
std::string checkedMountPoint(const EncryptedFolder &folder, const std::string &mountPoint,
                              const MountArguments &arguments)
{
    if (const std::optional<MountFailure> failure = checkFuse(arguments.allowOther))
        throw commandError(*failure);
    CheckedMountPoint checked = checkMount(folder.path(), mountPoint, arguments.nonempty);
    if (const auto *failure = std::get_if<MountFailure>(&checked))
        throw commandError(*failure);
    return std::get<std::string>(std::move(checked));
}

void sayMounted(const EncryptedFolder &folder, const std::string &mountPoint)
{
    say(fmt::format("Mounted {} at {}. When done: nimbrelctl unmount {}", printable(folder.path()),
                    printable(mountPoint), shellWord(mountPoint)));
}

// The steps that differ between a daemon and a process in the foreground.
struct ServiceSteps
{
    std::function<void()> beforeMount;
    std::function<void(ServiceLog &)> afterMount;
};

// Asks for the password, mounts and serves until the disk has gone.
void serve(const EncryptedFolder &folder, const std::string &mountPoint,
           const MountArguments &arguments, const PasswordSource &password,
           const ServiceSteps &steps)
{
    MountKeeper keeper; // first: it is a copy of this process, and mustn't have secrets
    prepareToServe();
    setUpSecureHeap();
    std::shared_ptr<NBNimbrelFS> opened = folder.open(password);
    steps.beforeMount();
    ServiceLog log;
    ServiceLoop loop;
    UserFileSystem disk(std::move(opened), loop.notifications(), &keeper);
    disk.mountAtPath(mountPoint, arguments.options);
    loop.awaitMount();
    steps.afterMount(log);
    loop.run(disk, log);
}

} // namespace

ExitStatus runMount(const MountCommandOptions &options)
{
    const MountArguments arguments =
        mountArguments(options.options, options.readOnly, options.allowOther);
    const EncryptedFolder folder(options.folder);
    const std::string mountPoint = checkedMountPoint(folder, options.mountPoint, arguments);
    ServiceSteps steps{.beforeMount = [] {},
                       .afterMount =
                           [&](ServiceLog &) {
                               sayMounted(folder, mountPoint);
                               (void)flushOutput(); // main tells of a failure at the end
                           }};
    std::optional<Daemon> daemon;
    if (!options.foreground) {
        daemon.emplace();
        if (daemon->isStarter()) {
            const ExitStatus status = daemon->awaitReadiness();
            if (status == ExitStatus::Done)
                sayMounted(folder, mountPoint);
            return status;
        }
        steps = {.beforeMount = [&] { daemon->leaveSession(); },
                 .afterMount =
                     [&](ServiceLog &log) {
                         log.moveToSystemLog();
                         daemon->becomeReady();
                     }};
    }
    serve(folder, mountPoint, arguments, options.password, steps);
    return ExitStatus::Done;
}

} // namespace nimbrel
