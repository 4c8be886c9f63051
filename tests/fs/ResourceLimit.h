#pragma once

#include <csignal>
#include <sys/resource.h>

namespace nimbrel::test {

// Lowers one of the process's limits as long as it lives. Nothing but the call under test happens
// meanwhile: the limit is everybody's.
class ResourceLimit final
{
public:
    ResourceLimit(__rlimit_resource resource, rlim_t limit) : _resource(resource)
    {
        _signalBefore = ::signal(SIGXFSZ, SIG_IGN); // the call fails instead
        ::getrlimit(_resource, &_before);
        const rlimit lowered{.rlim_cur = limit, .rlim_max = _before.rlim_max};
        ::setrlimit(_resource, &lowered);
    }
    ~ResourceLimit()
    {
        ::setrlimit(_resource, &_before);
        ::signal(SIGXFSZ, _signalBefore);
    }
    ResourceLimit(const ResourceLimit &) = delete;
    ResourceLimit &operator=(const ResourceLimit &) = delete;

private:
    __rlimit_resource _resource;
    rlimit _before{};
    sighandler_t _signalBefore = SIG_DFL;
};

} // namespace nimbrel::test
