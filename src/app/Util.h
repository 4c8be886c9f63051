#pragma once

#include "app/AlertPresenter.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

class QAction;
class QIODevice;
class QPalette;
class QColor;
class QProcess;
class QToolBar;

namespace nimbrel {

// Static operations without a state of their own. Any thread, but alerts: these are modal and
// belong to the main thread.
class Util final
{
public:
    Util() = delete;

    // Strings and paths. "Not found" is -1; a null string has length 0.
    [[nodiscard]] static int getFirstIndexOf(QChar character, const QString &string);
    [[nodiscard]] static int getLastIndexOf(QChar character, const QString &string);
    // How many times the character occurs (kept: no index, whatever the name says). The character
    // is compared as a signed 8-bit value.
    [[nodiscard]] static int getIndecesOf(char character, const QString &string);
    // The n-th occurrence, counting from 1; the same comparison.
    [[nodiscard]] static int getSpecIndexOf(char character, int n, const QString &string);
    // Behind the last "/"; a null string when there is none.
    [[nodiscard]] static QString getLastPathElement(const QString &path);
    [[nodiscard]] static QString getParentPath(const QString &path);
    [[nodiscard]] static int countPathLevel(const QString &path);
    // isEmpty:  of nothing, a string or a list; false for anything else.
    [[nodiscard]] static bool isEmpty(const QVariant &object);
    static void appendByte(char byte, QByteArray &to);

    [[nodiscard]] static bool fileExists(const QString &path); // and is no directory
    [[nodiscard]] static bool directoryExists(const QString &path);
    [[nodiscard]] static bool exists(const QString &path);

    // Child processes. A read gives what is there at the moment, as UTF-8, trimmed.
    [[nodiscard]] static QString getTaskOutput(QIODevice &handle);
    // The first text that isn't empty while the task runs; "" when none came. Blocks.
    [[nodiscard]] static QString getTaskOutput(QProcess &task, QIODevice &ouputHandle);
    [[nodiscard]] static QString getTaskOutput(QProcess &task, const QString &untilText,
                                               QIODevice &outputHandle);

    static void clearToolbar(QToolBar &toolbar);
    static void removeItem(QAction *item, QToolBar &fromToolbar);

    // Alerts, modal; 1 for the default button, 0 for the other. Where there is a title, the text is
    // a format without arguments (kept; asFormat() guards what isn't ours).
    static int showAlert(const QString &text);
    static int showAlert(const QString &text, const QString &title);
    // showAlert:defaultButton:alternateButton:
    struct Buttons
    {
        QString defaultButton;
        QString alternateButton;
        bool isDefaultHarmless = false; // see Alert
    };
    static int showAlert(const QString &text, const Buttons &buttons);
    // showAlert:title:defaultButton:alternateButton:
    static int showAlert(const QString &text, const QString &title, const Buttons &buttons);
    // Any alert, through the presenter.
    static int runModal(const Alert &alert);
    // Who shows alerts from now on, not owned; null is a message box.
    static void setAlertPresenter(AlertPresenter *presenter);

    [[nodiscard]] static QString OSVersion();
    [[nodiscard]] static QString hardwareId();
    [[nodiscard]] static QString computeSHA1HashString(const QString &string);
    [[nodiscard]] static QByteArray computeSHA1Hash(const QByteArray &data);
    [[nodiscard]] static QString convertToHexString(const QByteArray &data);

    [[nodiscard]] static bool willAutostart();
    [[nodiscard]] static bool willAutostart(const QString &path);
    // False, too, when nothing had to change (kept).
    static bool setAutostart(bool enabled);
    static bool setAutostart(const QString &path, bool enabled);
    [[nodiscard]] static bool wasLaunchedAsLoginItem();
    [[nodiscard]] static bool wasLaunchedByProcess(const QString &creatorCode);

    // NBBOOLToControlTextColorTransformer, transformedValue:
    // The palette's text colour, or its disabled one; an invalid colour for what has no truth.
    [[nodiscard]] static QColor controlTextColor(const QVariant &value, const QPalette &palette);
};

} // namespace nimbrel
