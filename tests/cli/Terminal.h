#pragma once

#include "support/Process.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

// A program at a terminal of its own (a pseudo terminal), with a person who types and reads.
class Terminal final
{
public:
    Terminal(const std::vector<std::string> &command, const std::vector<std::string> &environment);
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    // True once the screen shows `text` behind what was waited for before.
    [[nodiscard]] bool shows(std::string_view text);
    void type(std::string_view text) const;
    // Whether typed characters appear at the moment.
    [[nodiscard]] bool echoes() const;
    // The exit status, 128 + signal, or nothing when the program doesn't end.
    [[nodiscard]] std::optional<int> wait();
    // All that has been shown.
    [[nodiscard]] const std::string &screen() const noexcept { return _screen; }
    [[nodiscard]] pid_t id() const noexcept { return _child; }

private:
    void read();

    pid_t _child = -1;
    int _master = -1;
    int _kept = -1; // the other side: without it the settings go with the program
    std::string _screen;
    std::size_t _seen = 0;
    std::optional<int> _status;
};

} // namespace nimbrel::test
