#include "assistants/widgets/Panels.h"

#include "assistants/AssistantFixture.h"
#include "platform/SystemFacts.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class PanelsTest : public ::testing::Test
{
protected:
    PanelsTest() { window.show(); }

    [[nodiscard]] QString path(const std::string &name) const { return qtText(folder / name); }
    panels::Handler take()
    {
        return [this](const QUrl &url) { urls.push_back(url); };
    }

    TempFolder folder;
    QWidget window;
    QList<QUrl> urls; // given, in their order
};

TEST_F(PanelsTest, APanelIsASheetAndDoesNotBlock)
{
    panels::beginSheet(window, panels::OpenPanel{.title = QStringLiteral("Open it")}, take());
    const QFileDialog &sheet = sheetOf(window);
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet.windowTitle(), QStringLiteral("Open it"));
    EXPECT_EQ(sheet.supportedSchemes(), QStringList{QStringLiteral("file")});
    EXPECT_TRUE(urls.isEmpty());
}

TEST_F(PanelsTest, AFileIsGivenOnce)
{
    writeFile(folder / "file", "");
    panels::beginSheet(window, panels::OpenPanel{}, take());
    choose(sheetOf(window), path("file"));
    EXPECT_EQ(urls, QList<QUrl>{QUrl::fromLocalFile(path("file"))});
    EXPECT_FALSE(hasSheet(window));
}

TEST_F(PanelsTest, ACancelGivesNothing)
{
    panels::beginSheet(window, panels::SavePanel{}, take());
    cancel(sheetOf(window));
    EXPECT_TRUE(urls.isEmpty());
}

TEST_F(PanelsTest, APanelEndsWithItselfAndWithItsWindow)
{
    panels::beginSheet(window, panels::SavePanel{}, take());
    const QPointer<QFileDialog> cancelled = &sheetOf(window);
    cancel(*cancelled);
    EXPECT_TRUE(eventLoopUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return cancelled.isNull();
    }));
    auto owner = std::make_unique<QWidget>();
    owner->show();
    panels::beginSheet(*owner, panels::SavePanel{}, take());
    owner.reset();
    EXPECT_TRUE(urls.isEmpty());
}

TEST_F(PanelsTest, TheFirstTypeIsAddedToANameWithoutOne)
{
    const panels::SavePanel panel{.allowedFileTypes = {QStringLiteral("xml")}};
    panels::beginSheet(window, panel, take());
    choose(sheetOf(window), path("plain"));
    panels::beginSheet(window, panel, take());
    choose(sheetOf(window), path("with.txt"));
    EXPECT_EQ(urls, (QList<QUrl>{QUrl::fromLocalFile(path("plain.xml")),
                                 QUrl::fromLocalFile(path("with.txt"))}));
}

TEST_F(PanelsTest, OtherTypesAreOfferedWhereTheyAreAllowed)
{
    panels::beginSheet(window,
                       panels::SavePanel{.allowedFileTypes = {QStringLiteral("xml")},
                                         .allowsOtherFileTypes = false},
                       take());
    EXPECT_EQ(sheetOf(window).nameFilters(), QStringList{QStringLiteral("XML files (*.xml)")});
    cancel(sheetOf(window));
    panels::beginSheet(window, panels::SavePanel{.allowedFileTypes = {QStringLiteral("xml")}},
                       take());
    EXPECT_EQ(sheetOf(window).nameFilters().last(), QStringLiteral("All files (*)"));
}

TEST_F(PanelsTest, AFileIsReplacedOnlyAfterAQuestion)
{
    writeFile(folder / "file", "");
    panels::beginSheet(window, panels::SavePanel{}, take());
    EXPECT_EQ(choose(sheetOf(window), path("new")), 0);
    panels::beginSheet(window, panels::SavePanel{}, take());
    EXPECT_EQ(choose(sheetOf(window), path("file")), 1);
    EXPECT_EQ(urls.size(), 2);
}

