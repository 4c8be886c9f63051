// An engine with pages that write down what happens to them.
#pragma once

#include "assistant/NibLoading.h"
#include "assistant/SetupAssistantWindow.h"
#include "assistant/TEInstallStepView.h"
#include "assistant/TESetupAssistant.h"
#include "support/FakeAlerts.h"
#include "support/Messages.h"

#include <QPushButton>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace nimbrel::test {

// Has one step, named after the page, and a view of its own where it is told to.
class TestPage : public TEBaseAssistant
{
    Q_OBJECT

public:
    explicit TestPage(QString step, bool hasView = true) : _step(std::move(step))
    {
        if (hasView)
            nibs::add(assistantNib(), [] { return std::make_unique<QWidget>(); });
    }

    [[nodiscard]] QStringList orderedSteps() const override { return {_step}; }
    [[nodiscard]] QString assistantNib() const override
    {
        return QStringLiteral("TestPage ") + _step;
    }
    void start() override
    {
        calls += QStringLiteral("start");
        if (whenStarted)
            whenStarted();
    }
    void restart() override
    {
        calls += QStringLiteral("restart");
        TEBaseAssistant::restart();
    }

    QStringList calls;
    std::function<void()> whenStarted;

private:
    QString _step;
};

class OtherPage final : public TestPage
{
    Q_OBJECT

public:
    using TestPage::TestPage;
};

class EngineTest : public ::testing::Test
{
protected:
    std::shared_ptr<TestPage> add(const QString &step)
    {
        auto page = nimbrel::assistant<TestPage>(step);
        engine->addAssistant(page);
        return page;
    }

    // What the person does once the modal window is on show.
    void whileModal(std::function<void()> act)
    {
        engine->setModal(true);
        QTimer::singleShot(0, engine.get(), std::move(act));
    }

    FakeAlerts alerts;
    std::unique_ptr<TESetupAssistant> engine = TESetupAssistant::initMini();
};

} // namespace nimbrel::test
