#include "windows/views/VolumesManagerWindow.h"

#include "app/Texts.h"
#include "assistant/Icons.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PathControl.h"
#include "windows/views/DroppedFolder.h"
#include "windows/views/VolumesListView.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWidgetAction>

#include <algorithm>

namespace nimbrel {

namespace {

constexpr int iconSide = 32; // device-independent pixels
constexpr int margin = 24;
constexpr int mostSpaces = 6;
constexpr int tableLines = 14;

QWidgetAction *makeSpace(const char *name, QSizePolicy::Policy policy, int width, QWidget *parent)
{
    auto *space = new QWidget(parent);
    space->setSizePolicy(policy, QSizePolicy::Preferred);
    space->setMinimumWidth(width);
    auto *action = form::named(name, new QWidgetAction(parent));
    action->setDefaultWidget(space);
    return action;
}

} // namespace

VolumesManagerWindow::VolumesManagerWindow()
{
    setObjectName(QStringLiteral("NBVolumesManagerWindow"));
    setWindowTitle(QStringLiteral("Nimbrel"));
    setWindowIcon(icons::named(QStringLiteral("NSApplicationIcon")));
    setContextMenuPolicy(Qt::PreventContextMenu); // it would offer to hide the toolbar
    setAcceptDrops(true);
    toolbar = form::named("toolbar", new QToolBar(this));
    toolbar->setWindowTitle(texts::tr("Toolbar"));
    toolbar->setMovable(false);
    toolbar->setFloatable(false);
    toolbar->setIconSize({iconSide, iconSide});
    toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    addToolBar(Qt::TopToolBarArea, toolbar);
    makeItems();
    makeSpaces();
    auto *content = new QWidget(this);
    tableView = form::named("tableView", new VolumesListView(content));
    tableScrollView = tableView;
    folderPanel = form::named("folderPanel", new QWidget(content));
    fillFolderPanel();
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins({});
    column->addWidget(tableView, 1);
    column->addWidget(folderPanel, 1);
    setCentralWidget(content);
    _dropFrame = form::named("dropFrame", new DropFrame(this));
}

VolumesManagerWindow::~VolumesManagerWindow() = default;

QAction *VolumesManagerWindow::makeItem(const char *identifier, const QString &label,
                                        const QString &toolTip, const char *image)
{
    auto *item = form::named(identifier, new QAction(label, this));
    item->setIcon(icons::named(QLatin1String(image)));
    item->setToolTip(toolTip);
    return item;
}

void VolumesManagerWindow::makeItems()
{
    newVolumeToolbarItem =
        makeItem("new", texts::tr("New"), texts::tr("Create a new encrypted folder"), "new_32x32");
    addVolumeToolbarItem = makeItem("add", texts::tr("Add"),
                                    texts::tr("Open an encrypted folder that exists"), "add_32x32");
    removeVolumeToolbarItem =
        makeItem("remove", texts::tr("Remove"),
                 texts::tr("Take the folder off this list; its files stay"), "remove_32x32");
    mountVolumeToolbarItem = makeItem("mount", texts::tr("Mount"),
                                      texts::tr("Show the folder decrypted"), "mount_32x32");
    unmountVolumeToolbarItem = makeItem("unmount", texts::tr("Unmount"),
                                        texts::tr("Close the decrypted folder"), "unmount_32x32");
    changePasswordToolbarItem =
        makeItem("change", texts::tr("Change Password"),
                 texts::tr("Give the mounted folder another password"), "change_32x32");
    clearPasswordToolbarItem =
        makeItem("clear", texts::tr("Clear Password"),
                 texts::tr("Forget the password that is stored on this computer"), "clear_32x32");
    preferencesToolbarItem = makeItem("preferences", texts::tr("Preferences"),
                                      texts::tr("Nimbrel's settings"), "preferences_32x32");
    showMobileAppsToolbarItem = makeItem(
        "mobile", texts::tr("Mobile"), texts::tr("Nimbrel for phones and tablets"), "mobile_32x32");
    switchModeToolbarItem =
        makeItem("mode", texts::tr("Simple"), texts::tr("Change the mode"), "mode_32x32");
}

void VolumesManagerWindow::makeSpaces()
{
    for (int i = 0; i < mostSpaces; ++i)
        _spaces += makeSpace("space", QSizePolicy::Fixed, fontMetrics().height() / 2, this);
    _flexibleSpace = makeSpace("flexibleSpace", QSizePolicy::Expanding, 0, this);
}

void VolumesManagerWindow::fillFolderPanel()
{
    QLabel *explanation = form::makeText(
        texts::tr("Your files lie encrypted in this folder. While it is mounted, you work with "
                  "them on the Nimbrel volume."),
        folderPanel);
    customPathControl = form::named("customPathControl", new PathControl(folderPanel));
    customPathControl->setAccessibleName(texts::tr("Encrypted folder"));
    customPathControl->setPlaceholderText(texts::tr("No encrypted folder yet"));
    showInFinderButton = form::named(
        "showInFinderButton", new QPushButton(texts::tr("&Show in File Manager"), folderPanel));
    stateIcon = new QLabel(folderPanel);
    stateTextField = form::named("stateTextField", form::makeHint(QString(), folderPanel));
    stateTextField->setWordWrap(false);
    stateTextField->setMinimumHeight(stateIconSide); // one height, with and without the icon
    auto *state = form::makeRow();
    state->addWidget(stateIcon);
    state->addWidget(stateTextField, 1);
    auto *row = form::makeRow();
    row->addWidget(customPathControl, 1);
    row->addWidget(showInFinderButton);
    auto *column = form::makeColumn(*folderPanel);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(margin / 2);
    column->addWidget(explanation);
    column->addLayout(row);
    column->addLayout(state);
    column->addStretch(1);
}

QList<QAction *> VolumesManagerWindow::itemsOf(Contents contents) const
{
    QList<QAction *> items{newVolumeToolbarItem, _spaces[0], addVolumeToolbarItem};
    if (contents == Contents::List)
        items += removeVolumeToolbarItem;
    items += {_spaces[1],           mountVolumeToolbarItem,    unmountVolumeToolbarItem,
              _spaces[2],           changePasswordToolbarItem, clearPasswordToolbarItem,
              _spaces[3],           preferencesToolbarItem,    _spaces[4],
              _flexibleSpace,       showMobileAppsToolbarItem, _spaces[5],
              switchModeToolbarItem};
    return items;
}

// Only a screen narrower than all items has the last ones in the toolbar's own menu.
void VolumesManagerWindow::insertItems(Contents contents)
{
    const QList<QAction *> items = itemsOf(contents);
    toolbar->addActions(items);
    for (QAction *item : items) {
        QWidget *button = toolbar->widgetForAction(item);
        if (!item->text().isEmpty())
            button->setFocusPolicy(Qt::TabFocus);
        else
            button->show(); // an emptied toolbar has hidden its spaces
    }
    toolbar->ensurePolished();
    setMinimumWidth(std::min(toolbar->sizeHint().width(), screen()->availableSize().width()));
}

int VolumesManagerWindow::heightFor(Contents contents) const
{
    int above = toolbar->sizeHint().height();
    if (menuWidget() != nullptr && !menuWidget()->isHidden())
        above += menuWidget()->sizeHint().height();
    if (contents == Contents::List)
        return above + fontMetrics().lineSpacing() * tableLines;
    const int width = std::max(this->width(), minimumWidth());
    return above + folderPanel->heightForWidth(width);
}

void VolumesManagerWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(!shouldClose || shouldClose());
}

void VolumesManagerWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Q_EMIT becameActive();
}

void VolumesManagerWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QWidget *modal = QApplication::activeModalWidget();
    if (modal != nullptr || droppedFolder(*event->mimeData()).isNull())
        return event->ignore();
    event->setDropAction(Qt::LinkAction); // the folder stays where it is
    event->accept();
    setDropFeedback(true);
}

void VolumesManagerWindow::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropFeedback(false);
    event->accept();
}

void VolumesManagerWindow::dropEvent(QDropEvent *event)
{
    setDropFeedback(false);
    const QString folder = droppedFolder(*event->mimeData());
    if (folder.isNull())
        return event->ignore();
    event->setDropAction(Qt::LinkAction);
    event->accept();
    Q_EMIT folderDropped(folder);
}

void VolumesManagerWindow::setDropFeedback(bool isShown)
{
    _dropFrame->setGeometry(centralWidget()->geometry());
    _dropFrame->raise();
    _dropFrame->setVisible(isShown);
}

} // namespace nimbrel
