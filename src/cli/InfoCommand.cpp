#include "cli/InfoCommand.h"

#include "cli/EncryptedFolder.h"
#include "cli/JsonText.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "config/NBNimbrelFSSettings.h"

#include <fmt/format.h>

#include <variant>
#include <vector>

namespace nimbrel {

namespace {

struct Fact
{
    const char *key;   // in JSON
    const char *label; // for people
    std::variant<std::string, std::int64_t> value;
    const char *unit = "";
};

std::vector<Fact> factsOf(const EncryptedFolder &folder)
{
    const NBNimbrelFSSettings defaults; // what an element that isn't there means
    const NBPreferencesDictionary &read = folder.preferences();
    const auto integer = [&](std::string_view key, std::int64_t absent) {
        return read.integer(key).value_or(absent);
    };
    const auto version = [&](std::string_view major, std::string_view minor,
                             std::int64_t absentMajor, std::int64_t absentMinor) {
        return fmt::format("{}.{}", integer(major, absentMajor), integer(minor, absentMinor));
    };
    namespace key = preferenceKey;
    const bool areEncrypted = read.boolean(key::areFilenamesEncrypted).value_or(false);
    return {
        {"folder", "Folder", folder.path()},
        {"configuration", "Configuration", folder.configurationPath()},
        {"cipher", "Cipher", read.text(key::cipherAlgorithm).value_or(defaults.cipherAlgorithm)},
        {"cipherVersion", "Cipher version",
         version(key::cipherAlgorithmMajor, key::cipherAlgorithmMinor,
                 defaults.cipherAlgorithmMajor, defaults.cipherAlgorithmMinor)},
        {"keySize", "Key size", integer(key::keySize, defaults.keySize), " bits"},
        {"blockSize", "Block size", integer(key::blockSize, defaults.blockSize), " bytes"},
        {"names", "Names", areEncrypted ? "encrypted" : "plain"},
        {"nameAlgorithm", "Name algorithm",
         read.text(key::nameAlgorithm).value_or(defaults.nameAlgorithm)},
        {"nameVersion", "Name version",
         version(key::nameAlgorithmMajor, key::nameAlgorithmMinor, defaults.nameAlgorithmMajor,
                 defaults.nameAlgorithmMinor)},
        {"iterations", "Key iterations", integer(key::kdfIterations, defaults.kdfIterations)},
        {"saltLength", "Salt", integer(key::saltLength, defaults.saltLength), " bytes"},
    };
}

void sayForPeople(const std::vector<Fact> &facts)
{
    for (const Fact &fact : facts) {
        const std::string value = std::visit(
            [](const auto &held) { return printable(fmt::format("{}", held)); }, fact.value);
        say(fmt::format("{:<16}{}{}", fmt::format("{}:", fact.label), value, fact.unit));
    }
}

void sayAsJson(const std::vector<Fact> &facts)
{
    std::string members;
    for (const Fact &fact : facts) {
        const auto *text = std::get_if<std::string>(&fact.value);
        const std::string value =
            text ? jsonString(*text) : fmt::format("{}", std::get<std::int64_t>(fact.value));
        members +=
            fmt::format("{}\n  {}: {}", members.empty() ? "" : ",", jsonString(fact.key), value);
    }
    say("{" + members + "\n}");
}

} // namespace

ExitStatus runInfo(const InfoOptions &options)
{
    const std::vector<Fact> facts = factsOf(EncryptedFolder(options.folder));
    if (options.json)
        sayAsJson(facts);
    else
        sayForPeople(facts);
    return ExitStatus::Done;
}

} // namespace nimbrel
