#pragma once

#include <string_view>

namespace nimbrel {

// Where the process that serves a disk says what its user must know: standard error, or the system
// log once it has no terminal.
class ServiceLog final
{
public:
    void say(std::string_view line) const;
    void moveToSystemLog();

private:
    bool _inSystemLog = false;
};

} // namespace nimbrel
