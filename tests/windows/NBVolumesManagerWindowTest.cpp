// What the manager window shows, and which of its items can be used.
#include "assistants/widgets/PathControl.h"
#include "windows/ManagerDesk.h"

#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QTest>

namespace nimbrel::test {
namespace {

class NBVolumesManagerWindowTest : public ManagerDesk
{
protected:
    // The toolbar's items in their order.
    [[nodiscard]] QString items()
    {
        QStringList names;
        for (const QAction *item : window().toolbar->actions())
            names += item->objectName();
        return names.join(u' ');
    }
    [[nodiscard]] QString label(const char *identifier)
    {
        return control<QAction>(window(), identifier).text();
    }
};

using Items = QStringList;
const QString always = QStringLiteral("new add preferences mobile mode");

Items sorted(QStringList items)
{
    items.sort();
    return items;
}

Items alwaysAnd(const QString &more = {})
{
    return sorted((always + u' ' + more).split(u' ', Qt::SkipEmptyParts));
}

TEST_F(NBVolumesManagerWindowTest, TheWindowIsMadeAtItsFirstShowing)
{
    EXPECT_EQ(manager->window(), nullptr);
    EXPECT_TRUE(manager->toolbarFirstInit());
    EXPECT_TRUE(manager->toolbarIsAdvancedMode());
    show(false);
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Nimbrel"));
    EXPECT_EQ(window().objectName(), QStringLiteral("NBVolumesManagerWindow"));
    EXPECT_FALSE(manager->toolbarFirstInit());
    EXPECT_FALSE(manager->toolbarIsAdvancedMode());
}

TEST_F(NBVolumesManagerWindowTest, TheItemsStandInTheModesOrder)
{
    show(true);
    EXPECT_EQ(items(),
              QStringLiteral("new space add remove space mount unmount space change clear space "
                             "preferences space flexibleSpace mobile space mode"));
    EXPECT_EQ(label("add"), QStringLiteral("Add"));
    EXPECT_EQ(label("mode"), QStringLiteral("Simple"));
    desk.application.isAdvanced = false;
    manager->updateToolbar();
    EXPECT_EQ(items(), QStringLiteral("new space add space mount unmount space change clear space "
                                      "preferences space flexibleSpace mobile space mode"));
    EXPECT_EQ(label("add"), QStringLiteral("Open"));
    EXPECT_EQ(label("mode"), QStringLiteral("Advanced"));
    desk.application.isAdvanced = true;
    manager->updateToolbar();
    EXPECT_TRUE(items().contains(QStringLiteral("remove")));
}

TEST_F(NBVolumesManagerWindowTest, EveryItemHasItsPictureAndIsReachableByKey)
{
    show(true);
    for (QAction *item : window().toolbar->actions()) {
        if (item->text().isEmpty())
            continue;
        EXPECT_FALSE(item->icon().isNull()) << coreText(item->objectName());
        EXPECT_FALSE(item->toolTip().isEmpty());
        EXPECT_EQ(window().toolbar->widgetForAction(item)->focusPolicy(), Qt::TabFocus);
    }
}

TEST_F(NBVolumesManagerWindowTest, AllItemsHaveRoomInTheNarrowestWindow)
{
    for (const bool isAdvanced : {false, true}) {
        show(isAdvanced);
        const QWidget *screenWide =
            window().screen()->availableSize().width() >= window().toolbar->sizeHint().width()
                ? window().toolbar
                : nullptr;
        if (screenWide == nullptr)
            continue; // the toolbar's own menu has the rest
        EXPECT_GE(window().minimumWidth(), window().toolbar->sizeHint().width());
    }
}

TEST_F(NBVolumesManagerWindowTest, SimpleModeShowsOneFolderAndAdvancedModeTheTable)
{
    pretend(QStringLiteral("Safe"));
    show(false);
    EXPECT_FALSE(window().tableScrollView->isVisible());
    EXPECT_TRUE(window().customPathControl->isVisible());
    EXPECT_TRUE(window().showInFinderButton->isVisible());
    EXPECT_EQ(window().customPathControl->path(), path(QStringLiteral("Safe.nmc")));
    const int simple = window().height();
    desk.application.isAdvanced = true;
    manager->updateToolbar();
    EXPECT_TRUE(window().tableScrollView->isVisible());
    EXPECT_FALSE(window().customPathControl->isVisible());
    EXPECT_FALSE(window().showInFinderButton->isVisible());
    EXPECT_LT(simple, window().height());
    desk.application.isAdvanced = false;
    manager->updateToolbar();
    EXPECT_EQ(window().height(), simple);
}

TEST_F(NBVolumesManagerWindowTest, AnUpdateInTheSameModeLeavesToolbarAndHeightAlone)
{
    for (const bool isAdvanced : {false, true}) {
        show(isAdvanced);
        manager->updateToolbar();
        window().resize(window().width() + 7, window().height() + 61);
        const QSize size = window().size();
        const QList<QAction *> before = window().toolbar->actions();
        manager->updateToolbar();
        EXPECT_EQ(window().size(), size);
        EXPECT_EQ(window().toolbar->actions(), before);
    }
}

TEST_F(NBVolumesManagerWindowTest, InSimpleModeWithoutAVolumeNothingCanBeDoneWithOne)
{
    show(false);
    EXPECT_EQ(sorted(enabledItems()), alwaysAnd());
    EXPECT_EQ(window().customPathControl->URL(), QUrl::fromLocalFile(QString()));
    EXPECT_FALSE(window().showInFinderButton->isEnabled());
}

TEST_F(NBVolumesManagerWindowTest, InAdvancedModeWithoutASelectionNothingCanBeDoneWithAVolume)
{
    pretend(QStringLiteral("Safe"));
    pretend(QStringLiteral("Open"), true, true);
    show(true);
    EXPECT_EQ(sorted(enabledItems()), alwaysAnd());
}

struct EnablingCase
{
    bool isMounted;
    bool storesPassphrase;
    const char *items;
};

class EnablingTest : public NBVolumesManagerWindowTest,
                     public ::testing::WithParamInterface<EnablingCase>
{
};

TEST_P(EnablingTest, FollowsFromTheOneVolumeInSimpleMode)
{
    pretend(QStringLiteral("Safe"), GetParam().isMounted, GetParam().storesPassphrase);
    pretend(QStringLiteral("Other"), !GetParam().isMounted, true);
    show(false);
    EXPECT_EQ(sorted(enabledItems()), alwaysAnd(QLatin1String(GetParam().items)));
}

TEST_P(EnablingTest, FollowsFromTheSelectedVolumeInAdvancedMode)
{
    pretend(QStringLiteral("Other"), !GetParam().isMounted, true);
    pretend(QStringLiteral("Safe"), GetParam().isMounted, GetParam().storesPassphrase);
    show(true);
    select(1); // a change of selection alone decides anew
    EXPECT_EQ(sorted(enabledItems()), alwaysAnd(u"remove "_qs + QLatin1String(GetParam().items)));
}

INSTANTIATE_TEST_SUITE_P(States, EnablingTest,
                         ::testing::Values(EnablingCase{false, false, "mount"},
                                           EnablingCase{false, true, "mount"},
                                           EnablingCase{true, false, "unmount change"},
                                           EnablingCase{true, true, "unmount change clear"}));

TEST_F(NBVolumesManagerWindowTest, BecomingActiveDecidesAnew)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    show(false);
    volume->setIsMounted(true);
    Q_EMIT window().becameActive();
    EXPECT_TRUE(isEnabled("unmount"));
}

TEST_F(NBVolumesManagerWindowTest, TheStateIsSaidInWords)
{
    show(false);
    const QLabel &state = *window().stateTextField;
    EXPECT_EQ(state.text(),
              QStringLiteral("Create a new encrypted folder, or open one that exists."));
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    manager->updateToolbar();
    EXPECT_EQ(state.text(), QStringLiteral("The folder is not mounted."));
    volume->setIsMounted(true);
    manager->updateToolbar();
    EXPECT_EQ(state.text(), QStringLiteral("The folder is mounted."));
}

TEST_F(NBVolumesManagerWindowTest, ANotificationUpdatesInAMomentAndItemsAtOnce)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    show(false);
    const VolumePtr other = pretend(QStringLiteral("Other"));
    volumes().removeFirst();
    other->setIsMounted(true);
    Q_EMIT desk.controller().NBVolumesControllerDidMountVolumeNotification(*other);
    EXPECT_TRUE(isEnabled("unmount"));
    EXPECT_EQ(window().customPathControl->path(), volume->path());
    QCoreApplication::processEvents();
    EXPECT_EQ(window().customPathControl->path(), other->path());
}

