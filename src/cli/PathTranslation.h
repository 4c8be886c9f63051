// Names translated outside a mounted disk.
#pragma once

#include "cli/ExitStatus.h"
#include "cli/PasswordSource.h"
#include "fs/NBNimbrelFS.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace nimbrel {

struct TranslationOptions
{
    std::string folder;
    PasswordSource password;
    bool null = false;              // a zero byte behind each result in place of a newline
    std::vector<std::string> paths; // relative to the root of the disk or folder
};

// Why one name of a path can't be translated; fits behind the name in a sentence.
struct Untranslatable
{
    std::string why;
};
using TranslatedName = std::variant<std::string, Untranslatable>;
using NameTranslation =
    std::function<TranslatedName(const NBNimbrelFS &folder, const std::string &name)>;

// Opens the folder and says each path's translation on a line of its own. A path that has none is
// complained about, and the others are still said; the result is then Failed.
[[nodiscard]] ExitStatus translatePaths(const TranslationOptions &options,
                                        const NameTranslation &translate);

} // namespace nimbrel
