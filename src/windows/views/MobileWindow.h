#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace nimbrel {

class MobileWindow final : public QDialog
{
    Q_OBJECT

public:
    explicit MobileWindow(QWidget *parent);

    QPushButton *downloadFromAppStoreButton;
    QPushButton *downloadFromGooglePlayButton;
    QLabel *reasonTextField; // why a button is disabled; hidden when both work
    QPushButton *closeButton;
};

} // namespace nimbrel
