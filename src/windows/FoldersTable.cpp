#include "windows/FoldersTable.h"

#include "app/Texts.h"

#include <QFileInfo>

namespace nimbrel {

namespace {

const QString nameColumn = QStringLiteral("Name");
const QString pathColumn = QStringLiteral("Path");

QString identifierOf(int column)
{
    return column == 0 ? nameColumn : pathColumn;
}

} // namespace

QString pathOf(const QUrl &url)
{
    QString path = url.toLocalFile();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

void FoldersTable::setFolders(const QList<QUrl> &folders)
{
    beginResetModel();
    _folders = folders;
    endResetModel();
}

int FoldersTable::numberOfRowsInTableView() const
{
    return static_cast<int>(_folders.size());
}

QVariant FoldersTable::objectValueForTableColumn(const QString &identifier, int row) const
{
    if (row < 0 || row >= _folders.size())
        return {};
    const QString path = pathOf(_folders.at(row));
    if (identifier == nameColumn)
        return QFileInfo(path).completeBaseName();
    return identifier == pathColumn ? QVariant(path) : QVariant();
}

int FoldersTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : numberOfRowsInTableView();
}

int FoldersTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant FoldersTable::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DisplayRole)
        return objectValueForTableColumn(identifierOf(index.column()), index.row());
    if (role == Qt::ToolTipRole) // the path may be shortened
        return objectValueForTableColumn(pathColumn, index.row());
    return {};
}

QVariant FoldersTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    return section == 0 ? texts::tr("Name") : texts::tr("Path");
}

} // namespace nimbrel
