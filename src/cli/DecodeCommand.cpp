#include "cli/DecodeCommand.h"

#include "crypto/StoredName.h"

namespace nimbrel {

namespace {

// A foreign name decodes by chance once in 65536 times, and then to nonsense that no disk shows.
bool canBeAName(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

TranslatedName plainName(const NBNimbrelFS &folder, const std::string &stored)
{
    if (!folder.settings().areFilenamesEncrypted)
        return stored;
    if (isCanonicalStoredName(stored)) {
        std::optional<std::string> plain = folder.cryptor().decodeString(stored);
        if (plain && canBeAName(*plain))
            return std::move(*plain);
    }
    return Untranslatable{"is not an encrypted name of this folder"};
}

} // namespace

ExitStatus runDecode(const TranslationOptions &options)
{
    return translatePaths(options, plainName);
}

} // namespace nimbrel
