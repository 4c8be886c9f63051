#pragma once

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace nimbrel {

class NotesBrowser;

class UpdateWindow final : public QDialog
{
    Q_OBJECT

public:
    explicit UpdateWindow(QWidget *parent = nullptr);

    QLabel *titleTextField;
    QLabel *versionTextField; // the new version, its date, and the one that runs
    NotesBrowser *notesView;
    QPushButton *downloadButton; // the default one
    QPushButton *laterButton;

private:
    [[nodiscard]] QHBoxLayout *makeHeader();
};

} // namespace nimbrel
