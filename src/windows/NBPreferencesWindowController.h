// The settings, and when updates were looked for.
#pragma once

#include "windows/WindowServices.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace nimbrel {

class PreferencesWindow;

// One controller serves one showing. Main thread only. Settings are read when the sheet opens, and
// take effect when it closes, in whatever way.
class NBPreferencesWindowController final : public QObject
{
    Q_OBJECT

public:
    explicit NBPreferencesWindowController(WindowServices &services);
    ~NBPreferencesWindowController() override; // with it the sheet goes, and applies nothing

    // Shows the window as a sheet; `didEndSheet` is called with it when it has been closed.
    void beginSheetModalForWindow(QWidget &window, std::function<void(QWidget &)> didEndSheet);

    // Null before the sheet, and after it.
    [[nodiscard]] PreferencesWindow *window() const;

    void closeWindow(); // closeWindow:

private:
    void windowDidLoad();
    void connectControls();
    void showUpdateChecks();
    void apply();
    void applyAutostart() const;
    void applyPreferences() const;
    void applyFileManagerActions() const;

    WindowServices &_services;
    std::function<void(QWidget &)> _didEndSheet;
    QPointer<PreferencesWindow> _window; // the parent window owns it
    bool _hadFileManagerActions = false; // when the sheet opened
};

} // namespace nimbrel
