#include "mount/OrdinaryUser.h"

#include "mount/Calls.h"
#include "mount/Child.h"
#include "support/TempFolder.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nimbrel::test {

namespace {

void become(const OrdinaryUser &who)
{
    must(::setgroups(who.groups.size(), who.groups.data()), "setgroups");
    must(::setgid(who.group), "setgid");
    must(::setuid(who.user), "setuid");
}

} // namespace

OrdinaryUser ann()
{
    return {.user = annsNumber, .group = annsNumber};
}

OrdinaryUser ben()
{
    return {.user = bensNumber, .group = bensNumber};
}

OrdinaryUser inTeam(OrdinaryUser user)
{
    user.groups.push_back(teamNumber);
    return user;
}

std::optional<uid_t> nobody()
{
    const passwd *entry = ::getpwnam("nobody");
    return entry == nullptr ? std::nullopt : std::optional<uid_t>(entry->pw_uid);
}

int as(const OrdinaryUser &who, const std::function<int()> &work)
{
    Child child([&] {
        become(who);
        ::umask(022);
        return work();
    });
    return child.wait();
}

std::string whyNoUsers()
{
    if (::geteuid() != 0)
        return "only root can act as other users";
    const TempFolder temp;
    const int reached =
        as(ann(), [&] { return errnoOf([&] { return ::access(temp.path().c_str(), X_OK); }); });
    return reached == 0 ? std::string() : "other users can't enter " + temp.path();
}

} // namespace nimbrel::test
