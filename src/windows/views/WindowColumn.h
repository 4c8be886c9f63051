#pragma once

class QVBoxLayout;
class QWidget;

namespace nimbrel {

// The layout of a small window: its content from the top, with the room around it that all of ours
// have. What is added last stands at the bottom.
[[nodiscard]] QVBoxLayout *makeWindowColumn(QWidget &window);

} // namespace nimbrel
