#include "assistants/widgets/LocationsMenu.h"

#include "app/Texts.h"
#include "assistant/Icons.h"

#include <QComboBox>
#include <QStandardPaths>

namespace nimbrel::locations {

QUrl documentsURL()
{
    return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

void setUpDocuments(QComboBox &popUp)
{
    const QUrl documents = documentsURL();
    popUp.setItemData(0, documents);
    popUp.setItemIcon(0, icons::forFolder(documents.toLocalFile()));
}

int add(QComboBox &popUp, const QString &title, const QUrl &url)
{
    popUp.addItem(icons::forFolder(url.toLocalFile()), title, url);
    return popUp.count() - 1;
}

int addOther(QComboBox &popUp)
{
    const QColor color =
        popUp.palette().color(QPalette::Active, QPalette::Text); // also if disabled
    popUp.addItem(icons::tinted(QStringLiteral("NSActionTemplate"), color), texts::tr("Other…"));
    return popUp.count() - 1;
}

} // namespace nimbrel::locations
