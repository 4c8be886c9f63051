#include "cli/HelpTexts.h"

namespace nimbrel::help {

const char *const program = R"(Examples:
  nimbrelctl create ~/Cloud/Safe            make an encrypted folder
  mkdir ~/Safe
  nimbrelctl mount ~/Cloud/Safe ~/Safe      show it decrypted; work in ~/Safe
  nimbrelctl unmount ~/Safe                 and hide it again

Exit status:
   0  done
   1  failed
   2  the command line makes no sense
  10  wrong password
  11  not an encrypted folder, or one that is refused
  12  trouble with the mount point; a disk that is in use

Run "nimbrelctl COMMAND --help" for one command, "man nimbrelctl" for all.)";

const char *const create =
    R"(FOLDER is made; an empty folder will do, too. Without a password option you are
asked at the terminal, twice. Choose a password that you can't lose: nobody can
read the files without it.

Examples:
  nimbrelctl create ~/Cloud/Safe
  nimbrelctl create --password-command 'secret-tool lookup name safe' ~/Cloud/Safe
  nimbrelctl create --plain-names ~/Cloud/Safe    file names stay readable)";

const char *const mount =
    R"(MOUNTPOINT is an empty folder outside of FOLDER. The command returns when the
disk is usable; it is served in the background until it is unmounted.

Examples:
  nimbrelctl mount ~/Cloud/Safe ~/Safe
  nimbrelctl mount --read-only ~/Cloud/Safe ~/Safe
  nimbrelctl mount --foreground --password-file /etc/safe.pw /srv/safe.enc /srv/safe)";

const char *const unmount =
    R"(A disk that programs still use stays, and they are named. A disk whose process
has died ("Transport endpoint is not connected") is cleared away.

Example:
  nimbrelctl unmount ~/Safe)";

const char *const passwd =
    R"(The files stay as they are; only the configuration is written anew. The old one
is kept as a backup, which still opens with the old password.

Examples:
  nimbrelctl passwd ~/Cloud/Safe
  nimbrelctl passwd --password-file old.txt --new-password-file new.txt ~/Cloud/Safe)";

const char *const info = R"(No password is needed.

Examples:
  nimbrelctl info ~/Cloud/Safe
  nimbrelctl info --json ~/Cloud/Safe)";

const char *const encode =
    R"(Each PATH is one on the mounted disk, relative to its root; it needn't exist.

Examples:
  nimbrelctl encode ~/Cloud/Safe Reports/2026/plan.odt
  nimbrelctl encode ~/Cloud/Safe -- -a-name-with-a-dash)";

const char *const decode =
    R"(Each PATH is one in the encrypted folder, relative to it. Encrypted names may
begin with a dash: put -- before the paths.

Example:
  nimbrelctl decode ~/Cloud/Safe -- WaHCmbVE13Po/-qW6T6YiudpqSmB42)";

} // namespace nimbrel::help
