// The desktop's own file panels, as sheets: they belong to a window and don't block.
#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

class QWidget;

namespace nimbrel::panels {

using Handler = std::function<void(const QUrl &url)>; // not called on Cancel
using CancelHandler = std::function<void()>;

struct OpenPanel
{
    QString title = {};
    bool canChooseDirectories = false; // false: files
    bool canCreateDirectories = false;
    QUrl directory = {};
    // panel:validateURL:error:
    // Says no after telling the user why; then the panel is there again. All pass without it.
    std::function<bool(const QUrl &url)> validateURL = {};
};

// One URL, which exists. `window` owns the panel; it ends with it, and then calls nothing.
void beginSheet(QWidget &window, const OpenPanel &panel, Handler handler,
                CancelHandler cancelHandler = {});

struct SavePanel
{
    QString title = {};
    QString nameFieldValue = {};
    QStringList allowedFileTypes = {}; // extensions; the first is added to a name without one
    bool allowsOtherFileTypes = true;
    QUrl directory = {};
};

// The URL needn't exist; the panel has asked before one that does is given.
void beginSheet(QWidget &window, const SavePanel &panel, Handler handler);

} // namespace nimbrel::panels
