#include "windows/NBUpdateWindowController.h"

#include "app/Log.h"
#include "assistants/AssistantsDesk.h"
#include "windows/NotesText.h"
#include "windows/views/NotesBrowser.h"
#include "windows/views/UpdateWindow.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QLocale>
#include <QTest>

namespace nimbrel::test {
namespace {

const QUrl page(QStringLiteral("https://example.org/download"));

class NBUpdateWindowTest : public ::testing::Test
{
protected:
    [[nodiscard]] UpdateWindow &window() const { return *controller.window(); }
    [[nodiscard]] QString notes() const { return window().notesView->toPlainText(); }
    void showNotes(const QString &text)
    {
        controller.show({.version = QStringLiteral("1.10"), .notes = text, .page = page});
    }
    void follow(const QString &link) { Q_EMIT window().notesView->anchorClicked(QUrl(link)); }

    RecordedWorkspace workspace;
    NBUpdateWindowController controller{workspace};
};

TEST_F(NBUpdateWindowTest, TheOfferIsShownBesideTheVersionThatRuns)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    controller.show({.version = QStringLiteral("1.10"),
                     .title = QStringLiteral("Nimbrel 1.10 is here"),
                     .notes = QStringLiteral("Quicker."),
                     .page = page,
                     .published = QDateTime({2012, 10, 26}, {12, 0})});
    QLocale::setDefault(before);
    EXPECT_TRUE(window().isVisible());
    EXPECT_FALSE(window().isModal());
    EXPECT_EQ(window().objectName(), QStringLiteral("NBUpdateWindow"));
    EXPECT_EQ(window().titleTextField->text(), QStringLiteral("Nimbrel 1.10 is here"));
    const QString running = Log::versionText().section(u' ', 0, 0);
    EXPECT_EQ(window().versionTextField->text(),
              QStringLiteral("Version 1.10 of Friday, October 26, 2012 can be downloaded. You have "
                             "version %1.")
                  .arg(running));
    EXPECT_EQ(notes(), QStringLiteral("Quicker."));
}

TEST_F(NBUpdateWindowTest, WithoutTitleDateAndNotesTheRestStands)
{
    controller.show({.version = QStringLiteral("1.10"), .page = page});
    EXPECT_EQ(window().titleTextField->text(),
              QStringLiteral("A new version of Nimbrel is available."));
    EXPECT_TRUE(window().versionTextField->text().startsWith(
        QLatin1String("Version 1.10 can be downloaded. You have version ")));
    EXPECT_FALSE(window().notesView->isVisible());
}

TEST_F(NBUpdateWindowTest, TheDefaultButtonOpensThePageAndTheWindowGoes)
{
    showNotes(QStringLiteral("Quicker."));
    EXPECT_TRUE(window().downloadButton->isDefault());
    QTest::keyClick(&window(), Qt::Key_Return);
    EXPECT_EQ(workspace.urls, QList<QUrl>{page});
    EXPECT_FALSE(window().isVisible());
}

TEST_F(NBUpdateWindowTest, LaterAndEscapeOpenNothing)
{
    showNotes({});
    window().laterButton->click();
    EXPECT_FALSE(window().isVisible());
    showNotes({});
    QTest::keyClick(&window(), Qt::Key_Escape);
    EXPECT_FALSE(window().isVisible());
    EXPECT_TRUE(workspace.urls.isEmpty());
}

TEST_F(NBUpdateWindowTest, ALaterOfferTakesThePlaceOfTheOneOnShow)
{
    showNotes(QStringLiteral("One."));
    const UpdateWindow *const first = &window();
    controller.show({.version = QStringLiteral("1.11"), .notes = QStringLiteral("Two.")});
    EXPECT_EQ(&window(), first);
    EXPECT_TRUE(window().versionTextField->text().contains(QLatin1String("1.11")));
    EXPECT_EQ(notes(), QStringLiteral("Two."));
    window().close();
    showNotes(QStringLiteral("Three."));
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(&window(), first);
}

TEST_F(NBUpdateWindowTest, APageThatIsNoWebPageCantBeOpened)
{
    for (const char *address : {"", "file:///etc/passwd", "javascript:alert(1)", "https:", "x"}) {
        controller.show({.version = QStringLiteral("1"), .page = QUrl(QLatin1String(address))});
        EXPECT_FALSE(window().downloadButton->isEnabled()) << address;
    }
}

TEST_F(NBUpdateWindowTest, OnlyLinksToWebPagesAreFollowed)
{
    showNotes(QStringLiteral("<a href=\"http://example.org/a?b&amp;c\">More</a>"));
    EXPECT_TRUE(window().notesView->toHtml().contains(
        QLatin1String("href=\"http://example.org/a?b&amp;c\"")));
    follow(QStringLiteral("http://example.org/"));
    for (const char *address : {"file:///etc/passwd", "smb://x/y", "#top", "ftp://example.org"})
        follow(QLatin1String(address));
    EXPECT_EQ(workspace.urls, QList<QUrl>{QUrl(QStringLiteral("http://example.org/"))});
    EXPECT_TRUE(window().notesView->source().isEmpty()); // it went nowhere itself
}

TEST_F(NBUpdateWindowTest, TheNotesLoadNothing)
{
    showNotes(QStringLiteral("<h2>New</h2>"));
    NotesBrowser &browser = *window().notesView;
    const QUrl picture(
        QStringLiteral("file:" NIMBREL_SOURCE_FOLDER "/resources/icons/NSApplicationIcon.svg"));
    EXPECT_LE(browser.loadResource(QTextDocument::ImageResource, picture).value<QPixmap>().width(),
              1);
    EXPECT_FALSE(browser.loadResource(QTextDocument::StyleSheetResource, picture).isValid());
    EXPECT_FALSE(browser.loadResource(QTextDocument::HtmlResource, picture).isValid());
}

TEST_F(NBUpdateWindowTest, TitleAndVersionAreShortPlainLines)
{
    controller.show({.version = QString(5000, QChar(u'9')),
                     .title = QStringLiteral("<b>A</b>\n\n") + QString(5000, QChar(u'x'))});
    EXPECT_EQ(window().titleTextField->textFormat(), Qt::PlainText);
    EXPECT_TRUE(window().titleTextField->text().startsWith(QLatin1String("<b>A</b> xxx")));
    EXPECT_LE(window().titleTextField->text().size(), 120);
    EXPECT_LE(window().versionTextField->text().size(), 250);
}

TEST_F(NBUpdateWindowTest, PlainNotesStayAsTheyAre)
{
    showNotes(QStringLiteral("1 < 2 & more\nnext"));
    EXPECT_EQ(notes(), QStringLiteral("1 < 2 & more\nnext"));
}

// What would never be laid out, or bring the program down.
TEST_F(NBUpdateWindowTest, NotesAsBadAsCanBeAreShownSoon)
{
    for (const char *tag :
         {"<table><tr><td>", "<TABLE\n border=1><tr><td>", "<img width=9999999 height=9999999>",
          "<div style=\"float:left\">", "<ul><li>", "<x", "<!--", "<<table><tr><td>", "<h1>"}) {
        const QElapsedTimer timer = [] {
            QElapsedTimer started;
            started.start();
            return started;
        }();
        showNotes(QStringLiteral("<p>first</p>") + QLatin1String(tag).toString().repeated(20000));
        QCoreApplication::processEvents();
        static_cast<void>(window().grab());
        EXPECT_TRUE(notes().contains(QLatin1String("first"))) << tag;
        EXPECT_LT(timer.elapsed(), 15000) << tag;
    }
}

TEST(NotesTextTest, PlainFormattingStaysWithoutItsAttributes)
{
    EXPECT_EQ(plainlyFormatted(QStringLiteral("<H2 class=x>New</H2><p style='a'>b<br/>c</p>")),
              QStringLiteral("<h2>New</h2><p>b<br>c</p>"));
    EXPECT_EQ(plainlyFormatted(QStringLiteral("<ul><li>a &amp; b</li></ul>")),
              QStringLiteral("<ul><li>a &amp; b</li></ul>"));
}

TEST(NotesTextTest, WhatLoadsRunsOrPaintsIsGoneWithWhatItHolds)
{
    EXPECT_EQ(
        plainlyFormatted(QStringLiteral("a<script>b</script>c<style>p{}</style >d")).remove(u' '),
        QStringLiteral("acd"));
    EXPECT_EQ(
        plainlyFormatted(QStringLiteral("a<!-- <p> -->b<img src=\"x\"><link href=y>")).remove(u' '),
        QStringLiteral("ab"));
    EXPECT_EQ(plainlyFormatted(QStringLiteral("<html><head><title>t</title></head><body "
                                              "background=x>a</body></html>"))
                  .remove(u' '),
              QStringLiteral("a"));
}

TEST(NotesTextTest, ALinkKeepsAWebAddressAlone)
{
    EXPECT_EQ(plainlyFormatted(QStringLiteral("<a onclick=x href='https://e.org/\"b'>x</a>")),
              QStringLiteral("<a href=\"https://e.org/%22b\">x</a>"));
    EXPECT_EQ(plainlyFormatted(QStringLiteral("<a href=javascript:x>x</a><a name=y>")),
              QStringLiteral("<a>x</a><a>"));
}

TEST(NotesTextTest, AStrayBracketIsText)
{
    EXPECT_EQ(plainlyFormatted(QStringLiteral("1 < 2 < table <")),
              QStringLiteral("1 &lt; 2 &lt; table &lt;"));
}

} // namespace
} // namespace nimbrel::test
