#include "volume/VolumeDesk.h"

#include "fs/MountTable.h"
#include "platform/KeyedArchive.h"
#include "support/Files.h"
#include "volume/Background.h"
#include "volume/StoredPassphrase.h"
#include "volume/TextConversion.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <filesystem>
#include <mutex>

namespace nimbrel::test {

namespace {

std::mutex logMutex; // messages come from any thread
QStringList *logLines = nullptr;
QtMessageHandler handlerBefore = nullptr;

void keepLine(QtMsgType, const QMessageLogContext &, const QString &message)
{
    const std::scoped_lock lock(logMutex);
    if (logLines != nullptr)
        logLines->push_back(message);
}

} // namespace

std::optional<PassphraseAnswer> FakePerson::passphraseFor(const NBNimbrelVolume & /*volume*/)
{
    ++timesAsked;
    if (passwords.empty())
        return std::nullopt;
    PassphraseAnswer answer{SecureBuffer::copyOf(passwords.front()), rememberPasswords};
    passwords.pop_front();
    return answer;
}

std::optional<NBNewVolumeSettings> FakePerson::newVolumeSettings()
{
    return std::exchange(wanted, std::nullopt);
}

bool FakePerson::showSuccess(const NBNimbrelVolume &volume)
{
    shownAsNew.push_back(volume.configPath());
    return wantsToSeeNewVolumes;
}

SystemLogLines::SystemLogLines()
{
    const std::scoped_lock lock(logMutex);
    logLines = new QStringList;
    handlerBefore = qInstallMessageHandler(keepLine);
}

SystemLogLines::~SystemLogLines()
{
    const std::scoped_lock lock(logMutex);
    qInstallMessageHandler(handlerBefore);
    delete std::exchange(logLines, nullptr);
}

QStringList SystemLogLines::lines() const
{
    const std::scoped_lock lock(logMutex);
    return *logLines;
}

qsizetype SystemLogLines::count(const QString &text) const
{
    return lines().filter(text).size();
}

VolumeDesk::VolumeDesk(PrivateDesktopOptions options)
    : _desktop(options),
      resources(path("resources"), {QStringLiteral("en")}), services{secrets,   preferences,
                                                                     workspace, bookmarks,
                                                                     resources, person,
                                                                     &_keeper}
{
    preferences.registerDefaults({{preferencesKey::createAliases, true}});
    std::filesystem::create_directories(_desktop.desktopFolder());
}

VolumeDesk::~VolumeDesk()
{
    if (_controller)
        for (const VolumePtr &volume : _controller->volumes())
            if (volume->isMounted())
                (void)unmount(volume);
    _controller.reset();
    settle();
}

QString VolumeDesk::path(const std::string &name) const
{
    return qtText(_desktop.home() + "/" + name);
}

QString VolumeDesk::makeFolder(const std::string &name, const std::vector<std::string> &files)
{
    const std::string folder = home() + "/" + name;
    std::filesystem::create_directories(folder);
    for (const std::string &file : files)
        writeFile(folder + "/" + file, "configuration");
    return path(name);
}

VolumePtr VolumeDesk::makeVolume(const std::string &name, std::string_view password,
                                 bool encodeFilenames)
{
    VolumePtr volume = NBNimbrelVolume::withPath(services, path(name + ".nmc"));
    volume->setConfigPath(volume->path() + QStringLiteral("/.encfs6.xml"));
    volume->setLabel(qtText(name));
    volume->setEncodeFilenames(encodeFilenames);
    volume->setPassphrase(SecureBuffer::copyOf(password));
    if (!volume->writeToDisk())
        throw std::runtime_error("no encrypted folder could be made: " + name);
    return volume;
}

VolumePtr VolumeDesk::fromArchive(const VolumePtr &volume)
{
    KeyedRecord record(QStringLiteral("NBNimbrelVolume"));
    volume->encode(record);
    return NBNimbrelVolume::withCoder(services, record);
}

NBVolumesController &VolumeDesk::makeController()
{
    _controller = std::make_unique<NBVolumesController>(services);
    return *_controller;
}

bool VolumeDesk::mount(const VolumePtr &volume)
{
    std::optional<bool> result;
    volume->mount([&](bool mounted) { result = mounted; });
    return eventLoopUntil([&] { return result.has_value(); }) && *result;
}

bool VolumeDesk::unmount(const VolumePtr &volume)
{
    std::optional<bool> result;
    volume->unmount([&](bool unmounted) { result = unmounted; });
    return eventLoopUntil([&] { return result.has_value(); }) && *result;
}

bool VolumeDesk::hasNoMounts() const
{
    const std::string home = std::filesystem::canonical(_desktop.home()).string();
    for (const Mount &mount : mountTable())
        if (isAtOrBelow(mount.point, home))
            return false;
    return true;
}

void settle()
{
    secretQueue().waitForDone();
    backgroundPool().waitForDone();
    QCoreApplication::processEvents();
    secretQueue().waitForDone();
    backgroundPool().waitForDone();
    QCoreApplication::processEvents();
}

} // namespace nimbrel::test
