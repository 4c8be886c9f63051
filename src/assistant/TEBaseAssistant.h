// One page of an assistant.
#pragma once

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace nimbrel {

class TESetupAssistant;

// A page is in one engine, prepared once and not used again: each flow makes new ones, holds them,
// and reads their controls when the run has ended. Main thread only.
class TEBaseAssistant : public QObject
{
    Q_OBJECT

public:
    static constexpr std::int32_t resourceNotFound = -192;

    TEBaseAssistant() = default;

    // The engine that owns the page; null before it was added.
    virtual void setParentController(TESetupAssistant *controller) { _controller = controller; }
    [[nodiscard]] TESetupAssistant *controller() const noexcept { return _controller; }

    // Loads the view named by assistantNib; 0, or resourceNotFound. Pages connect their controls
    // here.
    [[nodiscard]] virtual std::int32_t prepareAssistant();
    virtual void start() {}                              // shown by going forward
    virtual void restart() { start(); }                  // shown again by going back
    virtual void nextPressed();                          // nextPressed:
    virtual void prevPressed();                          // prevPressed:
    [[nodiscard]] virtual QString assistantName() const; // without the namespace
    [[nodiscard]] virtual QString assistantNib() const { return assistantName(); }
    [[nodiscard]] virtual QStringList orderedSteps() const { return {}; } // localised
    [[nodiscard]] virtual QVariant results() const { return {}; }
    // Null before the page is prepared. The page owns it.
    [[nodiscard]] virtual QWidget *view() const { return _view.get(); }

private:
    TESetupAssistant *_controller = nullptr;
    std::unique_ptr<QWidget> _view;
};

// assistant
// A new page of a class.
template <class Page, class... Arguments>
[[nodiscard]] std::shared_ptr<Page> assistant(Arguments &&...arguments)
{
    return std::make_shared<Page>(std::forward<Arguments>(arguments)...);
}

} // namespace nimbrel
