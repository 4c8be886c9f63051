// FUSE disks without a filesystem behind them.
#pragma once

#include "config/UniqueFd.h"

#include <string>

namespace nimbrel::test {

// Why this process can't mount one; empty where it can.
[[nodiscard]] std::string whyNoRawDisk();

#define NIMBREL_NEED_RAW_DISK()                                                                    \
    if (const std::string why = nimbrel::test::whyNoRawDisk(); !why.empty())                       \
    GTEST_SKIP() << why

// A FUSE disk whose server never answers: whoever asks it anything hangs. Mounted as root by the
// system call, else by fusermount3. Gone at its end, also when it is held. Throws
// std::runtime_error when it doesn't come up.
class RawDisk final
{
public:
    explicit RawDisk(const std::string &mountPoint);
    ~RawDisk();
    RawDisk(const RawDisk &) = delete;
    RawDisk &operator=(const RawDisk &) = delete;

    // Answers the kernel's greeting, then takes one question, which gets no answer: who put it can't
    // be killed any more.
    void leaveOneQuestionOpen();
    // Closes the connection, as the end of a server does: a dead mount stays behind.
    void die() { _connection.reset(); }
    // Something open on it, which asks the server nothing.
    [[nodiscard]] UniqueFd hold() const;

private:
    std::string _point;
    UniqueFd _connection;
};

} // namespace nimbrel::test
