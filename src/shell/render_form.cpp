#include "shell/render_form.h"

#include "controls/accessible_names.h"
#include "shell/view_hosts.h"
#include "shell/window_keeper.h"

#include <QAction>
#include <QCheckBox>
#include <QChildEvent>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vessa {

RenderForm::RenderForm(QWidget* parent)
    : QWidget(parent, Qt::Window), renderFrame_(new QWidget(this)),
      check1_(new QCheckBox(QStringLiteral("Always keep this window on top"), this)),
      fpsLabel_(new QLabel(this)), onTheFlyRow_(new QWidget(this)) {
    setObjectName(QStringLiteral("RenderForm"));
    setWindowTitle(QStringLiteral("Vessa - Camera"));
    // It comes up when a script tab is chosen, and leaves the keyboard where the user
    // was working.
    setAttribute(Qt::WA_ShowWithoutActivating);
    renderFrame_->setObjectName(QStringLiteral("RenderFrame"));
    markViewHost(renderFrame_, RenderFrameHost);
    renderFrame_->setMinimumSize(160, 120);
    check1_->setObjectName(QStringLiteral("Check1"));
    fpsLabel_->setObjectName(QStringLiteral("FPSLabel"));
    // Its text is what it says, to the eye and to a screen reader alike; without a
    // frame rate to show it stays out of the way.
    fpsLabel_->hide();
    renderFrame_->installEventFilter(this);

    // Escape stops the world wherever the focus is in this window: keys typed in the
    // view go to the world, but this one never does.
    auto* stop = new QAction(this);
    stop->setShortcut(Qt::Key_Escape);
    connect(stop, &QAction::triggered, this, &RenderForm::stopAsked);
    addAction(stop);
    auto* stopHint = new QLabel(QStringLiteral("Esc stops the world"), this);
    stopHint->setObjectName(QStringLiteral("StopHint"));
    // A hint, not a control: cut short rather than make the window wider than it was set.
    stopHint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    stopHint->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    stopHint->setToolTip(stopHint->text());

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(check1_);
    bottom->addWidget(stopHint, 1);
    bottom->addWidget(fpsLabel_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(renderFrame_, 1);
    onTheFlyRow_->setObjectName(QStringLiteral("OnTheFlyButtons"));
    new QHBoxLayout(onTheFlyRow_);
    onTheFlyRow_->layout()->setContentsMargins(2, 2, 2, 2);
    onTheFlyRow_->hide();
    layout->addWidget(onTheFlyRow_);
    layout->addLayout(bottom);

    connect(check1_, &QCheckBox::clicked, this, [this](bool onTop) {
        AlwaysOnTop(onTop);
        Q_EMIT alwaysOnTopChosen(onTop);
    });
    // Beside the main window, until the user's own place is remembered.
    const double perPixel = twipsPerPixel(this);
    setGeometry(qRound(9285 / perPixel), 0, qRound(4620 / perPixel), qRound(6570 / perPixel));
    applyAccessibleNames(this);
}

bool RenderForm::eventFilter(QObject* watched, QEvent* event) {
    // The engine's camera view, when it comes into the frame, is reached before the
    // check box under it.
    if (watched == renderFrame_ && event->type() == QEvent::ChildPolished) {
        QObject* child = static_cast<QChildEvent*>(event)->child();
        if (child->isWidgetType())
            setTabOrder(static_cast<QWidget*>(child), check1_);
    }
    return QWidget::eventFilter(watched, event);
}

void RenderForm::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (event->isAccepted() && event->spontaneous())
        Q_EMIT closedByUser();
}

bool RenderForm::Check1Value() const {
    return check1_->isChecked();
}

void RenderForm::setCheck1Value(bool onTop) {
    check1_->setChecked(onTop);
}

void RenderForm::AlwaysOnTop(bool onTop) {
    if (testAttribute(Qt::WA_WState_Created) &&
        windowFlags().testFlag(Qt::WindowStaysOnTopHint) == onTop)
        return;
    const bool wasVisible = isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    // Changing a window's flags hides it; a shown camera window stays shown.
    if (wasVisible)
        show();
}

void RenderForm::showOnTheFlyButtons(const QVariantList& buttons) {
    for (QPushButton* old : onTheFlyRow_->findChildren<QPushButton*>())
        delete old;
    auto* row = static_cast<QHBoxLayout*>(onTheFlyRow_->layout());
    while (QLayoutItem* item = row->takeAt(0))
        delete item;
    for (const QVariant& entry : buttons) {
        const QVariantList button = entry.toList();
        if (button.size() != 2)
            continue;
        const int number = button[0].toInt();
        auto* press = new QPushButton(button[1].toString(), onTheFlyRow_);
        press->setObjectName(QStringLiteral("OnTheFlyButton%1").arg(number));
        press->setToolTip(QStringLiteral("Runs its lines of Python in the world"));
        press->setFocusPolicy(Qt::StrongFocus);
        connect(press, &QPushButton::clicked, this,
                [this, number] { Q_EMIT onTheFlyButtonPressed(number); });
        row->addWidget(press);
    }
    row->addStretch();
    onTheFlyRow_->setVisible(!buttons.isEmpty());
}

} // namespace vessa
