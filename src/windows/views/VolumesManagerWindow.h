#pragma once

#include <QMainWindow>

#include <functional>

class QAction;
class QLabel;
class QListView;
class QPushButton;
class QToolBar;

namespace nimbrel {

class PathControl;

// The controls of the manager window, which knows none of their rules. Its list and the panel of
// the one folder take turns.
class VolumesManagerWindow final : public QMainWindow
{
    Q_OBJECT

public:
    VolumesManagerWindow();
    ~VolumesManagerWindow() override;

    enum class Contents
    {
        OneFolder,
        List
    };
    // Fills the empty toolbar; the window becomes wide enough for it.
    void insertItems(Contents contents);
    // What the window is high as it comes, in device-independent pixels.
    [[nodiscard]] int heightFor(Contents contents) const;

    // Asked before the window closes, which hides it.
    std::function<bool()> shouldClose;

    QToolBar *toolbar;
    QAction *newVolumeToolbarItem;
    QAction *addVolumeToolbarItem;
    QAction *removeVolumeToolbarItem;
    QAction *mountVolumeToolbarItem;
    QAction *unmountVolumeToolbarItem;
    QAction *changePasswordToolbarItem;
    QAction *clearPasswordToolbarItem;
    QAction *preferencesToolbarItem;
    QAction *showMobileAppsToolbarItem;
    QAction *switchModeToolbarItem;
    QListView *tableView;
    QWidget *tableScrollView;                // the table, which scrolls by itself here
    QWidget *folderPanel;                    // holds the controls below
    static constexpr int stateIconSide = 16; // device-independent pixels
    QLabel *stateIcon;
    QLabel *stateTextField;
    PathControl *customPathControl;
    QPushButton *showInFinderButton;

Q_SIGNALS:
    void becameActive();
    void folderDropped(const QString &path);

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QAction *makeItem(const char *identifier, const QString &label, const QString &toolTip,
                      const char *image);
    void makeItems();
    void makeSpaces();
    void fillFolderPanel();
    [[nodiscard]] QList<QAction *> itemsOf(Contents contents) const;
    void setDropFeedback(bool isShown);

    QList<QAction *> _spaces; // as many as a toolbar needs
    QAction *_flexibleSpace;
    QWidget *_dropFrame;
};

} // namespace nimbrel
