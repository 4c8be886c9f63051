// Tells what a person at the display would notice: which window came up, what an alert says, which
// control has the keyboard, which menu has opened. It only listens: no event is held back or
// changed.
#pragma once

#include <QObject>

#include <functional>

class QMessageBox;

namespace nimbrel::observer {

// Takes one event: what it is, and of which window, control, text. The text has no line breaks.
using Sink = std::function<void(const QString &what, const QString &which)>;

// An event filter of the application object; main thread.
//   window TITLE     has come to the front
//   alert TEXT       likewise; detail TEXT and buttons A|B (default A) follow
//   focus NAME       the control has the keyboard: its objectName, or its class without one
//   menu A|-|B       has opened; "-" is a separator, "(off)" stands behind a disabled entry
class Observer final : public QObject
{
public:
    explicit Observer(Sink sink);

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void tell(const QString &what, const QString &which) const;
    void tellWindow(const QWidget &window) const;
    void tellAlert(const QMessageBox &box) const;

    Sink _sink;
};

} // namespace nimbrel::observer
