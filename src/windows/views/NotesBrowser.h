// Shows foreign HTML or plain text, and nothing else than that text.
#pragma once

#include <QTextBrowser>

namespace nimbrel {

// Loads nothing from anywhere: no picture, no style, no file. It follows no link either; whoever
// listens to anchorClicked decides.
class NotesBrowser final : public QTextBrowser
{
    Q_OBJECT

public:
    explicit NotesBrowser(QWidget *parent = nullptr);

    // What is longer than notes ever are is cut off.
    void setNotes(const QString &notes);

    [[nodiscard]] QVariant loadResource(int type, const QUrl &name) override;
};

} // namespace nimbrel
