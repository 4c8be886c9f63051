// A value, or the errno of the call that failed.
#pragma once

#include <cassert>
#include <cerrno>
#include <optional>
#include <utility>
#include <variant>

namespace nimbrel {

// A positive errno, taken right after the failed call.
struct NBErrno
{
    int code;

    [[nodiscard]] static NBErrno last() noexcept { return {errno}; }
    bool operator==(const NBErrno &) const = default;
};

template <class T>
class [[nodiscard]] NBErrnoOr final
{
public:
    NBErrnoOr(T value) : _state(std::in_place_index<0>, std::move(value)) {}
    NBErrnoOr(NBErrno error) : _state(std::in_place_index<1>, error) {}

    [[nodiscard]] explicit operator bool() const noexcept { return _state.index() == 0; }
    [[nodiscard]] T &operator*() & { return std::get<0>(_state); }
    [[nodiscard]] const T &operator*() const & { return std::get<0>(_state); }
    [[nodiscard]] T &&operator*() && { return std::get<0>(std::move(_state)); }
    [[nodiscard]] T *operator->() { return &std::get<0>(_state); }
    [[nodiscard]] const T *operator->() const { return &std::get<0>(_state); }
    [[nodiscard]] NBErrno error() const { return std::get<1>(_state); }
    // 0 when there is a value.
    [[nodiscard]] int code() const noexcept { return *this ? 0 : std::get_if<1>(&_state)->code; }

private:
    std::variant<T, NBErrno> _state;
};

template <>
class [[nodiscard]] NBErrnoOr<void> final
{
public:
    NBErrnoOr() = default;
    NBErrnoOr(NBErrno error) : _error(error) {}

    [[nodiscard]] explicit operator bool() const noexcept { return !_error; }
    [[nodiscard]] NBErrno error() const { return *_error; }
    [[nodiscard]] int code() const noexcept { return _error ? _error->code : 0; }

private:
    std::optional<NBErrno> _error;
};

using NBDone = NBErrnoOr<void>;

} // namespace nimbrel
