#include "windows/NBVolumesTableViewController.h"

#include "windows/ManagerDesk.h"
#include "windows/VolumesTableModel.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

namespace nimbrel::test {
namespace {

const QString image = QStringLiteral("image");
const QString textColumn = QStringLiteral("text");

class NBVolumesTableViewControllerTest : public ManagerDesk
{
protected:
    NBVolumesTableViewControllerTest() { show(true); }

    [[nodiscard]] QListView &view() { return *window().tableView; }
    [[nodiscard]] QMenu &menu() { return table().volumeContextulaMenu(); }
    [[nodiscard]] AttributedText text(int row)
    {
        return std::get<AttributedText>(table().objectValueForTableColumn(textColumn, row));
    }
    [[nodiscard]] QString imageAt(int row)
    {
        return std::get<QString>(table().objectValueForTableColumn(image, row));
    }
    // What the text's ranges make of one place; nothing of what no range covers.
    static QTextCharFormat formatAt(const AttributedText &text, qsizetype position)
    {
        QTextCharFormat format;
        for (const auto &range : text.attributes)
            if (position >= range.start && position < range.start + range.length)
                format.merge(range.format);
        return format;
    }
    [[nodiscard]] QPoint middleOf(int row)
    {
        return view().visualRect(view().model()->index(row, 0)).center();
    }
    void rightClick(const QPoint &position)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, position,
                                view().viewport()->mapToGlobal(position));
        QCoreApplication::sendEvent(view().viewport(), &event);
    }
    // The menu's items, "-" for a separator, "(…)" around a disabled one.
    [[nodiscard]] QStringList menuItems()
    {
        QStringList items;
        for (const QAction *item : menu().actions()) {
            const QString shown = item->isEnabled() ? item->text() : u'(' + item->text() + u')';
            items += item->isSeparator() ? QStringLiteral("-") : shown;
        }
        return items;
    }
};

TEST_F(NBVolumesTableViewControllerTest, AnEmptyListShowsNoRowsAndNoMenu)
{
    EXPECT_EQ(table().numberOfRowsInTableView(), 0);
    EXPECT_EQ(view().model()->rowCount(), 0);
    rightClick({20, 20});
    EXPECT_FALSE(table().menuNeedsUpdate());
    EXPECT_FALSE(menu().isVisible());
    EXPECT_EQ(imageAt(0), QString());
    EXPECT_EQ(text(-1).string, QString());
}

TEST_F(NBVolumesTableViewControllerTest, TheImageSaysTheState)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    EXPECT_EQ(imageAt(0), QStringLiteral("volume_unmounted"));
    volume->setIsMounted(true);
    EXPECT_EQ(imageAt(0), QStringLiteral("volume"));
}

TEST_F(NBVolumesTableViewControllerTest, TheTextIsABlankLineTheLabelAndThePath)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    const AttributedText shown = text(0);
    EXPECT_EQ(shown.string, u" \nSafe\n"_qs + volume->path());
    const double size = view().font().pointSizeF();
    EXPECT_LT(formatAt(shown, 0).font().pointSizeF(), size);
    EXPECT_LT(formatAt(shown, 1).font().pointSizeF(), size);
    for (const int place : {2, 5, 6}) // the label and the line's end keep the cell's font
        EXPECT_TRUE(formatAt(shown, place).isEmpty()) << place;
    for (const qsizetype place : {qsizetype(7), shown.string.size() - 1})
        EXPECT_LT(formatAt(shown, place).font().pointSizeF(), size) << place;
}

TEST_F(NBVolumesTableViewControllerTest, AnEmptyLabelStillRendersItsPath)
{
    pretend(QString());
    const AttributedText shown = text(0);
    EXPECT_TRUE(formatAt(shown, 2).isEmpty());
    EXPECT_FALSE(formatAt(shown, 3).isEmpty());
    manager->updateToolbar();
    const QPixmap picture = view().grab();
    EXPECT_FALSE(picture.isNull());
}

TEST_F(NBVolumesTableViewControllerTest, TheSelectedTextIsHighlightedInFullAndTheOthersPathIsDim)
{
    pretend(QStringLiteral("First"));
    pretend(QStringLiteral("Second"));
    manager->updateToolbar();
    select(1);
    const QPalette &palette = view().palette();
    const AttributedText first = text(0);
    EXPECT_EQ(formatAt(first, 2).foreground(), QBrush());
    EXPECT_EQ(formatAt(first, 10).foreground().color(), palette.color(QPalette::PlaceholderText));
    const AttributedText second = text(1);
    for (qsizetype place = 0; place < second.string.size(); ++place)
        ASSERT_EQ(formatAt(second, place).foreground().color(),
                  palette.color(QPalette::HighlightedText));
}

