#pragma once

class QHBoxLayout;
class QLabel;
class QWidget;

namespace nimbrel {

// The inline warning of a page: `warningImage` with the caution sign and `warningTextField`, which
// wraps. They keep their room when hidden, so that nothing below them jumps.
struct Warning
{
    QLabel *image = nullptr;
    QLabel *text = nullptr;
    QHBoxLayout *row = nullptr; // for the view's layout

    [[nodiscard]] static Warning make(QWidget *parent);
    void setHidden(bool hidden) const;
    void useCautionImage() const; // NSImageNameCaution
};

} // namespace nimbrel
