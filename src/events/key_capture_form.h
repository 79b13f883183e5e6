#pragma once

#include <QDialog>

class QLabel;

namespace vessa {

// The question for the key a row waits for: the user presses the key itself, and the
// first character it types is the answer. Escape or Cancel answer nothing. Keys that
// type no character (arrows, function keys, Tab) are not taken: the named keys have
// their own entries in the menu.
class KeyCaptureForm : public QDialog {
    Q_OBJECT
public:
    explicit KeyCaptureForm(QWidget* parent);

    // Opens titled keyEvent ("KeyDown" or "KeyUp") with prompt, near screenPoint.
    void ask(const QString& keyEvent, const QString& prompt, const QPoint& screenPoint);

    // Escape, Cancel and the window's close button: the answer is "".
    void reject() override;

Q_SIGNALS:
    // The answer: the character typed, or "" when none was.
    void answered(const QString& keyEvent, const QString& character);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLabel* prompt_; // Owned by Qt.
    QString keyEvent_;
};

} // namespace vessa
