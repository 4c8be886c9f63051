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
    bool isCaution = false;       // a warning sign in place of the information sign
    QString windowTitle = QStringLiteral("Nimbrel");
    std::function<void()> showHelp = {}; // when given, there is a help button; the alert stays
};

// Shows an alert and waits for the answer. Tests answer in a person's place.
class AlertPresenter
{
public:
    AlertPresenter() = default;
    virtual ~AlertPresenter() = default;
    AlertPresenter(const AlertPresenter &) = delete;
    AlertPresenter &operator=(const AlertPresenter &) = delete;

    // 1 for the default button, 0 for the other; 0, too, when the alert is closed in another way
    // and there is another button.
    [[nodiscard]] virtual int runModal(const Alert &alert) = 0;
};

} // namespace nimbrel
