#include "windows/views/WindowColumn.h"

#include <QVBoxLayout>

namespace nimbrel {

QVBoxLayout *makeWindowColumn(QWidget &window)
{
    constexpr int margin = 24; // device-independent pixels, as in the assistants
    auto *column = new QVBoxLayout(&window);
    column->setContentsMargins(margin, margin, margin, margin * 2 / 3);
    column->setSpacing(margin * 2 / 3);
    return column;
}

} // namespace nimbrel
