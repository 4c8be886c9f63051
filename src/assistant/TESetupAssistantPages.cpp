// The list of pages.
#include "assistant/TESetupAssistant.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"

#include <algorithm>

namespace nimbrel {

namespace {

void tellFailedSetup(const TEBaseAssistant &page, std::int32_t error)
{
    Util::runModal({.messageText = texts::tr("Error"),
                    .informativeText = formatted(
                        texts::tr("%@ failed to setup with error: %d. Please contact support."),
                        {page.assistantName(), QString::number(error)}),
                    .buttons = {texts::tr("OK")},
                    .isCaution = true});
}

} // namespace

void TESetupAssistant::addAssistant(const AssistantPtr &page)
{
    insertAssistant(page, _assistants.size());
}

void TESetupAssistant::insertNextAssistant(const AssistantPtr &page)
{
    insertAssistant(page, _currentAssistant + 1);
}

void TESetupAssistant::insertAssistant(const AssistantPtr &page, qsizetype atIndex)
{
    if (page->view() != nullptr) {
        systemLog(formatted(QStringLiteral("WARN (%s:%d): %@ has already been prepared"),
                            {QStringLiteral("-[TESetupAssistant insertAssistant:atIndex:]"),
                             QStringLiteral("317"), page->assistantName()}));
    } else if (const std::int32_t error = page->prepareAssistant(); error != 0) {
        tellFailedSetup(*page, error);
        return;
    }
    _assistants.insert(std::clamp(atIndex, qsizetype{0}, _assistants.size()), page);
    page->setParentController(this);
}

AssistantPtr TESetupAssistant::getAssistantOfClass(const QMetaObject &pageClass) const
{
    const auto found = std::ranges::find_if(
        _assistants, [&](const AssistantPtr &page) { return page->metaObject() == &pageClass; });
    return found == _assistants.end() ? nullptr : *found;
}

AssistantPtr TESetupAssistant::assistantAt(std::int32_t index) const
{
    return index >= 0 && index < _assistants.size() ? _assistants.at(index) : nullptr;
}

AssistantPtr TESetupAssistant::prevAssistant() const
{
    return assistantAt(_currentAssistant - 1);
}

AssistantPtr TESetupAssistant::nextAssistant() const
{
    return assistantAt(_currentAssistant + 1);
}

AssistantPtr TESetupAssistant::currAssistant() const
{
    return assistantAt(_currentAssistant);
}

void TESetupAssistant::setObject(const QVariant &object, const QString &forKey)
{
    _sessionDict.insert(forKey, object);
}

QVariant TESetupAssistant::objectForKey(const QString &key) const
{
    return _sessionDict.value(key);
}

QStringList TESetupAssistant::stepsOfAllPages() const
{
    QStringList steps;
    for (const AssistantPtr &page : _assistants)
        steps += page->orderedSteps();
    return steps;
}

} // namespace nimbrel