TEST_F(NBVolumesManagerWindowTest, AfterTheFirstCloseOnlyTheItemsFollowNotifications)
{
    pretend(QStringLiteral("First"));
    show(true);
    ASSERT_TRUE(window().close());
    EXPECT_FALSE(window().isVisible());
    show(true);
    select(0);
    const VolumePtr added = pretend(QStringLiteral("Added"), true);
    volumes().first()->setIsMounted(true);
    Q_EMIT desk.controller().NBVolumesControllerDidMountVolumeNotification(*volumes().first());
    QCoreApplication::processEvents();
    EXPECT_EQ(window().tableView->model()->rowCount(), 1) << "observing ended with the close";
    EXPECT_TRUE(isEnabled("unmount"));
    manager->showWindow();
    EXPECT_EQ(window().tableView->model()->rowCount(), 2);
}

TEST_F(NBVolumesManagerWindowTest, TheSelectionStaysWithItsVolume)
{
    pretend(QStringLiteral("First"));
    pretend(QStringLiteral("Second"));
    show(true);
    select(1);
    volumes().move(1, 0);
    EXPECT_EQ(table().selectedRow(), 0);
    manager->updateToolbar();
    EXPECT_EQ(table().selectedRow(), 0);
    EXPECT_EQ(window().tableView->currentIndex().row(), 0);
    volumes().removeFirst();
    EXPECT_EQ(table().selectedRow(), -1);
    manager->updateToolbar();
    EXPECT_EQ(table().selectedRow(), -1);
    EXPECT_FALSE(isEnabled("remove"));
}

