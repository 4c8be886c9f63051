#include "config/ConfigurationWriter.h"

#include "config/AtomicFile.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationText.h"
#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"
#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"

#include <fmt/format.h>

namespace nimbrel {

namespace {

// Why the configuration `text` doesn't open with `passphrase`; nothing when it does.
std::optional<std::string> judgeText(std::string_view text, std::string_view passphrase)
{
    NBPreferencesError error;
    const auto preferences = NBNimbrelFSPreferences().preferencesWithText(text, &error);
    if (!preferences)
        return error.message;
    if (auto complaint = judgeLimits(*preferences))
        return complaint;
    const std::string encodedKey = preferences->text(preferenceKey::encodedKey).value_or("");
    const std::string salt = preferences->text(preferenceKey::salt).value_or("");
    const NBCryptorSettings own;
    const auto cryptor = NBCryptor::withPassphrase(
        passphrase,
        {.encodedKeyData = encodedKey,
         .keySize = preferences->integer(preferenceKey::keySize).value_or(own.keySize),
         .blockSize = preferences->integer(preferenceKey::blockSize).value_or(own.blockSize),
         .saltData = salt,
         .kdfIterations =
             preferences->integer(preferenceKey::kdfIterations).value_or(own.kdfIterations),
         .checkKey = true});
    if (!cryptor)
        return "The password doesn't open the key.";
    return std::nullopt;
}

// The template says that blocks of zero bytes are holes. A folder that says otherwise may hold such
// blocks as content: it keeps its word, or its files would read differently afterwards.
std::optional<std::string> withOwnHoles(std::string text, const NBNimbrelFSSettings &settings)
{
    return settings.allowHoles ? std::move(text) : textWithElement(text, "allowHoles", "0");
}

// The folder's own values in place of the template's: those that a folder made elsewhere, or with a
// shorter key, doesn't share.
std::optional<std::string> withOwnSizes(std::optional<std::string> text,
                                        const NBNimbrelFSSettings &settings)
{
    const auto lengthOf = [](std::string_view base64) {
        return std::to_string(dataWithBase64String(base64).size());
    };
    if (text)
        text = textWithElement(*text, "encodedKeySize", lengthOf(settings.encodedKey));
    if (text)
        text = textWithElement(*text, "saltLen", lengthOf(settings.salt));
    if (text)
        text = textWithElement(*text, "kdfIterations", std::to_string(settings.kdfIterations));
    return text;
}

FileError refusal(const std::string &path, std::string_view reason)
{
    return {0, fmt::format("\"{}\" was left as it is: the new configuration would not open again. "
                           "{}",
                           path, reason)};
}

} // namespace

std::optional<FileError> writeConfiguration(const std::string &path,
                                            const NBNimbrelFSSettings &settings,
                                            std::string_view passphrase,
                                            const std::string &backupFolder)
{
    auto text = NBNimbrelFSPreferences::preferenceXMLWithNMFS(settings);
    if (text)
        text = withOwnHoles(std::move(*text), settings);
    if (!text)
        return refusal(path, "Its template is damaged.");
    if (judgeText(*text, passphrase)) {
        text = withOwnSizes(std::move(text), settings);
        if (!text)
            return refusal(path, "Its template is damaged.");
        if (const auto reason = judgeText(*text, passphrase))
            return refusal(path, *reason);
    }
    if (auto error = backUpConfiguration(path, backupFolder))
        return error;
    return replaceFile(path, *text);
}

} // namespace nimbrel
