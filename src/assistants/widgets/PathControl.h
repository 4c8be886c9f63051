#pragma once

#include <QFrame>
#include <QUrl>

class QLabel;

namespace nimbrel {

// Shows where something lies: its folder's icon and its path, shortened in the middle where there
// is no room. Read-only; a tooltip and screen readers get the whole path.
class PathControl final : public QFrame
{
    Q_OBJECT

public:
    explicit PathControl(QWidget *parent = nullptr);

    // A file URL, or an empty one for none.
    [[nodiscard]] const QUrl &URL() const noexcept { return _url; }
    void setURL(const QUrl &url);
    [[nodiscard]] QString path() const; // without a slash at the end; null without a URL

    void setPlaceholderText(const QString &text); // in place of a path where there is none

    // One line and some letters, whatever the path.
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint(); }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showShortened();
    void showIcon();

    QUrl _url;
    QString _placeholderText;
    QLabel *_icon;
    QLabel *_text;
};

} // namespace nimbrel
