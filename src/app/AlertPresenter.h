#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace nimbrel {

struct Alert
{
    QString messageText = {};     // the headline
    QString informativeText = {}; // below it
    QStringList buttons = {};     // the default button first; none: the platform's default alone
    // What Escape, closing and the program's end mean: the other button, as a rule; the default one
    // where that is the one which changes nothing.
    bool isDefaultHarmless = false;
    bool isCaution = false; // a warning sign in place of the information sign
    QString windowTitle = QStringLiteral("Nimbrel");
    std::function<void()> showHelp = {}; // when given, there is a help button; the alert stays

    // In a person's absence: nobody may agree in their place.
    [[nodiscard]] int answerOfNobody() const
    {
        return buttons.size() > 1 && !isDefaultHarmless ? 0 : 1;
    }
};

// Shows an alert and waits for the answer. Tests answer in a person's place.
class AlertPresenter
{
public:
    AlertPresenter() = default;
    virtual ~AlertPresenter() = default;
    AlertPresenter(const AlertPresenter &) = delete;
    AlertPresenter &operator=(const AlertPresenter &) = delete;

    // 1 for the default button, 0 for the other; closed in another way, the alert says which one
    // that means.
    [[nodiscard]] virtual int runModal(const Alert &alert) = 0;
};

} // namespace nimbrel
