#pragma once

#include <QWidget>

class QButtonGroup;
class QVBoxLayout;

namespace nimbrel {

// A choice of rows, each with a line or two that explain it. One row is always chosen, the first
// one at first.
class WelcomeMatrix final : public QWidget
{
    Q_OBJECT

public:
    explicit WelcomeMatrix(QWidget *parent = nullptr);

    void addRow(const QString &title, const QString &explanation);
    [[nodiscard]] int selectedRow() const;
    void selectRow(int row);
    // Where the titles begin: what belongs to a row is moved in as far.
    [[nodiscard]] int textIndent() const;

Q_SIGNALS:
    void selectionChanged();

private:
    QButtonGroup *_rows;
    QVBoxLayout *_layout;
};

} // namespace nimbrel
