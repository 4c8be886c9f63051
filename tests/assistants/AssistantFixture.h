// Pages in a real engine, on show without blocking.
#pragma once

#include "assistants/AssistantsDesk.h"

#include <QFileDialog>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>

namespace nimbrel::test {

class PagesTest : public ::testing::Test
{
protected:
    PagesTest() { std::filesystem::create_directories(desk.desk.home() + "/Documents"); }

    template <class Page, class... Arguments>
    std::shared_ptr<Page> add(Arguments &&...arguments)
    {
        auto page = assistant<Page>(std::forward<Arguments>(arguments)...);
        engine->addAssistant(page);
        return page;
    }
    void run() { ASSERT_TRUE(engine->run()); }
    void next() { engine->nextButton()->click(); }
    void goBack() { engine->prevButton()->click(); }
    void setAdvanced(bool isAdvanced) { desk.application.isAdvanced = isAdvanced; }

    [[nodiscard]] QString path(const std::string &name) const { return desk.path(name); }
    // Since the last call.
    QStringList alerts()
    {
        const QStringList texts = desk.alertTexts();
        desk.desk.alerts.shown.clear();
        return texts;
    }
    [[nodiscard]] const QWidget *firstResponder() const { return engine->window()->focusWidget(); }

    AssistantsDesk desk;
    std::unique_ptr<TESetupAssistant> engine = TESetupAssistant::initMini();
};

// The file panel that hangs on a window; throws where there is none.
inline QFileDialog &sheetOf(const QWidget &window)
{
    for (QFileDialog *sheet : window.findChildren<QFileDialog *>())
        if (sheet->isVisible())
            return *sheet;
    throw std::runtime_error("no sheet");
}

[[nodiscard]] inline bool hasSheet(const QWidget &window)
{
    const auto sheets = window.findChildren<QFileDialog *>();
    return std::any_of(sheets.begin(), sheets.end(),
                       [](const QFileDialog *sheet) { return sheet->isVisible(); });
}

// Types a path into a panel and presses its button. A question that comes up is answered with Yes;
// how many there were.
inline int choose(QFileDialog &sheet, const QString &path)
{
    int questions = 0;
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, &answering, [&] {
        auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (question == nullptr)
            return;
        ++questions;
        QAbstractButton *yes = question->button(QMessageBox::Yes);
        EXPECT_NE(yes, nullptr) << question->text().toStdString(); // a complaint, no question
        (yes != nullptr ? yes : question->buttons().first())->click();
    });
    answering.start(1);
    // What the list has selected counts more than what is typed.
    control<QListView>(sheet, "listView").clearSelection();
    control<QLineEdit>(sheet, "fileNameEdit").setText(path);
    QMetaObject::invokeMethod(&sheet, "accept");
    return questions;
}

inline void cancel(QFileDialog &sheet)
{
    sheet.reject();
}

} // namespace nimbrel::test
