#pragma once

#include <QPointer>

class QMessageBox;

namespace nimbrel {

// The standard about panel: name, version, what it stands on. Not modal, one at a time.
class AboutWindow final
{
public:
    AboutWindow() = default;
    ~AboutWindow();
    AboutWindow(const AboutWindow &) = delete;
    AboutWindow &operator=(const AboutWindow &) = delete;

    void show(); // brings it to the front

private:
    QPointer<QMessageBox> _window; // deletes itself when it is closed
};

} // namespace nimbrel
