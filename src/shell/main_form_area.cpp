#include "shell/main_form_area.h"

#include "controls/twips.h"

#include <QMouseEvent>
#include <QResizeEvent>
#include <QScopedValueRollback>

namespace vessa {

SplitterBar::SplitterBar(Splitter splitter, MainFormArea& area)
    : QWidget(&area), splitter_(splitter), area_(area) {
    setObjectName(QString::fromLatin1(MainLayout::splitterName(splitter)));
    const bool vertical = splitter != Splitter::V;
    setCursor(vertical ? Qt::SplitVCursor : Qt::SplitHCursor);
}

double SplitterBar::share() const {
    return MainLayout::firstShare(area_.shares(), splitter_);
}

void SplitterBar::setShare(double share) {
    area_.setShares(MainLayout::withFirstShare(area_.shares(), splitter_, share));
}

int SplitterBar::edgeFor(const QPoint& pointer) const {
    const QPoint inArea = mapTo(&area_, pointer);
    const bool vertical = splitter_ != Splitter::V;
    const int along = vertical ? inArea.y() : inArea.x();
    const int room = vertical ? area_.height() - height() : area_.width() - width();
    return std::clamp(along - dragStart_, 0, std::max(0, room));
}

void SplitterBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !dragging()) {
        dragStart_ = splitter_ != Splitter::V ? event->position().toPoint().y()
                                              : event->position().toPoint().x();
        return;
    }
    if (dragging())
        endDrag(event->position().toPoint());
}

void SplitterBar::mouseMoveEvent(QMouseEvent* event) {
    if (!dragging())
        return;
    const int edge = edgeFor(event->position().toPoint());
    if (splitter_ != Splitter::V)
        move(x(), edge);
    else
        move(edge, y());
}

void SplitterBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && dragging())
        endDrag(event->position().toPoint());
}

void SplitterBar::endDrag(const QPoint& pointer) {
    const int edge = edgeFor(pointer);
    dragStart_ = kNoDrag;
    area_.setShares(MainLayout::dragged(area_.placed(), splitter_, edge, area_.shares()));
}

MainFormArea::MainFormArea(std::function<int()> tab, QWidget* parent)
    : QWidget(parent), tab_(std::move(tab)) {
    setObjectName(QStringLiteral("MainFormArea"));
    for (int index = 0; index < kSplitterCount; ++index) {
        bars_[index] = new SplitterBar(static_cast<Splitter>(index), *this);
        controls_.insert(bars_[index]->objectName(), bars_[index]);
    }
}

void MainFormArea::adoptControls(QWidget* root) {
    for (const QString& name : MainLayout::controls()) {
        if (controls_.value(name))
            continue;
        QWidget* control = root->findChild<QWidget*>(name);
        if (!control)
            continue;
        if (control->isHidden())
            hidden_.insert(name);
        control->setParent(this);
        control->installEventFilter(this);
        controls_.insert(name, control);
    }
    Form_Resize();
}

void MainFormArea::showPane(const QString& control, bool shown) {
    if (shown)
        hidden_.remove(control);
    else
        hidden_.insert(control);
    Form_Resize();
}

void MainFormArea::setShares(const LayoutShares& shares) {
    shares_ = MainLayout::clamped(shares);
    Form_Resize();
}

MainLayout::Input MainFormArea::input() const {
    MainLayout::Input input;
    input.innerPixels = size();
    input.twipsPerPixel = twipsPerPixel(this);
    input.shares = shares_;
    input.tab = tab_();
    input.hidden = hidden_;
    // A control that is not there gives up its room as a hidden one does.
    for (const QString& name : MainLayout::controls())
        if (!controls_.value(name))
            input.hidden.insert(name);
    for (auto at = controls_.cbegin(); at != controls_.cend(); ++at)
        if (at.value())
            input.hintTwips.insert(at.key(), at.value()->sizeHint() * input.twipsPerPixel);
    return input;
}

void MainFormArea::Form_Resize() {
    const QScopedValueRollback<bool> placing(placing_, true);
    placed_ = MainLayout::place(input());
    for (auto at = controls_.cbegin(); at != controls_.cend(); ++at) {
        QWidget* control = at.value();
        if (!control)
            continue;
        const auto place = placed_.pixels.constFind(at.key());
        if (place == placed_.pixels.cend()) {
            control->hide();
            continue;
        }
        control->setGeometry(*place);
        control->show();
    }
}

void MainFormArea::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Form_Resize();
}

// An owner that shows or hides its control itself is heard as if it had said so.
bool MainFormArea::eventFilter(QObject* watched, QEvent* event) {
    const bool shown = event->type() == QEvent::ShowToParent;
    if (!placing_ && (shown || event->type() == QEvent::HideToParent)) {
        const QString name = watched->objectName();
        if (shown != !hidden_.contains(name))
            showPane(name, shown);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace vessa