TEST_F(PanelsTest, ThePanelBeginsWhereAndWithWhatItIsTold)
{
    panels::beginSheet(window,
                       panels::SavePanel{.nameFieldValue = QStringLiteral("mine.xml"),
                                         .directory = QUrl::fromLocalFile(path(""))},
                       take());
    const QFileDialog &sheet = sheetOf(window);
    EXPECT_EQ(sheet.selectedUrls(), QList<QUrl>{QUrl::fromLocalFile(path("mine.xml"))});
}

TEST_F(PanelsTest, ThePanelBeginsInTheHomeFolderOtherwise)
{
    panels::beginSheet(window, panels::SavePanel{}, take());
    EXPECT_EQ(sheetOf(window).directory().absolutePath(), systemFacts::homeFolder());
}

TEST_F(PanelsTest, TheFileThatTheQuestionWasAboutIsGiven)
{
    writeFile(folder / "suggested.xml", ""); // selected in the panel's list
    writeFile(folder / "typed.xml", "");
    panels::beginSheet(window,
                       panels::SavePanel{.nameFieldValue = QStringLiteral("suggested.xml"),
                                         .directory = QUrl::fromLocalFile(path(""))},
                       take());
    EXPECT_EQ(choose(sheetOf(window), path("typed.xml")), 1);
    EXPECT_EQ(urls, QList<QUrl>{QUrl::fromLocalFile(path("typed.xml"))});
}

TEST_F(PanelsTest, AFolderIsGivenWhereFoldersAreWanted)
{
    panels::beginSheet(
        window, panels::OpenPanel{.canChooseDirectories = true, .canCreateDirectories = true},
        take());
    choose(sheetOf(window), qtText(folder.makeFolder("inner")));
    EXPECT_EQ(urls, QList<QUrl>{QUrl::fromLocalFile(path("inner"))});
}

TEST_F(PanelsTest, ACancelIsToldToWhoWantsToHearOfIt)
{
    int cancels = 0;
    panels::beginSheet(window, panels::OpenPanel{.canChooseDirectories = true}, take(),
                       [&] { ++cancels; });
    cancel(sheetOf(window));
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(urls.isEmpty());
}

TEST_F(PanelsTest, TheHandlerIsCalledWhenThePanelHasGone)
{
    int cancels = 0;
    bool isOnShow = true;
    panels::beginSheet(
        window, panels::OpenPanel{.canChooseDirectories = true},
        [&](const QUrl &) { isOnShow = hasSheet(window); }, [&] { ++cancels; });
    choose(sheetOf(window), qtText(folder.makeFolder("inner")));
    EXPECT_FALSE(isOnShow);
    EXPECT_EQ(cancels, 0);
}

TEST_F(PanelsTest, ARefusedChoiceLeavesThePanelThereUntilOneWillDo)
{
    int cancels = 0;
    QList<QUrl> asked;
    for (const char *name : {"bad", "good"})
        std::filesystem::create_directory(folder / name);
    const auto begin = [&] {
        panels::beginSheet(window,
                           panels::OpenPanel{.title = QStringLiteral("Take it"),
                                             .canChooseDirectories = true,
                                             .validateURL =
                                                 [&](const QUrl &url) {
                                                     asked.push_back(url);
                                                     return url ==
                                                            QUrl::fromLocalFile(path("good"));
                                                 }},
                           take(), [&] { ++cancels; });
    };
    begin();
    choose(sheetOf(window), path("bad"));
    EXPECT_EQ(sheetOf(window).windowTitle(), QStringLiteral("Take it"));
    EXPECT_EQ(sheetOf(window).directory().absolutePath(), path("").chopped(1));
    EXPECT_TRUE(urls.isEmpty());
    choose(sheetOf(window), path("good"));
    EXPECT_EQ(urls, QList<QUrl>{QUrl::fromLocalFile(path("good"))});
    EXPECT_EQ(asked.size(), 2);
    EXPECT_FALSE(hasSheet(window));
    begin();
    choose(sheetOf(window), path("bad"));
    cancel(sheetOf(window));
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(urls.size(), 1);
}

} // namespace
} // namespace nimbrel::test
