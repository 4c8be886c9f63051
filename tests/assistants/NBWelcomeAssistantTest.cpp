#include "assistants/NBWelcomeAssistant.h"

#include "assistants/AssistantsDesk.h"
#include "assistants/views/WelcomeMatrix.h"
#include "assistants/widgets/PathControl.h"

#include <QFileDialog>
#include <QLabel>
#include <QTest>

#include <filesystem>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const QString noFolder = QStringLiteral("Please choose a valid folder.");
const QString goneFolder = QStringLiteral("The folder you choosed does not exist.");
const QString otherFolder = QStringLiteral(
    "This is not a valid Nimbrel Folder. If the folder is being synchronized right now, please "
    "wait until the whole folder has been synchronized and try again.");

// Stands for the steps of a new folder.
class LastPage final : public TEBaseAssistant
{
public:
    std::int32_t prepareAssistant() override
    {
        _view = std::make_unique<QWidget>();
        return 0;
    }
    QWidget *view() const override { return _view.get(); }

private:
    std::unique_ptr<QWidget> _view;
};

class NBWelcomeAssistantTest : public ::testing::Test
{
protected:
    NBWelcomeAssistantTest()
    {
        desk.makeFolder("Documents");
        use(assistant<NBWelcomeAssistant>([this](QWidget &window, auto handler) {
            pickedOn = &window;
            picked = handler;
        }));
    }

    void use(std::shared_ptr<NBWelcomeAssistant> welcome)
    {
        engine = TESetupAssistant::initMini();
        page = std::move(welcome);
        engine->addAssistant(page);
        engine->addAssistant(assistant<LastPage>());
        engine->setModal(true);
    }
    bool run(std::deque<Person::Step> steps)
    {
        Person person(std::move(steps));
        EXPECT_TRUE(engine->run());
        EXPECT_TRUE(person.steps.empty());
        return engine->finished();
    }
    Person::Step choose(int row)
    {
        return [this, row](QWidget &) { page->controls().welcomeMatrix->selectRow(row); };
    }
    Person::Step show(const QString &path)
    {
        return [this, path](QWidget &) {
            page->controls().pathControl->setURL(path.isNull() ? QUrl()
                                                               : QUrl::fromLocalFile(path));
        };
    }
    // The warning on show; null for none.
    QString warning() const
    {
        const Warning &shown = page->controls().warning;
        EXPECT_EQ(shown.image->isVisible(), shown.text->isVisible());
        return shown.text->isVisible() ? shown.text->text() : QString();
    }
    // All of the second row's but the warning.
    QList<QWidget *> folderControls() const
    {
        const WelcomeAssistantView &controls = page->controls();
        return {controls.pathControl, controls.chooseButton, controls.openVolumeButton};
    }
    QString path() const { return page->controls().pathControl->path(); }

    VolumeDesk desk;
    Watchdog watchdog;
    std::unique_ptr<TESetupAssistant> engine;
    std::shared_ptr<NBWelcomeAssistant> page;
    QWidget *pickedOn = nullptr;
    std::function<void(const QString &)> picked;
};

TEST_F(NBWelcomeAssistantTest, TheWindowOpensAsTheFirstRowLeavesIt)
{
    run({[&](QWidget &window) {
        EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Welcome to Nimbrel")});
        EXPECT_EQ(page->controls().welcomeMatrix->selectedRow(), 0);
        for (const QWidget *control : folderControls())
            EXPECT_FALSE(control->isVisible()) << coreText(control->objectName());
        EXPECT_EQ(warning(), QString());
        EXPECT_EQ(path(), desk.path("Documents"));
        EXPECT_TRUE(page->controls().openVolumeButton->isChecked());
        EXPECT_FALSE(page->controls().warning.image->pixmap(Qt::ReturnByValue).isNull());
        window.close();
    }});
}

