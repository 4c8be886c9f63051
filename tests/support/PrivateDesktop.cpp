#include "support/PrivateDesktop.h"

#include "support/Files.h"
#include "support/KeyringControl.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace nimbrel::test {

namespace {

// The login keyring's password. Not empty: gnome-keyring asks a person for an empty one.
constexpr const char *keyringPassword = "\n";

constexpr const char *loginCollection = "/org/freedesktop/secrets/collection/login";

// No folders with service files: the machine's own services stay away from a test.
std::string busConfiguration(const std::string &socket)
{
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><keep_umask/><auth>EXTERNAL</auth><listen>unix:path=)" +
           socket + R"(</listen><policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>)";
}

std::optional<std::string> variable(const std::string &name)
{
    const char *value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

void putVariable(const std::string &name, const std::optional<std::string> &value)
{
    if (value)
        ::setenv(name.c_str(), value->c_str(), 1);
    else
        ::unsetenv(name.c_str());
}

void makePrivateFolder(const std::string &path)
{
    std::filesystem::create_directories(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

} // namespace

PrivateDesktop::PrivateDesktop(PrivateDesktopOptions options) : _home(_temp / "home")
{
    makeFolders();
    setVariables();
    try {
        if (options.bus)
            startBus();
        if (options.bus && options.keyring)
            startKeyring();
    } catch (...) {
        restoreVariables();
        throw;
    }
}

PrivateDesktop::~PrivateDesktop()
{
    _keyring.reset();
    _bus.reset();
    restoreVariables();
}

std::vector<std::string> PrivateDesktop::environment() const
{
    std::vector<std::string> entries;
    entries.reserve(_before.size());
    for (const auto &[name, value] : _before)
        entries.push_back(name + "=" + variable(name).value_or(""));
    return entries;
}

void PrivateDesktop::makeFolders() const
{
    for (const std::string &folder :
         {_home, config(), data(), state(), _home + "/.cache", desktopFolder(), runtime()})
        makePrivateFolder(folder);
}

void PrivateDesktop::setVariable(const std::string &name, const std::optional<std::string> &value)
{
    _before.emplace(name, variable(name));
    putVariable(name, value);
}

void PrivateDesktop::setVariables()
{
    setVariable("HOME", _home);
    setVariable("XDG_CONFIG_HOME", config());
    setVariable("XDG_DATA_HOME", data());
    setVariable("XDG_STATE_HOME", state());
    setVariable("XDG_CACHE_HOME", _home + "/.cache");
    setVariable("XDG_RUNTIME_DIR", runtime());
    // Not the name "bus", which libraries try by themselves.
    setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + runtime() + "/session");
}

void PrivateDesktop::restoreVariables()
{
    for (const auto &[name, value] : _before)
        putVariable(name, value);
}

void PrivateDesktop::startBus()
{
    const std::string configuration = _temp / "bus.conf";
    writeFile(configuration, busConfiguration(runtime() + "/session"));
    _bus = std::make_unique<RunningProcess>(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + configuration, "--nofork",
                                 "--print-address=1"},
        RunOptions{.endsWithThread = true});
    const bool printed = eventually([this] {
        return _bus->log().find("unix:path=") != std::string::npos ||
               _bus->wait(std::chrono::seconds(0)).has_value();
    });
    if (!printed || _bus->wait(std::chrono::seconds(0)))
        throw std::runtime_error("no session bus: " + _bus->log());
}

void PrivateDesktop::stopBus()
{
    _bus.reset();
    _keyring.reset(); // it ends with the bus
}

void PrivateDesktop::startKeyring()
{
    // Without a display, a prompt can't reach a person's screen.
    _keyring = std::make_unique<RunningProcess>(
        std::vector<std::string>{"gnome-keyring-daemon", "--foreground", "--unlock",
                                 "--components=secrets"},
        RunOptions{.input = keyringPassword,
                   .environment = {"DISPLAY=", "WAYLAND_DISPLAY=", "GNOME_KEYRING_CONTROL="},
                   .endsWithThread = true});
    const bool ready = eventually([this] {
        return isKeyringUnlocked() || _keyring->wait(std::chrono::seconds(0)).has_value();
    });
    if (!ready || _keyring->wait(std::chrono::seconds(0)))
        throw std::runtime_error("no keyring: " + _keyring->log());
}

void PrivateDesktop::stopKeyring()
{
    if (!_keyring)
        return;
    _keyring->signal(SIGTERM);
    (void)_keyring->wait(std::chrono::seconds(30));
    _keyring.reset();
}

void PrivateDesktop::lockKeyring()
{
    const std::string argument = std::string("array:objpath:") + loginCollection;
    (void)askKeyring("/org/freedesktop/secrets", "org.freedesktop.Secret.Service.Lock", argument);
    if (isKeyringUnlocked())
        throw std::runtime_error("the keyring stayed unlocked: " + _keyring->log());
}

void PrivateDesktop::unlockKeyring()
{
    if (!unlockLoginKeyring(runtime() + "/keyring/control", keyringPassword) ||
        !isKeyringUnlocked())
        throw std::runtime_error("the keyring stayed locked: " + _keyring->log());
}

std::string PrivateDesktop::askKeyring(const std::string &object, const std::string &method,
                                       const std::string &argument) const
{
    const RunResult answer = run({"dbus-send", "--session", "--print-reply=literal",
                                  "--dest=org.freedesktop.secrets", object, method, argument});
    return answer.status == 0 ? answer.output : std::string();
}

bool PrivateDesktop::isKeyringUnlocked() const
{
    // The alias is there before the collection is: a locked "/" has no such property.
    const std::string alias = askKeyring(
        "/org/freedesktop/secrets", "org.freedesktop.Secret.Service.ReadAlias", "string:default");
    if (alias.find(loginCollection) == std::string::npos)
        return false;
    const RunResult answer =
        run({"dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.secrets",
             loginCollection, "org.freedesktop.DBus.Properties.Get",
             "string:org.freedesktop.Secret.Collection", "string:Locked"});
    return answer.output.find("boolean false") != std::string::npos;
}

} // namespace nimbrel::test
