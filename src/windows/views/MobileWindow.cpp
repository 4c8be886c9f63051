#include "windows/views/MobileWindow.h"

#include "app/Texts.h"
#include "assistant/Icons.h"
#include "assistants/widgets/Form.h"
#include "windows/views/WindowColumn.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nimbrel {

namespace {

QHBoxLayout *makeHeader(QWidget *parent)
{
    constexpr int side = 48; // device-independent pixels
    constexpr int letters = 44;
    auto *picture = new QLabel(parent);
    picture->setPixmap(icons::named(QStringLiteral("mobile_32x32"))
                           .pixmap(QSize(side, side), parent->devicePixelRatioF()));
    QLabel *text = form::makeText(
        texts::tr("On phones and tablets, the mobile client opens the Nimbrel Folders that your "
                  "cloud service brings there."),
        parent);
    text->setMinimumWidth(text->fontMetrics().averageCharWidth() * letters);
    QHBoxLayout *row = form::makeRow();
    row->addWidget(picture, 0, Qt::AlignTop);
    row->addSpacing(picture->fontMetrics().height() / 2);
    row->addWidget(text, 1);
    return row;
}

} // namespace

MobileWindow::MobileWindow(QWidget *parent)
    : QDialog(parent), downloadFromAppStoreButton(form::named(
                           "downloadFromAppStoreButton",
                           new QPushButton(texts::tr("Download from the &App Store"), this))),
      downloadFromGooglePlayButton(
          form::named("downloadFromGooglePlayButton",
                      new QPushButton(texts::tr("Download from &Google Play"), this))),
      reasonTextField(form::named("reasonTextField", form::makeHint(QString(), this))),
      closeButton(form::named("closeButton", new QPushButton(texts::tr("&Close"), this)))
{
    setObjectName(QStringLiteral("NBMobileWindow"));
    setWindowTitle(texts::tr("Nimbrel for Mobile Devices"));
    for (QPushButton *button : {downloadFromAppStoreButton, downloadFromGooglePlayButton})
        button->setAutoDefault(false);
    closeButton->setDefault(true);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(closeButton, QDialogButtonBox::RejectRole);

    QVBoxLayout *column = makeWindowColumn(*this);
    column->addLayout(makeHeader(this));
    column->addWidget(downloadFromAppStoreButton);
    column->addWidget(downloadFromGooglePlayButton);
    column->addWidget(reasonTextField);
    column->addStretch(1);
    column->addWidget(buttons);
}

} // namespace nimbrel
