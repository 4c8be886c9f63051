#pragma once

#include "config/UniqueFd.h"

namespace nimbrel {

// What the kernel holds of one open file between open and release. The delegate closes the
// descriptor in releaseFileAtPath; one that goes without it closes it, too.
struct NBFileHandle
{
    UniqueFd descriptor;
    // The errno of the last pwrite that failed, which the delegate itself reports as complete
    // (kept, see QUIRKS); 0 for none. The binding reads and clears it.
    int lastWriteError = 0;
};

} // namespace nimbrel
