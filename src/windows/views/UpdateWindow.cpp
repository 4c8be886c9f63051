#include "windows/views/UpdateWindow.h"

#include "app/Texts.h"
#include "assistant/Icons.h"
#include "assistants/widgets/Form.h"
#include "windows/views/NotesBrowser.h"
#include "windows/views/WindowColumn.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nimbrel {

UpdateWindow::UpdateWindow(QWidget *parent)
    : QDialog(parent), titleTextField(form::named("titleTextField", form::makeText({}, this))),
      versionTextField(form::named("versionTextField", form::makeText({}, this))),
      notesView(form::named("notesView", new NotesBrowser(this))),
      downloadButton(
          form::named("downloadButton", new QPushButton(texts::tr("Open &Download Page"), this))),
      laterButton(form::named("laterButton", new QPushButton(texts::tr("&Later"), this)))
{
    setObjectName(QStringLiteral("NBUpdateWindow"));
    setWindowTitle(texts::tr("Nimbrel Update"));
    setWindowIcon(icons::named(QStringLiteral("NSApplicationIcon")));
    notesView->setAccessibleName(texts::tr("What is new"));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(downloadButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(laterButton, QDialogButtonBox::RejectRole);
    downloadButton->setDefault(true);
    laterButton->setAutoDefault(false);
    connect(laterButton, &QPushButton::clicked, this, &QDialog::reject);

    QVBoxLayout *column = makeWindowColumn(*this);
    column->addLayout(makeHeader());
    column->addWidget(notesView, 1);
    column->addWidget(buttons);
    constexpr int letters = 72;
    constexpr int lines = 26;
    resize(fontMetrics().averageCharWidth() * letters, fontMetrics().lineSpacing() * lines);
}

QHBoxLayout *UpdateWindow::makeHeader()
{
    constexpr int side = 64; // device-independent pixels
    constexpr double larger = 1.3;
    auto *picture = new QLabel(this);
    picture->setPixmap(icons::named(QStringLiteral("NSApplicationIcon"))
                           .pixmap(QSize(side, side), devicePixelRatioF()));
    QFont heading = titleTextField->font();
    if (heading.pointSizeF() > 0) // a size in pixels is somebody's own wish
        heading.setPointSizeF(heading.pointSizeF() * larger);
    heading.setBold(true);
    titleTextField->setFont(heading);
    auto *lines = new QVBoxLayout;
    lines->addWidget(titleTextField);
    lines->addWidget(versionTextField);
    lines->addStretch(1);
    QHBoxLayout *row = form::makeRow();
    row->addWidget(picture, 0, Qt::AlignTop);
    row->addSpacing(fontMetrics().height() / 2);
    row->addLayout(lines, 1);
    return row;
}

} // namespace nimbrel
