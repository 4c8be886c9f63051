#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

namespace nimbrel::test {

// Takes root's right to pass over permissions from this thread as long as it lives, so that tests
// of permissions say the same to everybody.
class OrdinaryRights final
{
public:
    OrdinaryRights()
    {
        ::syscall(SYS_capget, &_header, _before.data());
        Sets reduced = _before;
        reduced[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
        ::syscall(SYS_capset, &_header, reduced.data());
    }
    ~OrdinaryRights() { ::syscall(SYS_capset, &_header, _before.data()); }
    OrdinaryRights(const OrdinaryRights &) = delete;
    OrdinaryRights &operator=(const OrdinaryRights &) = delete;

private:
    using Sets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

    __user_cap_header_struct _header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    Sets _before{};
};

} // namespace nimbrel::test
