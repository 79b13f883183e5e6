#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace vessa {

class TextInputBox;

// The small box that asks for a name or a value (TextInputBoxForm): a prompt, the text
// and OK and Cancel. OK goes to the rules of TextInputBox; a text they refuse keeps the
// box open with the reason on top of the prompt and the text selected, and the line as
// it was. Cancel changes nothing.
class TextInputBoxForm : public QDialog {
    Q_OBJECT
public:
    TextInputBoxForm(TextInputBox& box, QWidget* parent);

    // Opens over the script with its middle at point's x and its top at point's y.
    void BringUpTextWidget(const QPoint& screenPoint, const QString& title, const QString& prompt,
                           const QString& text);

    QLabel* Label1() const { return label1_; }
    QLineEdit* Text1() const { return text1_; }

private:
    void OKButton_Click();
    void setPrompt(const QString& prompt);

    TextInputBox& box_; // Not owned.
    QLabel* label1_;    // Owned by Qt.
    QLineEdit* text1_;  // Owned by Qt.
};

} // namespace vessa
