// Any bytes as a configuration file: an answer or an error, never a crash.
#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    nimbrel::NBPreferencesError error;
    const auto preferences = nimbrel::NBNimbrelFSPreferences().preferencesWithText(text, &error);
    // Either there is a dictionary or somebody says why not.
    if (preferences.has_value() == !error.message.empty())
        std::abort();
    if (preferences)
        static_cast<void>(nimbrel::judgeLimits(*preferences));
    return 0;
}
