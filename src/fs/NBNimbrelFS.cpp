#include "fs/NBNimbrelFS.h"

#include "crypto/Base64.h"

#include <utility>

namespace nimbrel {

namespace {

template <class T>
void overwrite(T &field, const NBPreferencesDictionary &preferences, std::string_view key)
{
    if (std::optional<T> value = preferences.get<T>(key))
        field = std::move(*value);
}

// Each key names the field that it overwrites, past the setters: names that are encrypted by the
// dictionary leave the name algorithm to the dictionary, too.
NBNimbrelFSSettings settingsWith(const NBPreferencesDictionary &preferences)
{
    NBNimbrelFSSettings settings;
    overwrite(settings.cipherAlgorithm, preferences, preferenceKey::cipherAlgorithm);
    overwrite(settings.cipherAlgorithmMajor, preferences, preferenceKey::cipherAlgorithmMajor);
    overwrite(settings.cipherAlgorithmMinor, preferences, preferenceKey::cipherAlgorithmMinor);
    overwrite(settings.areFilenamesEncrypted, preferences, preferenceKey::areFilenamesEncrypted);
    overwrite(settings.nameAlgorithm, preferences, preferenceKey::nameAlgorithm);
    overwrite(settings.nameAlgorithmMajor, preferences, preferenceKey::nameAlgorithmMajor);
    overwrite(settings.nameAlgorithmMinor, preferences, preferenceKey::nameAlgorithmMinor);
    overwrite(settings.keySize, preferences, preferenceKey::keySize);
    overwrite(settings.blockSize, preferences, preferenceKey::blockSize);
    overwrite(settings.uniqueIV, preferences, preferenceKey::uniqueIV);
    overwrite(settings.chainedNameIV, preferences, preferenceKey::chainedNameIV);
    overwrite(settings.externalIVChaining, preferences, preferenceKey::externalIVChaining);
    overwrite(settings.blockMACBytes, preferences, preferenceKey::blockMACBytes);
    overwrite(settings.blockMACRandomBytes, preferences, preferenceKey::blockMACRandomBytes);
    overwrite(settings.allowHoles, preferences, preferenceKey::allowHoles);
    overwrite(settings.encodedKeyLength, preferences, preferenceKey::encodedKeyLength);
    overwrite(settings.encodedKey, preferences, preferenceKey::encodedKey);
    overwrite(settings.saltLength, preferences, preferenceKey::saltLength);
    overwrite(settings.salt, preferences, preferenceKey::salt);
    overwrite(settings.kdfIterations, preferences, preferenceKey::kdfIterations);
    overwrite(settings.desiredKDFDuration, preferences, preferenceKey::desiredKDFDuration);
    return settings;
}

std::optional<NBCryptor> cryptorFor(const NBNimbrelFSSettings &settings, bool hasSalt,
                                    std::string_view passphrase, bool checkKey)
{
    NBCryptorSettings forCryptor;
    forCryptor.encodedKeyData = settings.encodedKey;
    forCryptor.keySize = settings.keySize;
    forCryptor.blockSize = settings.blockSize;
    if (hasSalt)
        forCryptor.saltData = settings.salt;
    forCryptor.kdfIterations = settings.kdfIterations;
    forCryptor.checkKey = checkKey;
    return NBCryptor::withPassphrase(passphrase, forCryptor);
}

// The blob under the passphrase that opened the folder. A blob whose check value was verified is
// what writing the key again would give, byte for byte, and costs no second derivation.
std::string encodedKeyOf(const NBCryptor &cryptor, const NBNimbrelFSSettings &settings,
                         std::string_view passphrase)
{
    constexpr std::size_t checkValueSize = 4;
    const Bytes blob = dataWithBase64String(settings.encodedKey);
    if (cryptor.checkKey() && blob.size() == checkValueSize + cryptor.key().data().size())
        return base64EncodedString(blob);
    return cryptor.writeKeyWithPassphrase(passphrase).value_or(std::string());
}

} // namespace

std::unique_ptr<NBNimbrelFS> NBNimbrelFS::withRootPath(std::string rootPath,
                                                       const NBPreferencesDictionary &preferences)
{
    return withRootPath(std::move(rootPath), preferences, {}, false);
}

std::unique_ptr<NBNimbrelFS> NBNimbrelFS::withRootPath(std::string rootPath,
                                                       const NBPreferencesDictionary &preferences,
                                                       std::string_view passphrase)
{
    return withRootPath(std::move(rootPath), preferences, passphrase, true);
}

std::unique_ptr<NBNimbrelFS> NBNimbrelFS::withRootPath(std::string rootPath,
                                                       const NBPreferencesDictionary &preferences,
                                                       std::string_view passphrase, bool checkKey)
{
    NBNimbrelFSSettings settings = settingsWith(preferences);
    const bool hasSalt = preferences.text(preferenceKey::salt).has_value();
    std::optional<NBCryptor> cryptor = cryptorFor(settings, hasSalt, passphrase, checkKey);
    if (!cryptor)
        return nullptr;
    settings.encodedKey = encodedKeyOf(*cryptor, settings, passphrase);
    settings.salt = base64EncodedString(cryptor->salt());
    return std::unique_ptr<NBNimbrelFS>(
        new NBNimbrelFS(std::move(rootPath), std::move(settings), std::move(*cryptor)));
}

NBNimbrelFS::NBNimbrelFS(std::string rootPath, NBNimbrelFSSettings settings, NBCryptor cryptor)
    : _rootPath(std::move(rootPath)), _settings(std::move(settings)), _cryptor(std::move(cryptor))
{
}

// Ends the purge and wipes the key: what can't be reached any more is kept by nobody.
NBNimbrelFS::~NBNimbrelFS() = default;

std::unique_ptr<NBNimbrelFS> NBNimbrelFS::copy() const
{
    std::optional<NBCryptor> cryptor = _cryptor.copy();
    if (!cryptor)
        return nullptr;
    std::unique_ptr<NBNimbrelFS> twin(new NBNimbrelFS(_rootPath, _settings, std::move(*cryptor)));
    twin->setReadsHolesAsZeros(_readsHolesAsZeros);
    return twin;
}

void NBNimbrelFS::setAreFilenamesEncrypted(bool areFilenamesEncrypted)
{
    _settings.areFilenamesEncrypted = areFilenamesEncrypted;
    _settings.nameAlgorithm = areFilenamesEncrypted ? "nameio/stream" : "nameio/null";
    _settings.nameAlgorithmMajor = areFilenamesEncrypted ? 2 : 1;
    _settings.nameAlgorithmMinor = areFilenamesEncrypted ? 1 : 0;
    _pathCache.purge(); // what it knows is of the other mode
}

bool NBNimbrelFS::setPassphrase(std::string_view passphrase)
{
    if (passphrase.empty())
        return true;
    std::optional<std::string> encodedKey = _cryptor.writeKeyWithPassphrase(passphrase);
    if (!encodedKey)
        return false;
    _settings.encodedKey = std::move(*encodedKey);
    return true;
}

} // namespace nimbrel
