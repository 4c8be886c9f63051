#include "assistants/views/RootAssistantView.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "volume/PathExtension.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolTip>
#include <QVBoxLayout>
#include <QValidator>

namespace nimbrel {

namespace {

// Refuses, while it is typed, what would lead into another folder or what no file system takes.
class FolderNameValidator final : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &name, int & /*cursor*/) const override
    {
        constexpr qsizetype longestName = 255; // bytes, NAME_MAX
        const qsizetype size = name.toUtf8().size() + 1 + folderExtension.size();
        const bool isName = !name.contains(u'/') && !name.contains(QChar(u'\0'));
        return isName && size <= longestName ? Acceptable : Invalid;
    }
};

} // namespace

RootAssistantView::RootAssistantView(QWidget *parent)
    : QWidget(parent), folderNameTextField(form::named("folderNameTextField", new QLineEdit(this))),
      foldersPopUpButton(form::named("foldersPopUpButton", new PopUpButton(this))),
      rootPathControl(form::named("rootPathControl", new PathControl(this))),
      warning(Warning::make(this))
{
    setUpName();
    foldersPopUpButton->addItem(texts::tr("Documents"));
    rootPathControl->setPlaceholderText(texts::tr("No location is chosen."));

    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("Give the folder a name and choose where it is kept. Put it into the folder of "
                  "your cloud service to have it on all your computers."),
        this));
    column->addLayout(makeFields());
    column->addStretch(1);
    setFocusProxy(folderNameTextField);
}

void RootAssistantView::setUpName()
{
    folderNameTextField->setPlaceholderText(texts::tr("For example: Private"));
    folderNameTextField->setValidator(new FolderNameValidator(folderNameTextField));
    connect(folderNameTextField, &QLineEdit::inputRejected, this, [this] {
        QToolTip::showText(
            folderNameTextField->mapToGlobal(folderNameTextField->rect().bottomLeft()),
            texts::tr("A name can't have a “/” in it, or be longer than this."),
            folderNameTextField);
    });
}

QFormLayout *RootAssistantView::makeFields()
{
    QFormLayout *fields = form::makeForm();
    fields->addRow(form::makeLabel(texts::tr("&Name:"), folderNameTextField, this),
                   folderNameTextField);
    fields->addRow(form::makeLabel(texts::tr("&Location:"), foldersPopUpButton, this),
                   foldersPopUpButton);
    fields->addRow(form::makeLabel(texts::tr("Path:"), rootPathControl, this), rootPathControl);
    fields->addRow(static_cast<QWidget *>(nullptr), warning.row);
    return fields;
}

} // namespace nimbrel
