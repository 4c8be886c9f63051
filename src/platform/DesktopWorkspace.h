#pragma once

#include "platform/Workspace.h"

namespace nimbrel {

// The freedesktop ways, each tried when the one before it isn't there: org.freedesktop.FileManager1
// (ShowFolders, ShowItems), the desktop portal (org.freedesktop.portal.OpenURI), xdg-open.
class DesktopWorkspace final : public Workspace
{
public:
    void openFile(const QString &path) override;
    void selectFile(const QString &path, const QString &inFileViewerRootedAtPath) override;
    void openURL(const QUrl &url) override;
    // Asks the settings of the desktops that can do it: Cinnamon's (Nemo) and MATE's (Caja).
    [[nodiscard]] bool showsMountedDisksOnDesktop() const override;
};

} // namespace nimbrel
