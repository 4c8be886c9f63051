// Simple and advanced mode side by side: what a person meets in each.
#include "assistant/TEInstallStepView.h"
#include "assistants/NBPasswordAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/flows/NewVolume.h"
#include "assistants/widgets/PathControl.h"
#include "windows/ManagerDesk.h"
#include "windows/NBAddVolumesWindowController.h"
#include "windows/views/AddVolumesWindow.h"

#include <functional>

namespace nimbrel::test {
namespace {

const QString secret = QStringLiteral("a new password");

class Modes : public ManagerDesk
{
protected:
    void SetUp() override { desk.desk.makeFolder("Documents"); }

public:
    // Each plays one matter of the table and tells how it went.
    QString volumesServed()
    {
        pretend(QStringLiteral("First"));
        pretend(QStringLiteral("Second"));
        show(isAdvanced);
        select(1);
        manager->showInFinder();
        return workspace().selected.value(0).section(u'/', -1);
    }
    QString table()
    {
        show(isAdvanced);
        return shown(*window().tableScrollView);
    }
    QString pathDisplay()
    {
        show(isAdvanced);
        return shown(*window().customPathControl) + u' ' + shown(*window().showInFinderButton);
    }
    QString removeItem()
    {
        show(isAdvanced);
        return window().toolbar->actions().contains(window().removeVolumeToolbarItem)
                   ? QStringLiteral("present")
                   : QStringLiteral("absent");
    }
    QString addItem()
    {
        show(isAdvanced);
        return window().addVolumeToolbarItem->text();
    }
    QString closing()
    {
        const VolumePtr volume = listed("Safe");
        show(isAdvanced);
        window().close();
        const bool isMounting = volume->isBusy();
        EXPECT_FALSE(window().isVisible());
        EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); }));
        return isMounting ? QStringLiteral("mounts") : QStringLiteral("closes");
    }
    // Whether the step is left without a folder's name.
    QString nextOnTheLocationStep()
    {
        const auto engine = TESetupAssistant::initMini();
        const auto root = assistant<NBRootAssistant>(desk.application);
        engine->addAssistant(root);
        engine->addAssistant(assistant<NBPasswordAssistant>(desk.application));
        EXPECT_TRUE(engine->run());
        engine->nextButton()->click();
        return engine->currAssistant() == root ? QStringLiteral("stays")
                                               : QStringLiteral("goes on");
    }
    QString nextButtonOnThePasswordStep()
    {
        QString title;
        Person person(located(QStringLiteral("New")) + Steps{[&title](QWidget &window) {
                          title = control<QPushButton>(window, "nextButton").text();
                          window.close();
                      }});
        EXPECT_FALSE(askForNewVolume(desk.application));
        return title;
    }
    QString lastStepOfACreation()
    {
        QStringList steps;
        Person person({readsSteps(steps)});
        EXPECT_FALSE(askForNewVolume(desk.application));
        return steps.value(steps.size() - 1);
    }
    QString firstStepOfAnOpening()
    {
        QStringList steps;
        Person person({readsSteps(steps)});
        openFile(makeFolder("Taxes"));
        EXPECT_TRUE(person.steps.empty());
        return steps.join(u'|');
    }
    QString stepsOfAnEditing()
    {
        listed("Safe");
        show(true);
        select(0);
        desk.application.isAdvanced = isAdvanced;
        QStringList steps;
        Person person({readsSteps(steps)});
        manager->editVolume();
        return steps.join(u'|');
    }
    QString labelOfANewFolder()
    {
        Person person(creating(QStringLiteral("Mine")));
        const auto settings = askForNewVolume(desk.application);
        EXPECT_TRUE(person.steps.empty());
        return settings ? settings->label : QString();
    }
    QString creatingASecond()
    {
        pretend(QStringLiteral("First"));
        Person person(creating(QStringLiteral("Mine")) +
                      Steps{check("openVolumeButton", false), next});
        desk.controller().newVolume();
        EXPECT_TRUE(person.steps.empty());
        EXPECT_TRUE(eventLoopUntil([&] { return volumes().last()->isMounted(); }));
        return labelsOf(volumes()).join(u' ');
    }
    QString openingASecond()
    {
        pretend(QStringLiteral("First"));
        Person person((isAdvanced ? Steps{next} : Steps{}) +
                      Steps{type("passphraseTextField", qtText(password)), next});
        openFile(makeFolder("Taxes"));
        EXPECT_TRUE(person.steps.empty());
        EXPECT_TRUE(eventLoopUntil([&] { return volumes().last()->isMounted(); }));
        return labelsOf(volumes()).join(u' ');
    }
    QString openingADuplicateInTheSheet() { return taken(listed("Safe")->path()); }
    QString openingWithoutConfigurationInTheSheet()
    {
        return taken(desk.desk.makeFolder("Plain.nmc"));
    }
    QString openingFromOutsideBesideAMountedOne()
    {
        pretend(QStringLiteral("First"), true);
        answer(1); // No
        Person person(isAdvanced ? Steps{next, previous} : Steps{});
        openFile(makeFolder("Taxes"));
        EXPECT_TRUE(person.steps.empty());
        settle();
        return (alerts().empty() ? QStringLiteral("adds ") : QStringLiteral("asks ")) +
               QString::number(volumes().size());
    }

    bool isAdvanced = false;

