#include "cli/ServiceLog.h"

#include "cli/Output.h"
#include "cli/PrintableText.h"

#include <syslog.h>

namespace nimbrel {

void ServiceLog::say(std::string_view line) const
{
    if (_inSystemLog)
        ::syslog(LOG_NOTICE, "%s", printable(line).c_str());
    else
        complain(line);
}

void ServiceLog::moveToSystemLog()
{
    ::openlog("nimbrelctl", LOG_PID, LOG_USER);
    _inSystemLog = true;
}

} // namespace nimbrel
