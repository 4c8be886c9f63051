#include "windows/views/NotesBrowser.h"

#include "windows/NotesText.h"

#include <QPixmap>

namespace nimbrel {

namespace {

constexpr qsizetype longestNotes = 32768; // characters

} // namespace

NotesBrowser::NotesBrowser(QWidget *parent) : QTextBrowser(parent)
{
    setOpenLinks(false);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
}

void NotesBrowser::setNotes(const QString &notes)
{
    const QString text = notes.left(longestNotes);
    if (Qt::mightBeRichText(text))
        setHtml(plainlyFormatted(text));
    else
        setPlainText(text);
}

// An empty picture, for with none the name itself would be tried as a file.
QVariant NotesBrowser::loadResource(int type, const QUrl & /*name*/)
{
    if (type != QTextDocument::ImageResource)
        return {};
    QPixmap nothing(1, 1);
    nothing.fill(Qt::transparent);
    return nothing;
}

} // namespace nimbrel
