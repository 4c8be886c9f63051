// A desktop of a test's own: home folder, session bus, keyring.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nimbrel::test {

struct PrivateDesktopOptions
{
    bool bus = true;     // a session bus; without it the environment names one that isn't there
    bool keyring = true; // gnome-keyring on it, with an unlocked default collection
};

// Sets HOME, XDG_*_HOME, XDG_RUNTIME_DIR and DBUS_SESSION_BUS_ADDRESS of this process, so make it
// before anything asks for them; all is as before at its end, and every process that it started has
// gone. One bus a process: libraries keep their first connection. Throws std::runtime_error, with
// what the program said, where a part doesn't come up. The bus starts no services by itself: what
// a test doesn't put there isn't there. Make it on the main thread: its programs die with the
// thread that made it.
class PrivateDesktop final
{
public:
    explicit PrivateDesktop(PrivateDesktopOptions options = {});
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop &) = delete;
    PrivateDesktop &operator=(const PrivateDesktop &) = delete;

    [[nodiscard]] const std::string &home() const noexcept { return _home; }
    [[nodiscard]] std::string config() const { return _home + "/.config"; }
    [[nodiscard]] std::string data() const { return _home + "/.local/share"; }
    [[nodiscard]] std::string state() const { return _home + "/.local/state"; }
    [[nodiscard]] std::string desktopFolder() const { return _home + "/Desktop"; }
    // "NAME=value" for a program that is to share this desktop.
    [[nodiscard]] std::vector<std::string> environment() const;

    // The default collection; nobody answers the prompt that unlocks it (there is no prompter), so
    // a client finds it locked until unlockKeyring().
    void lockKeyring();
    void unlockKeyring();
    // Items stay on disk over these.
    void stopKeyring();
    void startKeyring();
    // SIGSTOP makes it a service that takes calls and never answers, SIGCONT an ordinary one again.
    void signalKeyring(int number) const { _keyring->signal(number); }
    void signalBus(int number) const { _bus->signal(number); }
    // The bus dies, with all that was on it; the processes that merely listened live on.
    void stopBus();

private:
    [[nodiscard]] std::string runtime() const { return _temp / "run"; }
    void makeFolders() const;
    void setVariable(const std::string &name, const std::optional<std::string> &value);
    void setVariables();
    void restoreVariables();
    void startBus();
    // One more call on the Secret Service; its printed answer, empty where it failed.
    [[nodiscard]] std::string askKeyring(const std::string &object, const std::string &method,
                                         const std::string &argument) const;
    [[nodiscard]] bool isKeyringUnlocked() const;

    TempFolder _temp;
    std::string _home;
    std::map<std::string, std::optional<std::string>> _before; // what the variables were
    std::unique_ptr<RunningProcess> _bus;
    std::unique_ptr<RunningProcess> _keyring;
};

} // namespace nimbrel::test
