#include "assistant/BundleAdditions.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/NibLoading.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace nimbrel::bundle {

namespace {

std::function<void()> &terminationHandler()
{
    static std::function<void()> handler;
    return handler;
}

void tellMissingResource(const QString &name)
{
    const QString message =
        texts::tr("Couldn't load the file %@.nib!\n\nThis can happen if you move Pellamere after "
                  "running it.");
    Util::runModal({.messageText = texts::tr("Missing Resource"),
                    .informativeText = formatted(message, {name}),
                    .buttons = {texts::tr("OK")},
                    .isCaution = true});
}

// Not through exit(): static objects would go while windows still stand.
[[noreturn]] void terminate()
{
    if (terminationHandler())
        terminationHandler()();
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

} // namespace

std::unique_ptr<QWidget> loadNibNamedOrQuit(const QString &name)
{
    if (std::unique_ptr<QWidget> loaded = nibs::load(name))
        return loaded;
    tellMissingResource(name);
    terminate();
}

std::unique_ptr<QWidget> safeLoadNibNamed(const QString &name)
{
    return locationResistantBundle() ? nibs::load(name) : nullptr;
}

void setTerminationHandler(std::function<void()> handler)
{
    terminationHandler() = std::move(handler);
}

// The kernel's link to the running program follows the file wherever it is moved, unlike a path.
std::optional<QString> locationResistantBundle()
{
    const QString program = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    if (!program.isEmpty() && QFileInfo::exists(program))
        return QFileInfo(program).path();
    systemLog(formatted(QStringLiteral("ERROR (%s:%d): Couldn't get URL for our bundle!"),
                        {QStringLiteral("+[NSBundle(TEAdditions) locationResistantBundle]"),
                         QStringLiteral("61")}));
    return std::nullopt;
}

std::optional<QString> locateAppBundleWithIdentifier(const QString &identifier)
{
    const QString entry = QStandardPaths::locate(QStandardPaths::ApplicationsLocation,
                                                 identifier + QStringLiteral(".desktop"));
    if (!entry.isEmpty())
        return entry;
    systemLog(formatted(QStringLiteral("ERROR (%s:%d): couldn't get URL for app with bundleID: %@"),
                        {QStringLiteral("+[NSBundle(TEAdditions) locateAppBundleWithIdentifier:]"),
                         QStringLiteral("28"), identifier}));
    return std::nullopt;
}

} // namespace nimbrel::bundle
