#include "windows/views/AddVolumesWindow.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "windows/views/WindowColumn.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace nimbrel {

namespace {

// In letters and lines, so that all grows with the user's font.
constexpr int windowLetters = 84;
constexpr int nameLetters = 22;
constexpr int tableLines = 9;

} // namespace

// Made in the order of the Tab key.
AddVolumesWindow::AddVolumesWindow(QAbstractItemModel &folders, QWidget *parent)
    : QDialog(parent), foldersPopUpButton(form::named("foldersPopUpButton", new PopUpButton(this))),
      rootPathControl(form::named("rootPathControl", new PathControl(this))),
      foldersTableView(form::named("foldersTableView", new QTableView(this))),
      foldersScanTextField(form::named("foldersScanTextField", form::makeHint(QString(), this))),
      foldersScanProgressIndicator(
          form::named("foldersScanProgressIndicator", new QProgressBar(this))),
      addVolumeButton(form::named("addVolumeButton", new QPushButton(texts::tr("&Open"), this))),
      cancelButton(form::named("cancelButton", new QPushButton(texts::tr("&Cancel"), this)))
{
    setObjectName(QStringLiteral("NBAddVolumesWindow"));
    setWindowTitle(texts::tr("Open a Nimbrel Folder"));
    setWindowModality(Qt::WindowModal);
    foldersPopUpButton->addItem(texts::tr("Documents"));
    setUpTable(folders);

    QVBoxLayout *column = makeWindowColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("Choose one of the Nimbrel Folders found on this computer, or browse for it."),
        this));
    addLocation(*column);
    column->addWidget(foldersTableView, 1);
    addScan(*column);
    addButtons(*column);
    const QFontMetrics letters = fontMetrics();
    resize(letters.averageCharWidth() * windowLetters, sizeHint().height());
}

void AddVolumesWindow::setUpTable(QAbstractItemModel &folders)
{
    const QFontMetrics letters = fontMetrics();
    foldersTableView->setModel(&folders);
    foldersTableView->setAccessibleName(texts::tr("Nimbrel Folders"));
    foldersTableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    foldersTableView->setSelectionMode(QAbstractItemView::SingleSelection);
    foldersTableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    foldersTableView->setTabKeyNavigation(false); // Tab leaves the table
    foldersTableView->setShowGrid(false);
    foldersTableView->setWordWrap(false);
    foldersTableView->setTextElideMode(Qt::ElideMiddle);
    foldersTableView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    foldersTableView->verticalHeader()->hide();
    foldersTableView->horizontalHeader()->setHighlightSections(false);
    foldersTableView->horizontalHeader()->setStretchLastSection(true);
    foldersTableView->setColumnWidth(0, letters.averageCharWidth() * nameLetters);
    connect(foldersTableView->selectionModel(), &QItemSelectionModel::currentChanged,
            foldersTableView, [this](const QModelIndex &row) { selectWhenAlone(row); });
    foldersTableView->setMinimumHeight(letters.lineSpacing() * tableLines * 3 / 2);
}

// The Tab key makes the first row the current one. That is what Enter takes then.
void AddVolumesWindow::selectWhenAlone(const QModelIndex &row) const
{
    if (row.isValid() && !foldersTableView->selectionModel()->hasSelection())
        foldersTableView->selectRow(row.row());
}

void AddVolumesWindow::addLocation(QVBoxLayout &column)
{
    QFormLayout *fields = form::makeForm();
    fields->addRow(form::makeLabel(texts::tr("&Location:"), foldersPopUpButton, this),
                   foldersPopUpButton);
    fields->addRow(form::makeLabel(texts::tr("Path:"), rootPathControl, this), rootPathControl);
    column.addLayout(fields);
}

void AddVolumesWindow::addScan(QVBoxLayout &column)
{
    foldersScanProgressIndicator->setRange(0, 0); // no end is known
    foldersScanProgressIndicator->setTextVisible(false);
    foldersScanProgressIndicator->setAccessibleName(texts::tr("Looking for Nimbrel Folders"));
    foldersScanProgressIndicator->setMaximumHeight(fontMetrics().height() / 2);
    foldersScanProgressIndicator->setMaximumWidth(fontMetrics().averageCharWidth() * nameLetters);
    form::keepRoomWhenHidden(*foldersScanProgressIndicator);
    QHBoxLayout *row = form::makeRow();
    row->addWidget(foldersScanTextField, 1);
    row->addWidget(foldersScanProgressIndicator, 0, Qt::AlignVCenter);
    column.addLayout(row);
}

void AddVolumesWindow::addButtons(QVBoxLayout &column)
{
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(addVolumeButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancelButton, QDialogButtonBox::RejectRole);
    addVolumeButton->setDefault(true);
    cancelButton->setAutoDefault(false);
    column.addWidget(buttons);
}

} // namespace nimbrel