// What is dragged over the window.
class DropTest : public NBVolumesManagerWindowTest
{
protected:
    // Whether the window would take it.
    bool drop(const QList<QUrl> &urls)
    {
        QMimeData data;
        data.setUrls(urls);
        const QPoint place(20, window().height() - 20);
        QDragEnterEvent enter(place, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &enter);
        isFramed = control<QWidget>(window(), "dropFrame").isVisible();
        if (!enter.isAccepted())
            return false;
        QDropEvent dropped(place, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &dropped);
        return true;
    }

    bool isFramed = false;
};

TEST_F(DropTest, AFolderIsHandedToTheApplicationAfterTheDrop)
{
    show(true);
    const QString folder = desk.desk.makeFolder("Safe.nmc");
    EXPECT_TRUE(drop({QUrl::fromLocalFile(folder + u'/')}));
    EXPECT_TRUE(isFramed);
    EXPECT_FALSE(control<QWidget>(window(), "dropFrame").isVisible());
    EXPECT_EQ(desk.application.handedOver, QStringList()) << "not while somebody drags";
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.application.handedOver, QStringList{folder});
}

TEST_F(DropTest, AnythingElseIsRefused)
{
    show(false);
    const QUrl one = QUrl::fromLocalFile(desk.desk.makeFolder("One", {"file.txt"}));
    const QUrl file = QUrl::fromLocalFile(desk.path("One/file.txt"));
    const QUrl nowhere = QUrl::fromLocalFile(desk.path("Nowhere"));
    for (const QList<QUrl> &urls : {QList<QUrl>{},
                                    {one, one},
                                    {file},
                                    {nowhere},
                                    {QUrl(QStringLiteral("smb://host/folder"))}}) {
        EXPECT_FALSE(drop(urls));
        EXPECT_FALSE(isFramed);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.application.handedOver, QStringList());
}

TEST_F(NBVolumesManagerWindowTest, ShowInFinderSelectsTheFolderWithinItsParent)
{
    pretend(QStringLiteral("First"));
    pretend(QStringLiteral("Second"));
    show(false);
    window().showInFinderButton->click();
    EXPECT_EQ(workspace().selected, QStringList{path(QStringLiteral("First.nmc"))});
    EXPECT_EQ(workspace().roots, QStringList{QString::fromStdString(desk.desk.home())});
    desk.application.isAdvanced = true;
    manager->updateToolbar();
    manager->showInFinder();
    EXPECT_EQ(workspace().selected.size(), 1) << "nothing is selected";
    select(1);
    manager->showInFinder();
    EXPECT_EQ(workspace().selected.last(), path(QStringLiteral("Second.nmc")));
    volumes().last()->setPath(QString());
    manager->showInFinder();
    EXPECT_EQ(workspace().selected.size(), 2);
}