TEST_F(NBVolumesTableViewControllerTest, StateIsSaidInWords)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    manager->updateToolbar();
    const QModelIndex cell = view().model()->index(0, 0);
    EXPECT_EQ(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Safe, not mounted"));
    volume->setIsMounted(true);
    EXPECT_EQ(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Safe, mounted"));
    EXPECT_EQ(cell.data(Qt::ToolTipRole).toString(), volume->path() + u" (mounted)"_qs);
}

TEST_F(NBVolumesTableViewControllerTest, ARowWhoseVolumeHasLeftTheListShowsNothing)
{
    pretend(QStringLiteral("Safe"));
    manager->updateToolbar();
    select(0);
    volumes().clear();
    EXPECT_EQ(view().model()->index(0, 0).data(), QVariant());
    EXPECT_EQ(table().selectedRow(), -1);
    EXPECT_FALSE(view().grab().isNull());
}

struct MenuCase
{
    bool isMounted;
    bool storesPassphrase;
    const char *first;
    bool isClearEnabled;
};

class MenuTest : public NBVolumesTableViewControllerTest,
                 public ::testing::WithParamInterface<MenuCase>
{
};

TEST_P(MenuTest, FitsTheClickedVolume)
{
    const MenuCase &wanted = GetParam();
    pretend(QStringLiteral("Selected"), !wanted.isMounted, true);
    pretend(QStringLiteral("Clicked"), wanted.isMounted, wanted.storesPassphrase);
    manager->updateToolbar();
    select(0);
    rightClick(middleOf(1));
    EXPECT_TRUE(menu().isVisible());
    EXPECT_EQ(table().clickedRow(), 1);
    const auto enabledIf = [](bool isEnabled, const QString &title) {
        return isEnabled ? title : u'(' + title + u')';
    };
    const QString line = QStringLiteral("-");
    EXPECT_EQ(menuItems(),
              (QStringList{QLatin1String(wanted.first),
                           enabledIf(wanted.isMounted, QStringLiteral("Unmount")), line,
                           enabledIf(wanted.isMounted, QStringLiteral("Change Password…")),
                           enabledIf(wanted.isClearEnabled, QStringLiteral("Clear Password")), line,
                           QStringLiteral("Edit…"), QStringLiteral("Show in File Manager")}));
    menu().close();
}

INSTANTIATE_TEST_SUITE_P(States, MenuTest,
                         ::testing::Values(MenuCase{false, false, "Mount", false},
                                           MenuCase{false, true, "Mount", false},
                                           MenuCase{true, false, "Open", false},
                                           MenuCase{true, true, "Open", true}));

TEST_F(NBVolumesTableViewControllerTest, ARightClickOutsideTheRowsShowsNoMenu)
{
    pretend(QStringLiteral("Safe"));
    manager->updateToolbar();
    rightClick(view().viewport()->rect().bottomLeft() - QPoint(-5, 5));
    EXPECT_EQ(table().clickedRow(), -1);
    EXPECT_FALSE(menu().isVisible());
}

TEST_F(NBVolumesTableViewControllerTest, TheMenuActsOnTheClickedRowAndTheToolbarOnTheSelection)
{
    pretend(QStringLiteral("Selected"));
    const VolumePtr clicked = pretend(QStringLiteral("Clicked"), true);
    manager->updateToolbar();
    select(0);
    rightClick(middleOf(1));
    EXPECT_TRUE(isEnabled("mount")) << "the toolbar follows the selection";
    menu().actions().first()->trigger(); // Open
    EXPECT_EQ(workspace().opened, QStringList{clicked->mountPoint()});
    menu().actions().last()->trigger();
    EXPECT_EQ(workspace().selected, QStringList{clicked->path()});
    menu().close();
}

TEST_F(NBVolumesTableViewControllerTest, TheMenuNeverActsOnAnotherVolumeThanTheClickedOne)
{
    pretend(QStringLiteral("Clicked"), true);
    pretend(QStringLiteral("Next"), true);
    manager->updateToolbar();
    rightClick(middleOf(0));
    volumes().removeFirst(); // while the menu is open
    menu().actions().first()->trigger();
    menu().actions().last()->trigger();
    EXPECT_TRUE(workspace().opened.isEmpty() && workspace().selected.isEmpty());
    menu().close();
}

TEST_F(NBVolumesTableViewControllerTest, MenuKeysAskForTheCurrentRow)
{
    pretend(QStringLiteral("First"));
    pretend(QStringLiteral("Second"), true);
    manager->updateToolbar();
    QTest::keyClick(&view(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_FALSE(menu().isVisible()) << "no row is the current one";
    select(1);
    QTest::keyClick(&view(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(menu().isVisible());
    EXPECT_EQ(menuItems().first(), QStringLiteral("Open"));
    menu().close();
    select(0);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {2, 2}, view().mapToGlobal(QPoint(2, 2)));
    QCoreApplication::sendEvent(&view(), &event);
    EXPECT_TRUE(menu().isVisible());
    EXPECT_EQ(menuItems().first(), QStringLiteral("Mount"));
    menu().close();
}

TEST_F(NBVolumesTableViewControllerTest, ADoubleClickAndEnterOpenTheRow)
{
    const VolumePtr volume = pretend(QStringLiteral("Safe"), true);
    manager->updateToolbar();
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {},
                       view().viewport()->rect().bottomLeft() - QPoint(-5, 5));
    EXPECT_EQ(workspace().opened, QStringList()) << "empty space";
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, middleOf(0));
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, middleOf(0));
    EXPECT_EQ(workspace().opened, QStringList{volume->mountPoint()});
    QTest::keyClick(&view(), Qt::Key_Return);
    QTest::keyClick(&view(), Qt::Key_Enter);
    EXPECT_EQ(workspace().opened.size(), 3);
}

class MountingTableTest : public MountingManagerDesk
{
};

TEST_F(MountingTableTest, ADoubleClickMountsAnUnmountedVolumeAndOpensItThen)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    const QListView &view = *window().tableView;
    const QPoint middle = view.visualRect(view.model()->index(0, 0)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, middle);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, middle);
    EXPECT_TRUE(eventLoopUntil([&] { return !workspace().opened.isEmpty(); }));
    EXPECT_TRUE(volume->isMounted());
    EXPECT_EQ(workspace().opened, QStringList{volume->mountPoint()});
    EXPECT_TRUE(isEnabled("unmount"));
}

} // namespace
} // namespace nimbrel::test
