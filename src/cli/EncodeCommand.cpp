#include "cli/EncodeCommand.h"

#include "crypto/Utf8.h"

#include <climits>

namespace nimbrel {

namespace {

TranslatedName storedName(const NBNimbrelFS &folder, const std::string &name)
{
    std::optional<std::string> stored = name;
    if (folder.settings().areFilenamesEncrypted) {
        if (!isUtf8(name))
            return Untranslatable{"is not UTF-8, which the folder's names must be"};
        stored = folder.cryptor().encodeString(name);
    }
    if (!stored)
        return Untranslatable{"can't be encrypted"};
    if (stored->size() > NAME_MAX)
        return Untranslatable{"is too long a name; shorten it"};
    return std::move(*stored);
}

} // namespace

ExitStatus runEncode(const TranslationOptions &options)
{
    return translatePaths(options, storedName);
}

} // namespace nimbrel
