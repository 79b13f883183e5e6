#pragma once

#include "paint_session.h"
#include "paint_view.h"

#include <QWidget>

#include <memory>

class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;
class QCheckBox;

namespace vessa::core {
class ReaderProcess;
}

namespace vessa::paint3d {

// The paint tool's window. It answers the program that started it only
// through the clipboard:
//   "PAINT3D_SAVE <path>"           saved to path, still painting;
//   "PAINT3D_SAVE_AND_EXIT <path>"  saved to path, and gone;
//   "PAINT3D_DISCARD_AND_EXIT"      gone, nothing saved (Discard, or the window closed;
//                                   with paint not saved yet, only once the user says so).
// After an answer that leaves, the window hides and the tool stays until
// another program takes the clipboard (on X11 the text lives only as long
// as its owner), or a minute has gone; then it emits finished().
// A file that can't be painted is refused with why, in the window.
class PaintWindow : public QWidget {
    Q_OBJECT
public:
    PaintWindow(const QString& objectFile, core::ReaderProcess& reader);
    ~PaintWindow() override;

    PaintSession* session() { return session_.get(); }
    PaintView* view() { return view_; }

    void save();
    void saveAndExit();
    void discard();

Q_SIGNALS:
    void finished();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* makeTools();
    void chooseColor(const QColor& color);
    void pickColor();
    void choosePicture();
    void undo();
    void updateButtons();
    // Saves; the answer (prefix and the path written), or "" when nothing was saved.
    QString savedAnswer(const QString& prefix);
    void answerAndLeave(const QString& answer);
    // Paint not saved yet: asks whether to throw it away. true: the user said No.
    bool userKeepsPainting();

    QString objectFile_;
    std::unique_ptr<PaintSession> session_;
    PaintView* view_ = nullptr;
    QLabel* message_ = nullptr;
    QListWidget* palette_ = nullptr;
    QSpinBox* size_ = nullptr;
    QCheckBox* soft_ = nullptr;
    QPushButton* undo_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* saveAndExit_ = nullptr;
    QPushButton* choosePicture_ = nullptr;
    std::vector<QPushButton*> tools_;
    bool leaving_ = false;
};

} // namespace vessa::paint3d
