// Rates a passphrase as it is typed. It informs; nothing refuses a passphrase for its rating.
#pragma once

#include <QProgressBar>
#include <QString>

class QLabel;

namespace nimbrel {

// A level of 0 (nothing typed) to 5 in as many pieces, with a label beside it.
class NBPassphraseStrengthIndicator final : public QProgressBar
{
    Q_OBJECT

public:
    explicit NBPassphraseStrengthIndicator(QWidget *parent = nullptr);

    // controlTextDidChange:  For a text field's textChanged.
    void controlTextDidChange(const QString &text) { setStrengthWithPassphrase(text); }
    void setStrengthWithPassphrase(const QString &passphrase);
    // strengthWithPassphrase:  0 to 5; 0 for a null text.
    [[nodiscard]] static unsigned strengthWithPassphrase(const QString &passphrase);

    [[nodiscard]] QLabel *strengthLabel() const noexcept { return _strengthLabel; }
    void setStrengthLabel(QLabel *label) noexcept { _strengthLabel = label; } // not owned

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QLabel *_strengthLabel = nullptr;
    QColor _levelColor;
};

} // namespace nimbrel
