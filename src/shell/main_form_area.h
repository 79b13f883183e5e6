#pragma once

#include "shell/main_layout.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>

namespace vessa {

class MainFormArea;

// One of the four dividers' bars. A drag with the left button moves it within the
// window; releasing it sets the divider's share and lays the window out again. Another
// button pressed during the drag ends the drag there, as the release would.
class SplitterBar : public QWidget {
    Q_OBJECT
    // The share of the bar's upper or left neighbour; setting it is a drag to there.
    Q_PROPERTY(double share READ share WRITE setShare)
public:
    SplitterBar(Splitter splitter, MainFormArea& area);

    Splitter splitter() const { return splitter_; }
    bool dragging() const { return dragStart_ != kNoDrag; }
    double share() const;
    void setShare(double share);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    static constexpr int kNoDrag = 2147483647;
    // Where along its axis the bar's near edge goes for the pointer at `pointer`.
    int edgeFor(const QPoint& pointer) const;
    void endDrag(const QPoint& pointer);

    Splitter splitter_;
    MainFormArea& area_;
    int dragStart_ = kNoDrag; // the pointer's offset into the bar when the drag began
};

// The main window's client area: it holds every control that MainLayout places, found
// by name, and puts each in its place whenever the window's size, the tab, a divider or
// a pane's showing changes (Form_Resize). A control shows on the tabs it belongs to, and
// there only while its owner has not hidden it; one hidden gives its room to the others.
class MainFormArea : public QWidget {
    Q_OBJECT
public:
    explicit MainFormArea(std::function<int()> tab, QWidget* parent = nullptr);

    // Takes in the controls under `root` named in MainLayout::controls() that it does not
    // hold yet, as they are; a name not found is passed over.
    void adoptControls(QWidget* root);
    // The pane's owner shows or hides it; the others take up its room.
    void showPane(const QString& control, bool shown);

    const LayoutShares& shares() const { return shares_; }
    void setShares(const LayoutShares& shares);
    const MainLayout::Result& placed() const { return placed_; }
    SplitterBar& bar(Splitter splitter) { return *bars_[static_cast<int>(splitter)]; }

    // Places every control for the area's size, the tab and the shares.
    void Form_Resize();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class SplitterBar;
    MainLayout::Input input() const;

    std::function<int()> tab_;
    LayoutShares shares_;
    QHash<QString, QPointer<QWidget>> controls_;
    QSet<QString> hidden_; // by their owners
    std::array<SplitterBar*, kSplitterCount> bars_{};
    MainLayout::Result placed_;
    bool placing_ = false;
};

} // namespace vessa
