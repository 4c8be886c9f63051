// NSBundle(TEAdditions): window resources and the application's own place on disk.
#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace nimbrel::bundle {

// loadNibNamedOrQuit:owner:
// A missing window is fatal: the user is told, then the application ends. Never null.
[[nodiscard]] std::unique_ptr<QWidget> loadNibNamedOrQuit(const QString &name);

// safeLoadNibNamed:owner:  Null where the resource or the application itself can't be found.
[[nodiscard]] std::unique_ptr<QWidget> safeLoadNibNamed(const QString &name);

// What is done before loadNibNamedOrQuit ends the process: saving, unmounting.
void setTerminationHandler(std::function<void()> handler);

// The folder of the running program, wherever it lies now; nothing, logged, when it has gone.
[[nodiscard]] std::optional<QString> locationResistantBundle();

// locateAppBundleWithIdentifier:
// The desktop entry (freedesktop Desktop Entry Specification) of the application with this
// identifier; nothing, logged, when none is installed.
[[nodiscard]] std::optional<QString> locateAppBundleWithIdentifier(const QString &identifier);

} // namespace nimbrel::bundle
