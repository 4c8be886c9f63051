// The popup's items for places where folders are kept: the documents, cloud services, "Other…".
#pragma once

#include <QString>
#include <QUrl>

class QComboBox;

// An item's data is its place's URL. Separators have an index like any other item.
namespace nimbrel::locations {

[[nodiscard]] QUrl documentsURL();
// Item 0, which is there, stands for the documents from now on.
void setUpDocuments(QComboBox &popUp);
// The new item's index, in both.
int add(QComboBox &popUp, const QString &title, const QUrl &url);
int addOther(QComboBox &popUp); // has no place

} // namespace nimbrel::locations
