#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/Util.h"
#include "config/ConfigurationLookup.h"
#include "config/NBPreferencesDictionary.h"
#include "fs/NBNimbrelFS.h"
#include "fs/UserFileSystem.h"
#include "platform/KeyedArchive.h"
#include "volume/MountPointFolder.h"
#include "volume/PathExtension.h"
#include "volume/TextConversion.h"

namespace nimbrel {

namespace {

constexpr qint64 servedVersion = 1;

// The names of the record's values in the archive.
namespace archiveKey {
const QString version = QStringLiteral("version");
const QString root = QStringLiteral("root");
const QString label = QStringLiteral("label");
const QString configPath = QStringLiteral("configPath");
const QString storePassword = QStringLiteral("storePassword");
const QString automount = QStringLiteral("automount");
const QString checkKey = QStringLiteral("checkKey");
const QString spotlight = QStringLiteral("spotlight");
const QString local = QStringLiteral("local");
const QString allowsAll = QStringLiteral("allowsAll");
} // namespace archiveKey

QString fileIn(const QString &folder, std::string_view name)
{
    return pathIn(folder, qtText(name));
}

// Where the configuration of the folder at `path` lies, or would.
QString configurationIn(const QString &path)
{
    if (path.isNull())
        return {};
    const QString usual = fileIn(path, configurationFileName);
    return Util::fileExists(usual) ? usual : fileIn(path, oldConfigurationFileName);
}

QString orNull(const std::optional<QString> &text)
{
    return text.value_or(QString());
}

std::optional<QString> orNothing(const QString &text)
{
    return text.isNull() ? std::nullopt : std::optional(text);
}

// Serves to hold the settings and the key for a configuration that is to be written.
std::shared_ptr<NBNimbrelFS> newView(const QString &path, qint64 keySize, qint64 blockSize)
{
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::keySize, std::int64_t{keySize});
    preferences.set(preferenceKey::blockSize, std::int64_t{blockSize});
    return NBNimbrelFS::withRootPath(coreText(path), preferences);
}

} // namespace

NBNimbrelVolume::NBNimbrelVolume(VolumeServices &services) : _services(services) {}

// A disk that still stands ends here, and takes along what was made for it.
NBNimbrelVolume::~NBNimbrelVolume()
{
    if (_observation == 0)
        return;
    _fuseFS.reset();
    removeDesktopAlias();
    _mountPointFolder->remove();
}

VolumePtr NBNimbrelVolume::withPath(VolumeServices &services, const QString &path,
                                    SecureBuffer passphrase, qint64 keySize, qint64 blockSize)
{
    VolumePtr volume(new NBNimbrelVolume(services));
    volume->_label = QStringLiteral("Nimbrel");
    volume->_path = migratedPath(path);
    volume->_configPath = configurationIn(volume->_path);
    volume->_automount = true;
    volume->_storePassphrase = true;
    volume->_checkKey = true;
    volume->_passphrase = std::move(passphrase);
    volume->_nmFS = newView(volume->_path, keySize, blockSize);
    return volume;
}

VolumePtr NBNimbrelVolume::withCoder(VolumeServices &services, const KeyedRecord &coder)
{
    VolumePtr volume(new NBNimbrelVolume(services));
    volume->_version = coder.decodeInteger(archiveKey::version);
    if (volume->_version != servedVersion) {
        systemLogAt("-[NBNimbrelVolume initWithCoder:]", __LINE__,
                    QStringLiteral("Unsupported Nimbrel Volume version: %1").arg(volume->_version));
        return volume;
    }
    volume->_label = orNull(coder.decodeObject(archiveKey::label));
    volume->readPaths(coder);
    volume->_automount = coder.decodeBool(archiveKey::automount);
    volume->_storePassphrase = coder.decodeBool(archiveKey::storePassword);
    volume->_checkKey = coder.decodeBool(archiveKey::checkKey);
    volume->_spotlight = coder.decodeBool(archiveKey::spotlight);
    volume->_local = coder.decodeBool(archiveKey::local);
    volume->_allowAll = coder.decodeBool(archiveKey::allowsAll);
    return volume;
}

void NBNimbrelVolume::readPaths(const KeyedRecord &coder)
{
    const QString root = orNull(coder.decodeObject(archiveKey::root));
    _configPath = orNull(coder.decodeObject(archiveKey::configPath));
    _path = migratedPath(root);
    if (_path != root)
        _configPath = pathIn(_path, _configPath.section(u'/', -1));
    // Whatever the stored name was (kept); a mount tries both.
    if (!Util::fileExists(_configPath))
        _configPath = _path.isNull() ? QString() : fileIn(_path, configurationFileName);
}

void NBNimbrelVolume::encode(KeyedRecord &withCoder) const
{
    withCoder.encodeInteger(archiveKey::version, _version);
    withCoder.encodeObject(archiveKey::root, orNothing(_path));
    withCoder.encodeObject(archiveKey::label, orNothing(_label));
    withCoder.encodeObject(archiveKey::configPath, orNothing(_configPath));
    withCoder.encodeBool(archiveKey::storePassword, _storePassphrase);
    withCoder.encodeBool(archiveKey::automount, _automount);
    withCoder.encodeBool(archiveKey::checkKey, _checkKey);
    withCoder.encodeBool(archiveKey::spotlight, _spotlight);
    withCoder.encodeBool(archiveKey::local, _local);
    withCoder.encodeBool(archiveKey::allowsAll, _allowAll);
}

bool NBNimbrelVolume::encodeFilenames() const
{
    return _nmFS && _nmFS->settings().areFilenamesEncrypted;
}

void NBNimbrelVolume::setEncodeFilenames(bool encode)
{
    if (_nmFS)
        _nmFS->setAreFilenamesEncrypted(encode);
}

qint64 NBNimbrelVolume::keySize() const
{
    return _nmFS ? _nmFS->settings().keySize : 0;
}

void NBNimbrelVolume::setKeySize(qint64 keySize)
{
    if (_nmFS)
        _nmFS->setKeySize(keySize);
}

qint64 NBNimbrelVolume::blockSize() const
{
    return _nmFS ? _nmFS->settings().blockSize : 0;
}

void NBNimbrelVolume::setBlockSize(qint64 blockSize)
{
    if (_nmFS)
        _nmFS->setBlockSize(blockSize);
}

} // namespace nimbrel
