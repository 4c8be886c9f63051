#include "volume/Volume.h"

#include "app/Util.h"
#include "config/ConfigurationLookup.h"
#include "platform/KeyedArchive.h"
#include "volume/TextConversion.h"

namespace nimbrel {

namespace {

QString fileIn(const QString &root, std::string_view name)
{
    return pathIn(root, qtText(name));
}

QString textOf(const KeyedRecord &coder, const char *key)
{
    return coder.decodeObject(QLatin1String(key)).value_or(QString());
}

} // namespace

Volume::Volume(const QString &givenRoot)
    : root(givenRoot), label(QStringLiteral("Nimbrel")), automount(true), storePassphrase(true),
      checkKey(true), spotlight(true), isMounted(true)
{
    if (root.isNull())
        return;
    configPath = fileIn(root, configurationFileName);
    if (!Util::fileExists(configPath))
        configPath = fileIn(root, oldConfigurationFileName);
}

Volume::Volume(const KeyedRecord &coder) : version(coder.decodeInteger(QStringLiteral("version")))
{
    if (version != 1)
        return;
    root = textOf(coder, "root");
    label = textOf(coder, "label");
    configPath = textOf(coder, "configPath");
    // Older folders keep their configuration under this name, wherever the record says (kept).
    if (!Util::fileExists(configPath))
        configPath = root.isNull() ? QString() : fileIn(root, oldConfigurationFileName);
    automount = coder.decodeBool(QStringLiteral("automount"));
    storePassphrase = coder.decodeBool(QStringLiteral("storePassword"));
    checkKey = coder.decodeBool(QStringLiteral("checkKey"));
    spotlight = coder.decodeBool(QStringLiteral("spotlight"));
}

} // namespace nimbrel