TEST_F(NBVolumesManagerWindowTest, OpenVolumeOpensTheMountPointOfTheRowInBothModes)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    show(true);
    manager->openVolume();
    EXPECT_EQ(workspace().opened, QStringList());
    select(0);
    manager->openVolume();
    EXPECT_EQ(workspace().opened, QStringList{volume->mountPoint()}) << "mounted or not";
    desk.application.isAdvanced = false;
    manager->openVolume();
    EXPECT_EQ(workspace().opened.size(), 2);
}

TEST_F(NBVolumesManagerWindowTest, OpenClickOpensAMountedVolumeOnly)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    manager->openClick(volume);
    EXPECT_EQ(workspace().opened, QStringList());
    volume->setIsMounted(true);
    manager->openClick(volume);
    EXPECT_EQ(workspace().opened, QStringList{volume->mountPoint()});
}

TEST_F(NBVolumesManagerWindowTest, ActionsWithoutATargetEndSilently)
{
    pretend(QStringLiteral("Safe"), true, true);
    show(true);
    for (const Sender sender : {Sender::Other, Sender::MenuItem}) {
        manager->mountVolume(sender);
        manager->unmountVolume(sender);
        manager->openVolume(sender);
        manager->editVolume(sender);
        manager->changePassphrase(sender);
        manager->clearPassphrase(sender);
        manager->showInFinder(sender);
    }
    manager->removeVolume();
    volumes().clear();
    desk.application.isAdvanced = false;
    manager->mountVolume();
    manager->unmountVolume();
    manager->changePassphrase();
    manager->clearPassphrase();
    manager->showInFinder();
    EXPECT_EQ(desk.alertTexts(), QStringList());
    EXPECT_TRUE(workspace().opened.isEmpty() && workspace().selected.isEmpty());
}

TEST_F(NBVolumesManagerWindowTest, ClearingAPasswordAsksFirstWithYesAsTheDefault)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"), true, true);
    show(false);
    answer(0);
    manager->clearPassphrase();
    EXPECT_EQ(told(), (QStringList{QStringLiteral("Are you sure that you want to clear the "
                                                  "password currently stored on this computer?"),
                                   QStringLiteral("You will have to re-enter it the next time you "
                                                  "want to open this encrypted folder."),
                                   QStringLiteral("Yes"), QStringLiteral("No")}));
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_TRUE(storedArchive().isEmpty());
    answer(1);
    manager->clearPassphrase();
    EXPECT_EQ(desk.alertTexts().last(),
              QStringLiteral("The stored password was successfully cleared."));
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Safe")});
    EXPECT_FALSE(isEnabled("clear"));
}

TEST_F(NBVolumesManagerWindowTest, KeysDoWhatADesktopsUserExpects)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    pretend(QStringLiteral("Other"));
    show(true);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    window().tableView->setFocus();
    select(0);
    Person person({closeWindow});
    QTest::keyClick(window().tableView, Qt::Key_F2); // the options
    EXPECT_TRUE(person.steps.empty());
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    QTest::keyClick(window().tableView, Qt::Key_Delete);
    EXPECT_EQ(labelsOf(volumes()), QStringList{QStringLiteral("Other")});
    QTest::keyClick(&window(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window().isVisible());
}

TEST_F(NBVolumesManagerWindowTest, TheSheetOfTheWindowIsClosedByItsEnd)
{
    show(true);
    QWidget sheet;
    sheet.show();
    manager->didEndSheet(sheet);
    EXPECT_FALSE(sheet.isVisible());
}

TEST_F(NBVolumesManagerWindowTest, WithoutAWindowTheActionsThatNeedOneDoNothing)
{
    NBVolumesManagerWindowController windowless(services,
                                                NBVolumesManagerWindowController::Window::None);
    windowless.showWindow();
    windowless.updateToolbar();
    windowless.addVolume();
    windowless.removeVolume();
    windowless.editVolume();
    windowless.showPreferences();
    EXPECT_EQ(windowless.window(), nullptr);
    EXPECT_TRUE(windowless.toolbarFirstInit());
}

} // namespace
} // namespace nimbrel::test