private:
    static QString shown(const QWidget &control)
    {
        return control.isVisible() ? QStringLiteral("shown") : QStringLiteral("hidden");
    }
    static Person::Step readsSteps(QStringList &steps)
    {
        return [&steps](QWidget &window) {
            steps = control<TEInstallStepView>(window, "installStepView").steps();
            window.close();
        };
    }
    [[nodiscard]] Steps creating(const QString &label) const
    {
        const Steps options{type("labelTextField", label), next};
        return located(QStringLiteral("New")) + newPassword(secret) +
               (isAdvanced ? options : Steps{});
    }
    QString makeFolder(const std::string &name) { return desk.archived(name, password)->path(); }
    void openFile(const QString &path)
    {
        desk.application.setOpenFile(path);
        manager->addVolume();
    }
    // What the sheet says to a folder that is chosen in a panel.
    QString taken(const QString &path)
    {
        NBAddVolumesWindowController sheet(desk.application, desk.services);
        return sheet.validateURL(QUrl::fromLocalFile(path)) ? QStringLiteral("taken")
                                                            : QStringLiteral("refused");
    }
};

struct Row
{
    const char *name;
    QString (Modes::*play)();
    const char *simple;
    const char *advanced;
};

class TwoModesTest : public Modes, public ::testing::WithParamInterface<std::tuple<Row, bool>>
{
};

TEST_P(TwoModesTest, EachGoesItsOwnWay)
{
    NIMBREL_NEED_MOUNTS();
    const auto &[row, isAdvancedMode] = GetParam();
    isAdvanced = isAdvancedMode;
    desk.application.isAdvanced = isAdvanced;
    EXPECT_EQ((this->*row.play)(), QLatin1String(isAdvanced ? row.advanced : row.simple));
}

constexpr const char *options = "Modify advanced options";

// Whether the welcome shows at a start is the application's to decide, and tested there.
INSTANTIATE_TEST_SUITE_P(
    Table, TwoModesTest,
    ::testing::Combine(
        ::testing::Values(
            Row{"VolumesServed", &Modes::volumesServed, "First.nmc", "Second.nmc"},
            Row{"Table", &Modes::table, "hidden", "shown"},
            Row{"PathDisplayAndButton", &Modes::pathDisplay, "shown shown", "hidden hidden"},
            Row{"ItemRemove", &Modes::removeItem, "absent", "present"},
            Row{"ItemAdd", &Modes::addItem, "Open", "Add"},
            Row{"ClosingTheWindow", &Modes::closing, "mounts", "closes"},
            Row{"NextOnTheLocationStep", &Modes::nextOnTheLocationStep, "stays", "goes on"},
            Row{"NextButtonOnThePasswordStep", &Modes::nextButtonOnThePasswordStep, "Finish",
                "Next"},
            Row{"OptionsOnCreation", &Modes::lastStepOfACreation, "Create a password", options},
            Row{"OptionsOnOpening", &Modes::firstStepOfAnOpening, "Enter Password", options},
            Row{"OptionsOnEditing", &Modes::stepsOfAnEditing, "", options},
            Row{"NewFoldersSettings", &Modes::labelOfANewFolder, "Nimbrel", "Mine"},
            Row{"CreatingWhenAVolumeExists", &Modes::creatingASecond, "Nimbrel", "First Mine"},
            Row{"OpeningWhenAVolumeExists", &Modes::openingASecond, "Nimbrel", "First Taxes"},
            Row{"DuplicateFolder", &Modes::openingADuplicateInTheSheet, "taken", "refused"},
            Row{"ConfigurationFile", &Modes::openingWithoutConfigurationInTheSheet, "refused",
                "taken"},
            Row{"FromOutsideBesideAMountedOne", &Modes::openingFromOutsideBesideAMountedOne,
                "asks 1", "adds 2"}),
        ::testing::Bool()),
    [](const auto &row) {
        return std::string(std::get<0>(row.param).name) +
               (std::get<1>(row.param) ? "Advanced" : "Simple");
    });

} // namespace
} // namespace nimbrel::test
