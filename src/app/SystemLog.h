#pragma once

#include <QString>

namespace nimbrel {

// NSLog
// One line for the system log, through Qt's message handler. Any thread.
void systemLog(const QString &line);

// "-[NBNimbrelVolume mount] [Line 12] TEXT": the form of the diagnostic lines. `method` is the
// operation's full name.
void systemLogAt(const char *method, int line, const QString &text);

// Sends Qt's messages to standard error and to the journal (syslog(3)); for a program's main.
void installSystemLog();

} // namespace nimbrel
