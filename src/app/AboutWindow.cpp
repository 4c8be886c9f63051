#include "app/AboutWindow.h"

#include "app/Log.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "assistant/Icons.h"
#include "fs/FuseCheck.h"
#include "volume/TextConversion.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace nimbrel {

namespace {

constexpr int iconSide = 96; // pixels

QString description()
{
    return formatted(
        texts::tr("Keeps a folder encrypted in your cloud storage and shows it to you as an "
                  "ordinary disk.\n\nRuns with Qt %@ and FUSE %@.\n\nNimbrel is free software "
                  "under the GNU General Public License, version 3. It comes without any "
                  "warranty."),
        {QString::fromLatin1(qVersion()), qtText(fuseVersion())});
}

} // namespace

AboutWindow::~AboutWindow()
{
    delete _window;
}

void AboutWindow::show()
{
    if (!_window) {
        _window = new QMessageBox;
        _window->setAttribute(Qt::WA_DeleteOnClose);
        _window->setModal(false);
        _window->setObjectName(QStringLiteral("aboutWindow"));
        _window->setWindowTitle(texts::tr("About Nimbrel"));
        _window->setIconPixmap(
            icons::named(QStringLiteral("NSApplicationIcon")).pixmap(iconSide, iconSide));
        _window->setTextFormat(Qt::PlainText);
        _window->setText(formatted(texts::tr("Nimbrel %@"), {Log::versionText()}));
        _window->setInformativeText(description());
        if (auto *name = _window->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))) {
            QFont bold = name->font();
            bold.setBold(true);
            name->setFont(bold);
        }
        _window->addButton(texts::tr("Close"), QMessageBox::RejectRole);
    }
    _window->show();
    _window->raise();
    _window->activateWindow();
}

} // namespace nimbrel
