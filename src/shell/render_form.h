#pragma once

#include <QVariantList>
#include <QWidget>

class QCheckBox;
class QLabel;

namespace vessa {

// The floating camera window in which a running world is seen. It draws nothing
// itself: the engine's view is moved into RenderFrame while a world runs.
class RenderForm : public QWidget {
    Q_OBJECT
public:
    explicit RenderForm(QWidget* parent = nullptr);

    QWidget* RenderFrame() const { return renderFrame_; }
    bool Check1Value() const;
    void setCheck1Value(bool onTop);
    void AlwaysOnTop(bool onTop);
    QLabel* FPSLabel() const { return fpsLabel_; }
    // The on-the-fly buttons under the view: [number, caption] of each, as the engine
    // lists them; the row hides when there are none.
    void showOnTheFlyButtons(const QVariantList& buttons);

Q_SIGNALS:
    // The user ticked or cleared "Always keep this window on top".
    void alwaysOnTopChosen(bool onTop);
    // Escape, which stops the running world.
    void stopAsked();
    // The user closed the window.
    void closedByUser();
    // An on-the-fly button was pressed: its number as the engine gave it.
    void onTheFlyButtonPressed(int number);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* renderFrame_;
    QCheckBox* check1_;
    QLabel* fpsLabel_;
    QWidget* onTheFlyRow_;
};

} // namespace vessa
