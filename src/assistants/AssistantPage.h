#pragma once

#include "assistant/NibLoading.h"
#include "assistant/TEBaseAssistant.h"

#include <memory>

namespace nimbrel {

// A page whose view is a `View`: the window resource of the page's own name. The view holds the
// controls, the page their rules.
template <class View>
class AssistantPage : public TEBaseAssistant
{
public:
    [[nodiscard]] std::int32_t prepareAssistant() override
    {
        nibs::add(assistantNib(), [] { return std::make_unique<View>(); });
        const std::int32_t result = TEBaseAssistant::prepareAssistant();
        if (result == 0)
            connectControls();
        return result;
    }

    // Only once the page is prepared, which adding it to an engine does.
    [[nodiscard]] View &controls() const { return static_cast<View &>(*view()); }

protected:
    // Ties the view's controls to the page's operations; once.
    virtual void connectControls() {}
};

} // namespace nimbrel
