// Answers alerts in a person's place.
#pragma once

#include "app/AlertPresenter.h"
#include "app/Util.h"

#include <deque>
#include <functional>
#include <vector>

namespace nimbrel::test {

// Takes every alert while it lives; the last one made has them.
class FakeAlerts final : public AlertPresenter
{
public:
    FakeAlerts() { Util::setAlertPresenter(this); }
    ~FakeAlerts() override { Util::setAlertPresenter(nullptr); }

    int runModal(const Alert &alert) override
    {
        shown.push_back(alert);
        if (whileShown)
            whileShown(alert);
        if (answers.empty())
            return 0;
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::vector<Alert> shown;                       // in their order
    std::deque<int> answers;                        // for the next ones; then 0
    std::function<void(const Alert &)> whileShown;  // what happens meanwhile
};

} // namespace nimbrel::test
