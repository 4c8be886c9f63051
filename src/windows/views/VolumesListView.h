#pragma once

#include <QListView>

namespace nimbrel {

// A list of volumes, one of which may be selected. Says what to do while it is empty.
class VolumesListView final : public QListView
{
    Q_OBJECT

public:
    explicit VolumesListView(QWidget *parent);

protected:
    // The right button shows what can be done with a row; the selection stays where it is.
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace nimbrel
