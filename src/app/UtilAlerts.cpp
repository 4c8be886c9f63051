#include "app/Util.h"

#include "app/TextFormat.h"

#include <utility>

namespace nimbrel {

namespace {

QStringList titlesOf(const Util::Buttons &buttons)
{
    QStringList titles{buttons.defaultButton, buttons.alternateButton};
    titles.removeAll(QString());
    return titles;
}

} // namespace

int Util::showAlert(const QString &text)
{
    return showAlert(text, Buttons{});
}

int Util::showAlert(const QString &text, const QString &title)
{
    return showAlert(text, title, Buttons{});
}

int Util::showAlert(const QString &text, const Buttons &buttons)
{
    return runModal({.messageText = text,
                     .buttons = titlesOf(buttons),
                     .isDefaultHarmless = buttons.isDefaultHarmless});
}

int Util::showAlert(const QString &text, const QString &title, const Buttons &buttons)
{
    return runModal({.messageText = title,
                     .informativeText = formatted(text),
                     .buttons = titlesOf(buttons),
                     .isDefaultHarmless = buttons.isDefaultHarmless});
}

} // namespace nimbrel