TEST_F(NBWelcomeAssistantTest, TheSecondRowShowsItsControlsAndThatDocumentsIsNoSuchFolder)
{
    run({choose(1), [&](QWidget &window) {
             for (const QWidget *control : folderControls())
                 EXPECT_TRUE(control->isVisible()) << coreText(control->objectName());
             EXPECT_EQ(warning(), otherFolder);
             window.close();
         }});
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(NBWelcomeAssistantTest, TheFirstRowChosenAgainHidesEverythingAgain)
{
    run({choose(1), choose(0), [&](QWidget &window) {
             for (const QWidget *control : folderControls())
                 EXPECT_FALSE(control->isVisible()) << coreText(control->objectName());
             EXPECT_EQ(warning(), QString());
             window.close();
         }});
}

TEST_F(NBWelcomeAssistantTest, NothingMovesWhenRowsAreChosen)
{
    const auto places = [&] {
        QList<QRect> result{engine->window()->geometry()};
        for (const QWidget *control : page->view()->findChildren<QWidget *>())
            if (control->isVisible() && !folderControls().contains(control) &&
                control->parentWidget() != page->controls().pathControl)
                result += control->geometry();
        return result;
    };
    QList<QRect> first;
    QList<QRect> second;
    run({[&](QWidget &) { first = places(); }, choose(1),
         [&](QWidget &window) {
             page->controls().warning.setHidden(true);
             second = places();
             window.close();
         }});
    EXPECT_EQ(first, second);
}

TEST_F(NBWelcomeAssistantTest, EachFaultOfAFolderHasItsWarningAndIsSaidOnNext)
{
    desk.makeFolder("Plain", {"Keyfile.txt"});
    const std::vector<std::pair<QString, QString>> faults{
        {QString(), noFolder},
        {desk.path("Gone"), goneFolder},
        {desk.path("Plain/Keyfile.txt"), goneFolder}, // a file
        {desk.path("Plain"), otherFolder}};
    for (const auto &[folder, fault] : faults) {
        use(assistant<NBWelcomeAssistant>());
        desk.alerts.shown.clear();
        EXPECT_FALSE(run({choose(1), show(folder), next, [&](QWidget &window) {
                              EXPECT_EQ(warning(), fault);
                              window.close();
                          }}));
        ASSERT_EQ(desk.alerts.shown.size(), 1U);
        EXPECT_EQ(desk.alerts.shown[0].messageText, fault);
    }
}

TEST_F(NBWelcomeAssistantTest, FolderWithEitherConfigurationEndsTheRunWithTheOtherStepsUnused)
{
    for (const char *name : {".encfs6.xml", "Keyfile.nmx"}) {
        use(assistant<NBWelcomeAssistant>());
        const QString folder = desk.makeFolder(std::string("Holds ") + name, {name});
        EXPECT_TRUE(run({choose(1), show(folder), next}));
        EXPECT_EQ(engine->currentAssistant(), 0);
        EXPECT_TRUE(engine->assistants().isEmpty());
        EXPECT_EQ(path(), folder);
        EXPECT_FALSE(page->wantsNewFolder());
    }
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(NBWelcomeAssistantTest, FolderWhoseConfigurationIsAFolderIsNone)
{
    fs::create_directories(desk.home() + "/Odd/.encfs6.xml");
    EXPECT_FALSE(run({choose(1), show(desk.path("Odd")), next, closeWindow}));
}

TEST_F(NBWelcomeAssistantTest, FolderRemovedInTheMeantimeIsWarnedOfAndSaidOnNext)
{
    const QString folder = desk.makeFolder("Real.nmc", {".encfs6.xml"});
    EXPECT_FALSE(run({choose(1), press("chooseButton"),
                      [&](QWidget &) {
                          picked(folder);
                          EXPECT_EQ(warning(), QString());
                          fs::remove_all(coreText(folder));
                      },
                      next,
                      [&](QWidget &window) {
                          EXPECT_EQ(warning(), goneFolder);
                          window.close();
                      }}));
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.alerts.shown[0].messageText, goneFolder);
}

TEST_F(NBWelcomeAssistantTest, TheFirstRowLeadsToTheNextStep)
{
    EXPECT_FALSE(run({next, [&](QWidget &window) {
                          EXPECT_EQ(engine->currentAssistant(), 1);
                          window.close();
                      }}));
}

TEST_F(NBWelcomeAssistantTest, GoingBackHereResetsThePathToDocumentsAndLeavesTheRow)
{
    run({choose(1), show(desk.path("Elsewhere")), choose(0), next, previous, [&](QWidget &window) {
             EXPECT_EQ(engine->currentAssistant(), 0);
             EXPECT_EQ(path(), desk.path("Documents"));
             EXPECT_EQ(page->controls().welcomeMatrix->selectedRow(), 0);
             window.close();
         }});
}

TEST_F(NBWelcomeAssistantTest, PickedFolderIsShownAndJudgedButNotOpened)
{
    const QString folder = desk.makeFolder("Real.nmc", {".encfs6.xml"});
    EXPECT_FALSE(run({choose(1), press("chooseButton"), [&](QWidget &window) {
                          EXPECT_EQ(pickedOn, &window);
                          EXPECT_EQ(path(), desk.path("Documents")) << "until one is picked";
                          picked(folder);
                          EXPECT_EQ(path(), folder);
                          EXPECT_EQ(warning(), QString());
                          picked(desk.path("Documents"));
                          EXPECT_EQ(warning(), otherFolder);
                          window.close();
                      }}));
}

TEST_F(NBWelcomeAssistantTest, FolderPickedAfterTheEndTouchesNothing)
{
    run({choose(1), press("chooseButton"), closeWindow});
    engine.reset();
    page.reset();
    picked(desk.path("Documents"));
}

TEST_F(NBWelcomeAssistantTest, WithoutAPickerTheDesktopsPanelPicksAFolder)
{
    use(assistant<NBWelcomeAssistant>());
    const QString folder = desk.makeFolder("Documents/Real.nmc", {".encfs6.xml"});
    EXPECT_TRUE(run({choose(1), press("chooseButton"),
                     [&](QWidget &sheet) {
                         auto &panel = dynamic_cast<QFileDialog &>(sheet);
                         EXPECT_EQ(panel.parentWidget(), engine->window());
                         EXPECT_EQ(panel.directory().path(), desk.path("Documents"));
                         control<QLineEdit>(panel, "fileNameEdit").setText(folder);
                         QMetaObject::invokeMethod(&panel, "accept");
                     },
                     next}));
    EXPECT_EQ(path(), folder);
}

TEST_F(NBWelcomeAssistantTest, TheKeyboardAloneIsEnough)
{
    EXPECT_FALSE(run({[&](QWidget &window) {
                          ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
                          ASSERT_NE(window.focusWidget(), nullptr);
                          QTest::keyClick(window.focusWidget(), Qt::Key_Down);
                          EXPECT_EQ(page->controls().welcomeMatrix->selectedRow(), 1);
                          QTest::keyClick(window.focusWidget(), Qt::Key_Up);
                          EXPECT_EQ(page->controls().welcomeMatrix->selectedRow(), 0);
                          QTest::keyClick(window.focusWidget(), Qt::Key_Return);
                          EXPECT_EQ(engine->currentAssistant(), 1);
                      },
                      closeWindow}));
}

} // namespace
} // namespace nimbrel::test
