// The steps of an assistant, from top to bottom: done, current, still to come.
#pragma once

#include "assistant/TEInstallStepCell.h"

#include <QStringList>
#include <QWidget>

#include <cstdint>

namespace nimbrel {

class TEInstallStepView final : public QWidget
{
    Q_OBJECT

public:
    // What a row shows: a picture beside a title.
    struct Look
    {
        QIcon image;
        StepTextAttributes text;
    };
    enum class RowState
    {
        Before,
        Current,
        After
    };

    explicit TEInstallStepView(QWidget *parent = nullptr);

    void setSteps(const QStringList &steps); // the first one is current then
    void clearSteps();                       // without a redraw (kept)
    // selectStep:  0, or -192, logged, for a title that isn't in the list.
    std::int32_t selectStep(const QString &step);
    [[nodiscard]] const QStringList &steps() const noexcept { return _steps; }
    [[nodiscard]] const QString &currentStep() const noexcept { return _currentStep; } // or null
    // The state of each row, in their order. Two equal titles in a row are both current.
    [[nodiscard]] QList<RowState> rowStates() const;

    [[nodiscard]] double verticalTextOffset() const noexcept { return _cell.verticalTextOffset(); }
    void setVerticalTextOffset(double offset);
    [[nodiscard]] static constexpr double desiredSpacing() noexcept { return 25.0; }
    [[nodiscard]] double cellHeight() const noexcept { return _cellHeight; }
    // The pitch of the rows in a view of this height.
    [[nodiscard]] double calculatedSpacing() const noexcept { return _calculatedSpacing; }
    [[nodiscard]] static double spacing(qsizetype steps, double cellHeight, double viewHeight);

    // prevStepImg, prevStepTextAttrs and so on
    [[nodiscard]] const Look &look(RowState state) const;
    void setLook(RowState state, const Look &look);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void setPlatformLooks();
    void calculateSizes();
    void describeForScreenReaders();

    QStringList _steps;
    QString _currentStep;
    mutable TEInstallStepCell _cell; // draws each row in turn
    double _calculatedSpacing = 0;
    double _cellHeight = 0;
    Look _prevLook;
    Look _currLook;
    Look _nextLook;
    bool _hasOwnLooks = false; // a flow has set one: the platform's colours don't change it
};

} // namespace nimbrel
