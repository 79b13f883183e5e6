#pragma once

#include <QFont>
#include <QObject>

#include <functional>

class QComboBox;
class QWidget;

namespace vessa {

// The three lists over the code box that choose the script's font: the families the
// system has, the sizes (another may be typed, then Enter), and "Normal Text" or "Bold
// Text". Each choice is made on the font `current` gives and offered as fontChosen; a
// choice that can't be applied is dropped, and nothing changes. A size typed is taken
// with Enter or when the focus leaves the list. Each list has a label beside it, which
// also names it to a screen reader (whose name of a list is its value).
class FontLists : public QObject {
    Q_OBJECT
public:
    FontLists(std::function<QFont()> current, QWidget* parent);

    QComboBox& FontNames() const { return *names_; }
    QComboBox& FontSizes() const { return *sizes_; }
    QComboBox& FontEffect() const { return *effect_; }

    // The lists show the font, without that being a choice.
    void showFont(const QFont& font);

Q_SIGNALS:
    void fontChosen(const QFont& font);

private:
    std::function<QFont()> current_;
    QComboBox* names_;  // Owned by Qt.
    QComboBox* sizes_;  // Owned by Qt.
    QComboBox* effect_; // Owned by Qt.
};

} // namespace vessa
