// Plays the person at a modal window.
#pragma once

#include "assistant/TESetupAssistant.h"

#include <QApplication>
#include <QPushButton>
#include <QTimer>

#include <deque>
#include <functional>
#include <utility>

namespace nimbrel::test {

// Each step is taken in the event loop, once a modal window is on show; the next one a turn later.
// Steps that were never reached are in `steps` at the end: check for that.
class Person final
{
public:
    using Step = std::function<void(QWidget &window)>;

    explicit Person(std::deque<Step> what) : steps(std::move(what))
    {
        QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { act(); });
        _timer.start(1);
    }

    std::deque<Step> steps;

private:
    void act()
    {
        QWidget *window = QApplication::activeModalWidget();
        if (window == nullptr || steps.empty())
            return;
        const Step step = std::move(steps.front());
        steps.pop_front();
        step(*window);
    }

    QTimer _timer;
};

// A control by its name; throws where there is none.
template <class Control> Control &control(QWidget &window, const char *name)
{
    auto *found = window.findChild<Control *>(QLatin1String(name));
    if (found == nullptr)
        throw std::runtime_error(std::string("no control ") + name);
    return *found;
}

} // namespace nimbrel::test
