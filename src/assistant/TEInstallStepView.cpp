#include "assistant/TEInstallStepView.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "assistant/Appearance.h"
#include "assistant/Icons.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace nimbrel {

namespace {

constexpr std::int32_t badStep = -192;
constexpr double topMargin = 25.0;
constexpr double verticalTextOffsetOfSteps = 2.0;

// A light edge below the letters, which only a light background takes.
QColor shadowOn(const QPalette &palette)
{
    return appearance::isDark(palette) ? QColor() : QColor(Qt::white);
}

StepTextAttributes attributes(const QWidget &view, bool isReached)
{
    const QPalette &palette = view.palette();
    QFont font = view.font();
    font.setBold(isReached);
    QColor color = palette.color(QPalette::WindowText);
    if (!isReached)
        color = palette.color(QPalette::PlaceholderText);
    return {.font = font, .color = color, .shadowColor = shadowOn(palette)};
}

} // namespace

TEInstallStepView::TEInstallStepView(QWidget *parent) : QWidget(parent)
{
    setPlatformLooks();
    setVerticalTextOffset(verticalTextOffsetOfSteps);
}

void TEInstallStepView::setPlatformLooks()
{
    const StepTextAttributes reached = attributes(*this, true);
    _prevLook = {icons::named(QStringLiteral("GrayDot")), reached};
    _currLook = {icons::named(QStringLiteral("BlueDot")), reached};
    _nextLook = {icons::named(QStringLiteral("DisabledGrayDot")), attributes(*this, false)};
    calculateSizes();
}

void TEInstallStepView::setSteps(const QStringList &steps)
{
    _steps = steps;
    _currentStep = steps.value(0);
    if (!steps.isEmpty())
        calculateSizes();
    describeForScreenReaders();
    updateGeometry();
    update();
}

void TEInstallStepView::clearSteps()
{
    _steps.clear();
    _currentStep = QString();
}

std::int32_t TEInstallStepView::selectStep(const QString &step)
{
    if (!_steps.contains(step)) {
        systemLog(formatted(
            QStringLiteral("ERROR (%s:%d): bad step: %@"),
            {QStringLiteral("-[TEInstallStepView selectStep:]"), QStringLiteral("98"), step}));
        return badStep;
    }
    _currentStep = step;
    describeForScreenReaders();
    update();
    return 0;
}

QList<TEInstallStepView::RowState> TEInstallStepView::rowStates() const
{
    QList<RowState> states;
    RowState state = RowState::Before;
    for (const QString &step : _steps) {
        const bool isCurrent = !_currentStep.isNull() && step == _currentStep;
        if (state == RowState::Before && isCurrent)
            state = RowState::Current;
        else if (state == RowState::Current && !isCurrent)
            state = RowState::After;
        states += state;
    }
    return states;
}

void TEInstallStepView::setVerticalTextOffset(double offset)
{
    _cell.setVerticalTextOffset(offset);
    update();
}

double TEInstallStepView::spacing(qsizetype steps, double cellHeight, double viewHeight)
{
    const auto count = static_cast<double>(steps);
    const double available = (viewHeight - count * cellHeight - topMargin) / count;
    return std::max(std::min(available, desiredSpacing()), cellHeight);
}

void TEInstallStepView::calculateSizes()
{
    _cell.setImage(_prevLook.image);
    _cell.setStringAttributes(_prevLook.text);
    _cell.setStringValue(QStringLiteral("FOO"));
    _cellHeight = _cell.cellSize().height();
    if (!_steps.isEmpty())
        _calculatedSpacing = spacing(_steps.size(), _cellHeight, height());
}

const TEInstallStepView::Look &TEInstallStepView::look(RowState state) const
{
    switch (state) {
    case RowState::Before:
        return _prevLook;
    case RowState::Current:
        return _currLook;
    case RowState::After:
        break;
    }
    return _nextLook;
}

void TEInstallStepView::setLook(RowState state, const Look &look)
{
    _hasOwnLooks = true;
    (state == RowState::Before    ? _prevLook
     : state == RowState::Current ? _currLook
                                  : _nextLook) = look;
    calculateSizes();
    updateGeometry();
    update();
}

// Room for the longest title in its boldest look, with all rows at their full pitch.
QSize TEInstallStepView::sizeHint() const
{
    TEInstallStepCell cell;
    cell.setImage(_currLook.image);
    cell.setStringAttributes(_currLook.text);
    double width = 0;
    for (const QString &step : _steps) {
        cell.setStringValue(step);
        width = std::max(width, cell.cellSize().width());
    }
    const double rows = static_cast<double>(_steps.size()) * (_cellHeight + desiredSpacing());
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(rows + topMargin))};
}

void TEInstallStepView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    double y = topMargin;
    const QList<RowState> states = rowStates();
    for (qsizetype row = 0; row < _steps.size(); ++row) {
        const Look &rowLook = look(states.at(row));
        _cell.setImage(rowLook.image);
        _cell.setStringAttributes(rowLook.text);
        _cell.setStringValue(_steps.at(row));
        _cell.draw(painter, QRectF(0, y, width(), _cellHeight));
        y += _calculatedSpacing;
    }
}

void TEInstallStepView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    calculateSizes();
}

void TEInstallStepView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    const bool isLook =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange;
    if (!isLook || _hasOwnLooks)
        return;
    setPlatformLooks();
    updateGeometry();
    update();
}

void TEInstallStepView::describeForScreenReaders()
{
    const qsizetype row = _steps.indexOf(_currentStep);
    setAccessibleName(row < 0 ? QString()
                              : formatted(texts::tr("Step %@ of %@: %@"),
                                          {QString::number(row + 1), QString::number(_steps.size()),
                                           _currentStep}));
}

} // namespace nimbrel
