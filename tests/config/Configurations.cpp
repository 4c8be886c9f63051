#include "config/Configurations.h"

#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"
#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

namespace nimbrel::test {

namespace {

// The value under `key`, or what stands in `field` already.
template <class T>
void take(const NBPreferencesDictionary &preferences, std::string_view key, T &field)
{
    field = preferences.get<T>(key).value_or(field);
}

std::optional<NBCryptor> cryptorOf(const NBNimbrelFSSettings &settings, std::string_view passphrase)
{
    return NBCryptor::withPassphrase(passphrase, {.encodedKeyData = settings.encodedKey,
                                                  .keySize = settings.keySize,
                                                  .blockSize = settings.blockSize,
                                                  .saltData = settings.salt,
                                                  .kdfIterations = settings.kdfIterations,
                                                  .checkKey = true});
}

} // namespace

std::string document(const Elements &elements)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n";
    for (const auto &[name, value] : elements)
        text += fmt::format("  <{0}>{1}</{0}>\n", name, value);
    return text + "</root>\n";
}

Elements completeElements()
{
    return {{"name", "ssl/aes"},
            {"major", "3"},
            {"minor", "0"},
            {"name", "nameio/stream"},
            {"major", "2"},
            {"minor", "1"},
            {"keySize", "256"},
            {"blockSize", "4096"},
            {"uniqueIV", "0"},
            {"chainedNameIV", "0"},
            {"externalIVChaining", "0"},
            {"blockMACBytes", "0"},
            {"blockMACRandBytes", "0"},
            {"allowHoles", "1"},
            {"encodedKeySize", "52"},
            {"encodedKeyData", base64EncodedString(bytesOf(noise(52, 1)))},
            {"saltLen", "20"},
            {"saltData", base64EncodedString(bytesOf(noise(20, 2)))},
            {"kdfIterations", "5000"},
            {"desiredKDFDuration", "500"}};
}

std::string completeWith(std::string_view name, std::string_view text, std::size_t occurrence)
{
    Elements elements = completeElements();
    for (auto &[elementName, elementText] : elements) {
        if (elementName != name || occurrence-- != 0)
            continue;
        elementText = text;
        return document(elements);
    }
    throw std::runtime_error("no such element: " + std::string(name));
}

NBPreferencesDictionary accepted(std::string_view text)
{
    NBPreferencesError error;
    auto preferences = NBNimbrelFSPreferences().preferencesWithText(text, &error);
    if (!preferences)
        throw std::runtime_error("refused: " + error.message);
    return *preferences;
}

NBPreferencesError refused(std::string_view text)
{
    NBPreferencesError error;
    if (NBNimbrelFSPreferences().preferencesWithText(text, &error))
        throw std::runtime_error("not refused");
    return error;
}

std::string refusalOf(std::string_view text)
{
    const NBPreferencesError error = refused(text);
    if (error.domain != NBNMFSPreferencesErrorDomain || error.code != -1)
        throw std::runtime_error("no refusal but: " + error.message);
    return error.message;
}

NBNimbrelFSSettings freshSettings(std::string_view passphrase, const FolderForm &form)
{
    const std::string salt = noise(form.saltLength, 3);
    const auto key = NBEncryptionKey::randomWithKeySize(form.keySize, form.kdfIterations);
    const auto blob =
        key ? key->write(passphrase, bytesOf(salt), form.kdfIterations) : std::nullopt;
    if (!blob)
        throw std::runtime_error("no key");
    NBNimbrelFSSettings settings;
    settings.areFilenamesEncrypted = true;
    settings.nameAlgorithm = "nameio/stream";
    settings.nameAlgorithmMajor = 2;
    settings.nameAlgorithmMinor = 1;
    settings.keySize = form.keySize;
    settings.kdfIterations = form.kdfIterations;
    settings.encodedKey = *blob;
    settings.salt = base64EncodedString(bytesOf(salt));
    return settings;
}

NBNimbrelFSSettings settingsOf(const NBPreferencesDictionary &preferences)
{
    NBNimbrelFSSettings settings;
    take(preferences, preferenceKey::areFilenamesEncrypted, settings.areFilenamesEncrypted);
    take(preferences, preferenceKey::nameAlgorithm, settings.nameAlgorithm);
    take(preferences, preferenceKey::nameAlgorithmMajor, settings.nameAlgorithmMajor);
    take(preferences, preferenceKey::nameAlgorithmMinor, settings.nameAlgorithmMinor);
    take(preferences, preferenceKey::keySize, settings.keySize);
    take(preferences, preferenceKey::blockSize, settings.blockSize);
    take(preferences, preferenceKey::allowHoles, settings.allowHoles);
    take(preferences, preferenceKey::encodedKeyLength, settings.encodedKeyLength);
    take(preferences, preferenceKey::encodedKey, settings.encodedKey);
    take(preferences, preferenceKey::saltLength, settings.saltLength);
    take(preferences, preferenceKey::salt, settings.salt);
    take(preferences, preferenceKey::kdfIterations, settings.kdfIterations);
    return settings;
}

void changePassphrase(NBNimbrelFSSettings &settings, std::string_view oldPassphrase,
                      std::string_view newPassphrase)
{
    const auto cryptor = cryptorOf(settings, oldPassphrase);
    const auto blob = cryptor ? cryptor->writeKeyWithPassphrase(newPassphrase) : std::nullopt;
    if (!blob)
        throw std::runtime_error("the old passphrase doesn't open the key");
    settings.encodedKey = *blob;
}

std::string keyOfText(std::string_view text, std::string_view passphrase)
{
    NBPreferencesError error;
    const auto preferences = NBNimbrelFSPreferences().preferencesWithText(text, &error);
    if (!preferences || judgeLimits(*preferences))
        return "";
    const auto cryptor = cryptorOf(settingsOf(*preferences), passphrase);
    return cryptor ? toHex(cryptor->key().data()) : "";
}

std::string keyOfFile(const std::string &path, std::string_view passphrase)
{
    return keyOfText(readFile(path), passphrase);
}

std::vector<std::string> namesIn(const std::string &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace nimbrel::test
