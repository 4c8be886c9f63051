#pragma once

#include "crypto/SecureBuffer.h"

#include <string>

namespace nimbrel {

// Where a password comes from: a file, a command, or, with neither, the person at the terminal.
// Never an argument or the environment, which other processes can see.
struct PasswordSource
{
    std::string file;    // "-" is standard input
    std::string command; // for sh -c
    [[nodiscard]] bool asks() const noexcept { return file.empty() && command.empty(); }
};

// The password of a folder that exists. Empty is an answer like any other.
[[nodiscard]] SecureBuffer currentPassword(const PasswordSource &source, const std::string &folder);

// A password for the folder from now on: asked for twice at the terminal, and never empty.
[[nodiscard]] SecureBuffer chosenPassword(const PasswordSource &source, const std::string &folder);

} // namespace nimbrel
