#include "scene/mouse_tools.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/picture_button.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"

#include <QEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QMouseEvent>
#include <QToolButton>

namespace vessa {

namespace {

constexpr int kPictureSide = 32;

struct ToolLook {
    const char* control; // the option's picture; its label adds "L"
    const char* picture; // the pictures' names, without the state
    const char* caption;
    const char* button; // how failures name it
};

const ToolLook kTools[kMouseToolCount] = {
    {"MouseMoveOption", "MouseMove", "Move", "MouseMoveButton"},
    {"MouseRaiseOption", "MouseRaise", "Up/Down", "MouseRaiseButton"},
    {"MouseTurnLROption", "MouseTurnLR", "Turn", "MouseTurnLRButton"},
    {"MouseTurnFBOption", "MouseTurnFB", "Tip", "MouseTurnFBButton"},
    {"MouseTumbleOption", "MouseTumble", "Tumble", "MouseTumbleButton"},
    {"MouseInspectOption", "MouseInspect", "Look", "MouseInspectOption"},
};

const ToolLook& lookOf(MouseTool tool) {
    return kTools[static_cast<int>(tool)];
}

} // namespace

MouseToolsPanel::MouseToolsPanel(EngineLink& engine, ErrorReporter& reporter, QWidget* parent)
    : QFrame(parent), engine_(engine), reporter_(reporter) {
    setObjectName(QStringLiteral("MouseControlsFrame"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 2, 4, 2);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(0);
    auto* title = new QLabel(QStringLiteral("Mouse:"), this);
    title->setObjectName(QStringLiteral("TheMouseLabel"));
    grid->addWidget(title, 0, 0, 2, 1);
    for (int index = 0; index < kMouseToolCount; ++index) {
        const ToolLook& look = kTools[index];
        auto* button = new QToolButton(this);
        button->setObjectName(QString::fromLatin1(look.control));
        button->setAutoRaise(true);
        button->setCheckable(true);
        button->setIconSize(QSize(kPictureSide, kPictureSide));
        button->setFocusPolicy(Qt::StrongFocus);
        button->installEventFilter(this);
        connect(button, &QToolButton::clicked, this,
                [this, index] { SelectOptionButton(static_cast<MouseTool>(index)); });
        auto* label = new QLabel(QString::fromLatin1(look.caption), this);
        label->setObjectName(QString::fromLatin1(look.control) + QLatin1Char('L'));
        label->setAlignment(Qt::AlignHCenter);
        label->setBuddy(button);
        label->installEventFilter(this);
        options_[index] = button;
        labels_[index] = label;
        grid->addWidget(button, 0, index + 1, Qt::AlignHCenter);
        grid->addWidget(label, 1, index + 1);
        showAtRest(static_cast<MouseTool>(index));
    }
    grid->setColumnStretch(kMouseToolCount + 1, 1);
    applyAccessibleNames(this);
}

QToolButton* MouseToolsPanel::option(MouseTool tool) const {
    return options_[static_cast<int>(tool)];
}

void MouseToolsPanel::showPicture(MouseTool tool, const char* state) {
    option(tool)->setIcon(
        buttonPicture(QString::fromLatin1(lookOf(tool).picture), QString::fromLatin1(state)));
}

void MouseToolsPanel::showAtRest(MouseTool tool) {
    showPicture(tool, tool == selected_ ? "Selected" : "Up");
    option(tool)->setChecked(tool == selected_);
}

// The pictures follow the pointer: the hover picture while it is over an option that is
// not chosen, the pressed one while the button is down. A label acts as its option.
bool MouseToolsPanel::eventFilter(QObject* watched, QEvent* event) {
    for (int index = 0; index < kMouseToolCount; ++index) {
        const auto tool = static_cast<MouseTool>(index);
        if (watched == labels_[index]) {
            if (event->type() == QEvent::MouseButtonRelease &&
                static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
                SelectOptionButton(tool);
            continue;
        }
        if (watched != options_[index])
            continue;
        switch (event->type()) {
        case QEvent::Enter:
            if (tool != selected_)
                showPicture(tool, "High");
            break;
        case QEvent::Leave:
            showAtRest(tool);
            break;
        case QEvent::MouseButtonPress:
            showPicture(tool, "Down");
            break;
        default:
            break;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void MouseToolsPanel::SelectOptionButton(MouseTool tool) {
    const MouseTool old = selected_;
    try {
        if (tool != old)
            runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('RadioButton')"),
                    QStringLiteral("MainForm:SelectOptionButton() couldn't play sound."));
        selected_ = tool;
        showAtRest(old);
        if (old == MouseTool::Inspect)
            reporter_.CheckInterpreterResult(
                engine_.call(QStringLiteral("StopInspector")),
                QStringLiteral("MainForm:SelectOptionButton() couldn't stop the Inspector."));
        showAtRest(tool);
        tellEngine(tool);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:SelectOptionButton() Error"), e);
    }
}

void MouseToolsPanel::tellEngine(MouseTool tool) {
    const QString failure = QStringLiteral("MainForm:%1_MouseUp: Error on call to python.")
                                .arg(QString::fromLatin1(lookOf(tool).button));
    if (tool == MouseTool::Inspect) {
        reporter_.CheckInterpreterResult(engine_.call(QStringLiteral("StartInspector")), failure);
        return;
    }
    runTool(engine_, reporter_,
            QStringLiteral("Vessa._SetRespondToMouse(%1)").arg(static_cast<int>(tool)), failure);
}

} // namespace vessa
