#include "cli/PathTranslation.h"

#include "cli/EncryptedFolder.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <unistd.h>

namespace nimbrel {

namespace {

// Nothing when a name can't be translated, which has been complained about.
std::optional<std::string> translatePath(const NBNimbrelFS &folder, const std::string &path,
                                         const NameTranslation &translate)
{
    std::string translated;
    for (const std::filesystem::path &part : std::filesystem::path(path).relative_path()) {
        const std::string &name = part.native();
        if (name.empty() || name == ".")
            continue;
        const TranslatedName made =
            name == ".." ? Untranslatable{"leads out of the folder"} : translate(folder, name);
        if (const auto *failure = std::get_if<Untranslatable>(&made)) {
            complain(fmt::format("{} in {} {}.", name, path, failure->why));
            return std::nullopt;
        }
        translated += (translated.empty() ? "" : "/") + std::get<std::string>(made);
    }
    return translated.empty() ? "." : translated;
}

void sayPath(const std::string &path, bool null)
{
    if (null)
        say(path, '\0');
    else
        say(::isatty(STDOUT_FILENO) == 1 ? printable(path) : path);
}

} // namespace

ExitStatus translatePaths(const TranslationOptions &options, const NameTranslation &translate)
{
    const EncryptedFolder folder(options.folder);
    setUpSecureHeap();
    const std::unique_ptr<NBNimbrelFS> opened = folder.open(options.password);
    ExitStatus status = ExitStatus::Done;
    for (const std::string &path : options.paths) {
        const std::optional<std::string> translated = translatePath(*opened, path, translate);
        if (translated)
            sayPath(*translated, options.null);
        else
            status = ExitStatus::Failed;
    }
    return status;
}

} // namespace nimbrel
