#pragma once

#include "export/sketch_session.h"

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QPushButton;

namespace vessa {

class SketchView;

// The sketch tool's window: the drawing area, a palette of colours, Undo, Discard and
// Save and Exit. It ends by putting its answer on the clipboard, the saved object's
// path or that nothing was made, and telling `finished` once; closing the window is
// Discard.
class SketchWindow : public QWidget {
    Q_OBJECT
public:
    explicit SketchWindow(QWidget* parent = nullptr);

    const SketchSession& session() const { return session_; }
    SketchView& view() { return *view_; }
    // What the window says under the drawing about the last stroke or save.
    QString message() const;

    void SaveButton_Click();
    void DiscardButton_Click();
    void UndoButton_Click();

Q_SIGNALS:
    void finished(const QString& clipboardText);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void strokeDrawn(const std::vector<SketchPoint>& pixels);
    void colourChosen(QAbstractButton* button);
    void showCurrentShape(bool keepTurn);
    void say(const QString& message);
    void finish(const QString& clipboardText);

    SketchSession session_;
    SketchView* view_;
    QLabel* message_;
    QButtonGroup* palette_;
    QPushButton* undo_;
    QPushButton* save_;
    bool finished_ = false;
};

} // namespace vessa
