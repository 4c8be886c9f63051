// The sheet in which a user picks an existing encrypted folder.
#pragma once

#include "windows/FolderScan.h"
#include "windows/FoldersTable.h"

#include <QMap>
#include <QPointer>

#include <functional>

class QWidget;

namespace nimbrel {

class AddVolumesWindow;
class NBApplication;
struct VolumeServices;

// One controller serves one showing. Main thread only. It may go at any time, also in the handler.
class NBAddVolumesWindowController final : public QObject
{
    Q_OBJECT

public:
    using CompletitionHandler = std::function<void(const QString &path)>;

    NBAddVolumesWindowController(NBApplication &application, VolumeServices &services);
    ~NBAddVolumesWindowController() override; // with it the sheet goes

    // beginSheetModalForWindow:completionHandler:
    // Returns at once. The handler hears of the folder that the user takes, after the sheet has
    // gone; of a cancel it doesn't hear.
    void beginSheetModalForWindow(QWidget &window, CompletitionHandler completionHandler);

    // Null before the sheet, and after it.
    [[nodiscard]] AddVolumesWindow *window() const;
    // What was found, by the index of a location's item in the popup; empty until the scan has
    // ended.
    [[nodiscard]] const QMap<int, QList<QUrl>> &availableFolders() const
    {
        return _availableFolders;
    }
    [[nodiscard]] int lastSelectedIndex() const noexcept { return _lastSelectedIndex; }
    // In simple mode the path of the folder last validated, which may be another than the one that
    // was asked about; null for none.
    [[nodiscard]] const QString &selectedPath() const noexcept { return _selectedPath; }

    void updateRootPath();
    void selectionChanged(); // selectionChanged:
    void chooseOtherPath();  // chooseOtherPath:
    void addVolume();        // addVolume:
    void closeWindow();      // closeWindow:
    // panel:validateURL:error:
    // Tells the user itself when it says no. The modes' rules differ (kept): in simple mode the
    // configuration file must be there, a listed folder will do, and the folder may be renamed; in
    // advanced mode a listed folder won't do, and any other one will.
    [[nodiscard]] bool validateURL(const QUrl &url);

private:
    void windowDidLoad();
    void connectControls();
    void startScan();
    void setControlsEnabled(bool isEnabled);
    void showLocation(const QString &name, const QUrl &url);
    void scanEnded(const FolderScan::Result &folders);
    void reloadData();
    [[nodiscard]] QList<QUrl> foldersHere() const; // at the location that is chosen
    [[nodiscard]] bool validateInSimpleMode(const QString &path);
    [[nodiscard]] bool validateInAdvancedMode(const QString &path) const;
    void otherPathChosen(const QUrl &url);
    void otherPathCancelled();
    void handOver(const QString &path);

    NBApplication &_application;
    VolumeServices &_services;
    CompletitionHandler _completitionHandler;
    FoldersTable _folders;
    QPointer<AddVolumesWindow> _window; // the parent window owns it
    std::shared_ptr<FolderScan> _scan;  // while it goes on
    QList<int> _locations = {0};        // indexes in the popup, in the scan's order
    QMap<int, QList<QUrl>> _availableFolders;
    int _lastSelectedIndex = 0;
    int _otherItem = -1; // index of "Other…", once it is there
    QString _selectedPath;
};

} // namespace nimbrel
