#include "assistants/widgets/Panels.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "platform/SystemFacts.h"

#include <QFileDialog>
#include <QPointer>

#include <memory>
#include <utility>

namespace nimbrel::panels {

namespace {

// Window-modal, deleted when it closes. The desktop's own where its platform theme has one.
QFileDialog *makePanel(QWidget &window, const QString &title, const QUrl &directory)
{
    auto *panel = new QFileDialog(&window, title);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setSupportedSchemes({QStringLiteral("file")}); // nothing over the network
    panel->setDirectoryUrl(directory.isEmpty() ? QUrl::fromLocalFile(systemFacts::homeFolder())
                                               : directory);
    return panel;
}

// The file is the one that the panel has asked about, and not what its list has selected by then.
// The panel is off the screen when the handler is called: that may ask the user more.
void begin(QFileDialog &panel, Handler handler)
{
    const auto chosen = std::make_shared<QUrl>();
    QObject::connect(&panel, &QFileDialog::fileSelected, &panel,
                     [chosen](const QString &file) { *chosen = QUrl::fromLocalFile(file); });
    QObject::connect(&panel, &QFileDialog::accepted, &panel,
                     [chosen, handler = std::move(handler)] {
                         if (!chosen->isEmpty())
                             handler(*chosen);
                     });
    panel.open();
}

QFileDialog *makeOpenPanel(QWidget &window, const OpenPanel &panel)
{
    QFileDialog *dialog = makePanel(window, panel.title, panel.directory);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(panel.canChooseDirectories ? QFileDialog::Directory
                                                   : QFileDialog::ExistingFile);
    dialog->setOption(QFileDialog::ShowDirsOnly, panel.canChooseDirectories);
    dialog->setOption(QFileDialog::ReadOnly, !panel.canCreateDirectories);
    return dialog;
}

// The window may go while the user is told why the URL won't do.
Handler validating(QWidget &window, const OpenPanel &panel, Handler handler,
                   CancelHandler cancelHandler)
{
    return [owner = QPointer<QWidget>(&window), panel, handler = std::move(handler),
            cancelHandler = std::move(cancelHandler)](const QUrl &url) {
        if (panel.validateURL(url)) {
            handler(url);
        } else if (!owner.isNull()) {
            OpenPanel again = panel;
            again.directory = url.adjusted(QUrl::RemoveFilename | QUrl::StripTrailingSlash);
            beginSheet(*owner, again, handler, cancelHandler);
        }
    };
}

QStringList nameFilters(const SavePanel &panel)
{
    QStringList filters;
    for (const QString &type : panel.allowedFileTypes)
        filters += formatted(texts::tr("%@ files (*.%@)"), {type.toUpper(), type});
    if (filters.isEmpty() || panel.allowsOtherFileTypes)
        filters += texts::tr("All files (*)");
    return filters;
}

} // namespace

void beginSheet(QWidget &window, const OpenPanel &panel, Handler handler,
                CancelHandler cancelHandler)
{
    QFileDialog *dialog = makeOpenPanel(window, panel);
    if (cancelHandler)
        QObject::connect(dialog, &QFileDialog::rejected, dialog, cancelHandler);
    if (panel.validateURL)
        handler = validating(window, panel, std::move(handler), std::move(cancelHandler));
    begin(*dialog, std::move(handler));
}

void beginSheet(QWidget &window, const SavePanel &panel, Handler handler)
{
    QFileDialog *dialog = makePanel(window, panel.title, panel.directory);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(nameFilters(panel));
    if (!panel.allowedFileTypes.isEmpty())
        dialog->setDefaultSuffix(panel.allowedFileTypes.first());
    if (!panel.nameFieldValue.isEmpty())
        dialog->selectFile(panel.nameFieldValue);
    begin(*dialog, std::move(handler));
}

} // namespace nimbrel::panels
