#pragma once

#include <QFrame>

class QLabel;
class QLineEdit;

namespace vessa {

class ObjectPicker;
class TreeControlView;
struct EditorAnswer;

// The object picker as it pops up over the script: a field to type a name in, above the
// tree of the scene's objects (TreeWidget). A click on an object, or Enter on the one
// selected, picks it; Enter in the field picks the object named there, and a name that
// no object has is refused in words under the field. A grey object can't be picked. The
// scene at the top stays open.
class ObjectPickerPopup : public QFrame {
    Q_OBJECT
public:
    ObjectPickerPopup(ObjectPicker& picker, QWidget* parent);

    // Shows the picker beside screenPoint, within area (the script's tree, on the screen).
    void StartTreeWidget(const QPoint& screenPoint, const QRect& area);

    TreeControlView& TreeWidget() const { return *tree_; }
    QLineEdit* findField() const { return find_; }
    QLabel* message() const { return message_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void finish(const EditorAnswer& answer);

    ObjectPicker& picker_;  // Not owned.
    QLineEdit* find_;       // Owned by Qt.
    QLabel* message_;       // Owned by Qt.
    TreeControlView* tree_; // Owned by Qt.
};

} // namespace vessa
