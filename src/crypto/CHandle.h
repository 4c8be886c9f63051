// Owners for the handles of C libraries.
#pragma once

#include <memory>

namespace nimbrel {

template <auto Free>
struct CFree
{
    template <class T>
    void operator()(T *pointer) const noexcept
    {
        Free(pointer);
    }
};

// A C object that is freed with `Free` when its owner goes.
template <class T, auto Free>
using CHandle = std::unique_ptr<T, CFree<Free>>;

} // namespace nimbrel
