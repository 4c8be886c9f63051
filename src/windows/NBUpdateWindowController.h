// Tells of a newer version, with its notes.
#pragma once

#include "windows/UpdateOffer.h"

#include <QObject>

#include <memory>

namespace nimbrel {

class UpdateWindow;
class Workspace;

// Not modal; one at a time. Main thread only.
class NBUpdateWindowController final : public QObject
{
    Q_OBJECT

public:
    explicit NBUpdateWindowController(Workspace &workspace);
    ~NBUpdateWindowController() override;

    // Shows the offer, in place of an earlier one, and brings the window up.
    void show(const UpdateOffer &offer);

    [[nodiscard]] UpdateWindow *window() const { return _window.get(); } // null before an offer

private:
    void makeWindow();
    void fill();
    void openPage();
    void openLink(const QUrl &url);

    Workspace &_workspace;
    UpdateOffer _offer;
    std::unique_ptr<UpdateWindow> _window;
};

} // namespace nimbrel
