#include "app/Util.h"

#include "support/Messages.h"
#include "support/FakeAlerts.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class UtilAlertTest : public testing::Test
{
protected:
    const Alert &shown() const
    {
        EXPECT_EQ(_alerts.shown.size(), 1U);
        return _alerts.shown.front();
    }

    FakeAlerts _alerts;
};

TEST_F(UtilAlertTest, ATextAloneIsTheMessage)
{
    _alerts.answers = {1};
    EXPECT_EQ(Util::showAlert(u"100 %@ <b>"_qs), 1);
    EXPECT_EQ(shown().messageText, u"100 %@ <b>"_qs);
    EXPECT_EQ(shown().informativeText, QString());
    EXPECT_TRUE(shown().buttons.isEmpty());
    EXPECT_FALSE(shown().isCaution);
    EXPECT_EQ(shown().windowTitle, u"Nimbrel"_qs);
    EXPECT_FALSE(shown().showHelp);
}

TEST_F(UtilAlertTest, ATitleIsTheMessageAndTheTextStandsBelow)
{
    _alerts.answers = {1};
    EXPECT_EQ(Util::showAlert(u"text"_qs, u"title"_qs), 1);
    EXPECT_EQ(shown().messageText, u"title"_qs);
    EXPECT_EQ(shown().informativeText, u"text"_qs);
    EXPECT_TRUE(shown().buttons.isEmpty());
}

TEST_F(UtilAlertTest, ButtonsComeInTheirOrder)
{
    EXPECT_EQ(Util::showAlert(u"text"_qs, Util::Buttons{u"Yes"_qs, u"No"_qs}), 0);
    EXPECT_EQ(shown().messageText, u"text"_qs);
    EXPECT_EQ(shown().informativeText, QString());
    EXPECT_EQ(shown().buttons, (QStringList{u"Yes"_qs, u"No"_qs}));
}

TEST_F(UtilAlertTest, ATitleAndButtonsGoTogether)
{
    _alerts.answers = {1};
    EXPECT_EQ(Util::showAlert(u"text"_qs, u"title"_qs, {u"Yes"_qs, u"No"_qs}), 1);
    EXPECT_EQ(shown().messageText, u"title"_qs);
    EXPECT_EQ(shown().informativeText, u"text"_qs);
    EXPECT_EQ(shown().buttons, (QStringList{u"Yes"_qs, u"No"_qs}));
}

TEST_F(UtilAlertTest, AButtonWithoutATitleIsNone)
{
    Util::showAlert(u"text"_qs, u"title"_qs, {u"OK"_qs, {}});
    EXPECT_EQ(shown().buttons, QStringList{u"OK"_qs});
}

TEST_F(UtilAlertTest, ATextUnderATitleIsAFormat)
{
    Util::showAlert(u"100%% of %@, %d and %s"_qs, u"50%%"_qs);
    EXPECT_EQ(shown().informativeText, u"100% of %@, %d and %s"_qs);
    EXPECT_EQ(shown().messageText, u"50%%"_qs);
}

// No application at all: each test has its own process.
TEST(UtilAlertsWithoutADisplayTest, AnAlertGoesToTheSystemLog)
{
    const Messages messages;
    EXPECT_EQ(Util::showAlert(u"below"_qs, u"Title."_qs), 1);
    EXPECT_EQ(messages.texts(), QStringList{u"Title. below"_qs});
}

TEST(UtilAlertsWithoutADisplayTest, NobodyAgrees)
{
    const Messages messages;
    EXPECT_EQ(Util::showAlert(u"Continue?"_qs, Util::Buttons{u"OK"_qs, u"Cancel"_qs}), 0);
    EXPECT_EQ(Util::showAlert(u"Said."_qs, Util::Buttons{u"OK"_qs, {}}), 1);
    EXPECT_EQ(messages.texts(), (QStringList{u"Continue?"_qs, u"Said."_qs}));
}

} // namespace
} // namespace nimbrel::test
