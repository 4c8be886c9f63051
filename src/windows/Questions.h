// What several actions of the manager window say and ask.
#pragma once

#include <QString>

namespace nimbrel {

class NBNimbrelVolume;

namespace questions {

// Asks with "No" as the default button; true for "Yes".
[[nodiscard]] bool isYes(const QString &text, const QString &title);

// The folder has no configuration file.
void tellInvalidFolder();
// The volume is being mounted or unmounted.
void tellBusy(const NBNimbrelVolume &volume);

} // namespace questions

} // namespace nimbrel
