#include "config/ServedElements.h"

#include "config/ValueText.h"
#include "crypto/Base64.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace nimbrel {

namespace {

using Refusal = std::optional<std::string>;
using Serve = Refusal (*)(NBPreferencesDictionary &parsedData, std::string_view text);

constexpr std::string_view aesCipher = "ssl/aes";
constexpr std::string_view plainNames = "nameio/null";
constexpr std::string_view streamNames = "nameio/stream";

// A value that isn't stored prints as the original platform prints it.
std::string printed(const std::optional<std::int64_t> &value)
{
    return value ? std::to_string(*value) : "(null)";
}

// Between the two names: what comes now is the cipher's.
bool isInCipher(const NBPreferencesDictionary &parsedData)
{
    return parsedData.has(preferenceKey::cipherAlgorithm) &&
           !parsedData.has(preferenceKey::nameAlgorithm);
}

Refusal serveName(NBPreferencesDictionary &parsedData, std::string_view text)
{
    if (parsedData.has(preferenceKey::cipherAlgorithm)) {
        parsedData.set(preferenceKey::nameAlgorithm, std::string(text));
        parsedData.set(preferenceKey::areFilenamesEncrypted, text.ends_with("stream"));
        return std::nullopt; // judged with its minor version
    }
    parsedData.set(preferenceKey::cipherAlgorithm, std::string(text));
    if (text != aesCipher)
        return fmt::format("Wrong cipher algorithm: {}.", text);
    return std::nullopt;
}

Refusal serveMajor(NBPreferencesDictionary &parsedData, std::string_view text)
{
    parsedData.set(isInCipher(parsedData) ? preferenceKey::cipherAlgorithmMajor
                                          : preferenceKey::nameAlgorithmMajor,
                   integerOfText(text));
    return std::nullopt;
}

Refusal serveCipherMinor(NBPreferencesDictionary &parsedData, std::string_view text)
{
    const auto major = parsedData.integer(preferenceKey::cipherAlgorithmMajor);
    if (major != 3 || integerOfText(text) != 0)
        return fmt::format("Wrong cipher algorithm version, Major: {}, Minor: {}.", printed(major),
                           text);
    parsedData.set(preferenceKey::cipherAlgorithmMinor, integerOfText(text));
    return std::nullopt;
}

Refusal serveNameMinor(NBPreferencesDictionary &parsedData, std::string_view text)
{
    const std::int64_t minor = integerOfText(text);
    parsedData.set(preferenceKey::nameAlgorithmMinor, minor);
    const auto algorithm = parsedData.text(preferenceKey::nameAlgorithm);
    const auto major = parsedData.integer(preferenceKey::nameAlgorithmMajor);
    if (algorithm == plainNames) {
        if (major != 1 || minor != 0)
            return fmt::format("Wrong name algorithm version, Major: {}, Minor: {}.",
                               printed(major), minor);
        return std::nullopt;
    }
    if (algorithm == streamNames) {
        if (major.value_or(0) <= 0)
            return fmt::format("Wrong name algorithm version, Major: {}.", printed(major));
        return std::nullopt;
    }
    return fmt::format("Wrong name algorithm: {}.", algorithm.value_or("(null)"));
}

Refusal serveMinor(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return isInCipher(parsedData) ? serveCipherMinor(parsedData, text)
                                  : serveNameMinor(parsedData, text);
}

Refusal serveKeySize(NBPreferencesDictionary &parsedData, std::string_view text)
{
    const std::int64_t keySize = integerOfText(text);
    parsedData.set(preferenceKey::keySize, keySize);
    if (keySize != 128 && keySize != 192 && keySize != 256)
        return fmt::format("Wrong key size: {}.", text);
    return std::nullopt;
}

Refusal serveBlockSize(NBPreferencesDictionary &parsedData, std::string_view text)
{
    const std::int64_t blockSize = integerOfText(text);
    parsedData.set(preferenceKey::blockSize, blockSize);
    // Zero and all negative sizes pass (kept, see QUIRKS; judgeLimits has its say on them later).
    if (blockSize % 16 > 0)
        return fmt::format("Wrong block size: {}.", text);
    return std::nullopt;
}

// The three features whose folders can't be read here.
Refusal serveFeature(NBPreferencesDictionary &parsedData, std::string_view text,
                     std::string_view key, std::string_view title)
{
    const bool isOn = booleanOfText(text);
    parsedData.set(key, isOn);
    if (isOn)
        return fmt::format("\"{}\" not supported.", title);
    return std::nullopt;
}

Refusal serveUniqueIV(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return serveFeature(parsedData, text, preferenceKey::uniqueIV, "Unique IV");
}

Refusal serveChainedNameIV(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return serveFeature(parsedData, text, preferenceKey::chainedNameIV, "Chained Name IV");
}

Refusal serveExternalIVChaining(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return serveFeature(parsedData, text, preferenceKey::externalIVChaining,
                        "External IV Chaining");
}

// Bytes of authentication codes in a block: none are understood here. Negative numbers pass.
Refusal serveMAC(NBPreferencesDictionary &parsedData, std::string_view text, std::string_view key,
                 std::string_view title)
{
    const std::int64_t count = integerOfText(text);
    parsedData.set(key, count);
    if (count >= 1)
        return fmt::format("Wrong \"{}\": {}.", title, text);
    return std::nullopt;
}

Refusal serveBlockMACBytes(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return serveMAC(parsedData, text, preferenceKey::blockMACBytes, "Block MAC Bytes");
}

Refusal serveBlockMACRandBytes(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return serveMAC(parsedData, text, preferenceKey::blockMACRandomBytes, "Block MAC Random Bytes");
}

Refusal serveAllowHoles(NBPreferencesDictionary &parsedData, std::string_view text)
{
    parsedData.set(preferenceKey::allowHoles, booleanOfText(text));
    return std::nullopt;
}

// The base64 text is stored as it stands; its length must be the one that stood before it. A length
// that comes behind counts as 0 here.
bool storeMeasured(NBPreferencesDictionary &parsedData, std::string_view text, std::string_view key,
                   std::string_view lengthKey)
{
    parsedData.set(key, std::string(text));
    const std::int64_t length = parsedData.integer(lengthKey).value_or(0);
    return dataWithBase64String(text).size() == static_cast<std::uint64_t>(length);
}

Refusal serveEncodedKeyData(NBPreferencesDictionary &parsedData, std::string_view text)
{
    if (!storeMeasured(parsedData, text, preferenceKey::encodedKey,
                       preferenceKey::encodedKeyLength))
        return "Wrong encoded key.";
    return std::nullopt;
}

Refusal serveSaltData(NBPreferencesDictionary &parsedData, std::string_view text)
{
    if (!storeMeasured(parsedData, text, preferenceKey::salt, preferenceKey::saltLength))
        return "Wrong SALT.";
    return std::nullopt;
}

// Stored unjudged.
Refusal storeInteger(NBPreferencesDictionary &parsedData, std::string_view text,
                     std::string_view key)
{
    parsedData.set(key, integerOfText(text));
    return std::nullopt;
}

Refusal serveEncodedKeySize(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return storeInteger(parsedData, text, preferenceKey::encodedKeyLength);
}

Refusal serveSaltLen(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return storeInteger(parsedData, text, preferenceKey::saltLength);
}

Refusal serveKdfIterations(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return storeInteger(parsedData, text, preferenceKey::kdfIterations);
}

Refusal serveDesiredKDFDuration(NBPreferencesDictionary &parsedData, std::string_view text)
{
    return storeInteger(parsedData, text, preferenceKey::desiredKDFDuration);
}

struct ServedElement
{
    std::string_view name;
    Serve serve;
};

constexpr std::array<ServedElement, 17> servedElements = {{
    {"name", serveName},
    {"major", serveMajor},
    {"minor", serveMinor},
    {"keySize", serveKeySize},
    {"blockSize", serveBlockSize},
    {"uniqueIV", serveUniqueIV},
    {"chainedNameIV", serveChainedNameIV},
    {"externalIVChaining", serveExternalIVChaining},
    {"blockMACBytes", serveBlockMACBytes},
    {"blockMACRandBytes", serveBlockMACRandBytes},
    {"allowHoles", serveAllowHoles},
    {"encodedKeySize", serveEncodedKeySize},
    {"encodedKeyData", serveEncodedKeyData},
    {"saltLen", serveSaltLen},
    {"saltData", serveSaltData},
    {"kdfIterations", serveKdfIterations},
    {"desiredKDFDuration", serveDesiredKDFDuration},
}};

} // namespace

std::optional<std::string> serveElement(NBPreferencesDictionary &parsedData, std::string_view name,
                                        std::string_view text)
{
    const auto *const found =
        std::find_if(servedElements.begin(), servedElements.end(),
                     [&](const ServedElement &element) { return element.name == name; });
    return found == servedElements.end() ? std::nullopt : found->serve(parsedData, text);
}

} // namespace nimbrel
