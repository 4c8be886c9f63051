#include "assistant/TEBaseAssistant.h"

#include "assistant/NibLoading.h"
#include "assistant/TESetupAssistant.h"

namespace nimbrel {

std::int32_t TEBaseAssistant::prepareAssistant()
{
    _view = nibs::load(assistantNib());
    return _view ? 0 : resourceNotFound;
}

void TEBaseAssistant::nextPressed()
{
    if (_controller != nullptr)
        _controller->runNextAssistant();
}

void TEBaseAssistant::prevPressed()
{
    if (_controller != nullptr)
        _controller->runPreviousAssistant();
}

QString TEBaseAssistant::assistantName() const
{
    return QString::fromLatin1(metaObject()->className()).section(QStringLiteral("::"), -1);
}

} // namespace nimbrel
