// The data source of the table of encrypted folders.
#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QUrl>

namespace nimbrel {

// A URL's path without a slash at its end.
[[nodiscard]] QString pathOf(const QUrl &url);

// Main thread only.
class FoldersTable final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] const QList<QUrl> &folders() const noexcept { return _folders; }
    void setFolders(const QList<QUrl> &folders);

    [[nodiscard]] int numberOfRowsInTableView() const; // numberOfRowsInTableView:
    // tableView:objectValueForTableColumn:row:
    // The columns are "Name" and "Path"; invalid for another one, and for a row that isn't there.
    [[nodiscard]] QVariant objectValueForTableColumn(const QString &identifier, int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    QList<QUrl> _folders;
};

} // namespace nimbrel
