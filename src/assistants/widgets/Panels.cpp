#include "assistants/widgets/Panels.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "platform/SystemFacts.h"

#include <QFileDialog>

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
void begin(QFileDialog &panel, Handler handler)
{
    QObject::connect(&panel, &QFileDialog::fileSelected, &panel,
                     [handler = std::move(handler)](const QString &file) {
                         handler(QUrl::fromLocalFile(file));
                     });
    panel.open();
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

void beginSheet(QWidget &window, const OpenPanel &panel, Handler handler)
{
    QFileDialog *dialog = makePanel(window, panel.title, panel.directory);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(panel.canChooseDirectories ? QFileDialog::Directory
                                                   : QFileDialog::ExistingFile);
    dialog->setOption(QFileDialog::ShowDirsOnly, panel.canChooseDirectories);
    dialog->setOption(QFileDialog::ReadOnly, !panel.canCreateDirectories);
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
