#pragma once

#include <string>
#include <string_view>

namespace nimbrel {

inline constexpr std::string_view NBNMFSPreferencesErrorDomain = "NBNMFSPreferencesErrorDomain";
inline constexpr std::string_view xmlErrorDomain = "libxml2"; // code: the parser's own number
inline constexpr std::string_view posixErrorDomain = "POSIX"; // code: an errno
inline constexpr std::string_view boundErrorDomain = "NBNMFSBoundErrorDomain"; // a size bound, -1

// Why a configuration could not be read, in words for the user.
struct NBPreferencesError
{
    std::string domain;
    int code = 0;
    std::string message;
};

} // namespace nimbrel
