#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>

namespace nimbrel {

// How a step's title is drawn.
struct StepTextAttributes
{
    QFont font;
    QColor color;
    QColor shadowColor;           // invalid: no shadow
    QPointF shadowOffset{0, 1.0}; // device-independent pixels, downwards

    [[nodiscard]] bool operator==(const StepTextAttributes &) const = default;
};

} // namespace nimbrel
