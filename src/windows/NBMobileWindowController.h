// Where the mobile clients can be had.
#pragma once

#include <QObject>
#include <QPointer>
#include <QUrl>

class QWidget;

namespace nimbrel {

class MobileWindow;
class Workspace;

// The mobile clients' pages in the stores; an empty one isn't known.
struct MobileAddresses
{
    QUrl appStore = {};
    QUrl googlePlay = {};

    [[nodiscard]] static MobileAddresses ofThisBuild();
};

// One controller serves one showing. Main thread only.
class NBMobileWindowController final : public QObject
{
    Q_OBJECT

public:
    explicit NBMobileWindowController(Workspace &workspace,
                                      MobileAddresses addresses = MobileAddresses::ofThisBuild());
    ~NBMobileWindowController() override;

    // Shows the window above `parent` and blocks until it has been closed.
    void runModal(QWidget *parent);

    void downloadFromAppStore();   // downloadFromAppStore:
    void downloadFromGooglePlay(); // downloadFromGooglePlay:
    void windowWillClose();        // windowWillClose:

private:
    void connectControls();
    void showWhatIsMissing();

    Workspace &_workspace;
    MobileAddresses _addresses;
    QPointer<MobileWindow> _window; // while it is on show
};

} // namespace nimbrel
