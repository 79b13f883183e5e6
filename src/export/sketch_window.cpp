#include "export/sketch_window.h"

#include "controls/accessible_names.h"
#include "export/sketch_object.h"
#include "export/sketch_view.h"

#include <QApplication>
#include <QButtonGroup>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace vessa {

namespace {

const char* const kObjectName = "Sketch";

struct PaletteColour {
    const char* control;
    QColor colour;
};

const PaletteColour kPalette[] = {
    {"SketchColourBrown", QColor(0xc8, 0x8a, 0x4a)},
    {"SketchColourRed", QColor(0xd8, 0x3a, 0x34)},
    {"SketchColourOrange", QColor(0xf0, 0x8c, 0x20)},
    {"SketchColourYellow", QColor(0xf2, 0xd0, 0x2c)},
    {"SketchColourGreen", QColor(0x4c, 0xa8, 0x48)},
    {"SketchColourBlue", QColor(0x3c, 0x78, 0xd0)},
    {"SketchColourPurple", QColor(0x8c, 0x50, 0xb4)},
    {"SketchColourWhite", QColor(0xf4, 0xf4, 0xf0)},
};

QIcon swatch(const QColor& colour) {
    QPixmap picture(28, 28);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x40, 0x40, 0x40), 1.5));
    painter.setBrush(colour);
    painter.drawEllipse(QRectF(2, 2, 24, 24));
    return QIcon(picture);
}

} // namespace

SketchWindow::SketchWindow(QWidget* parent)
    : QWidget(parent), view_(new SketchView), message_(new QLabel),
      palette_(new QButtonGroup(this)), undo_(new QPushButton(QStringLiteral("&Undo"))),
      save_(new QPushButton(QStringLiteral("&Save and Exit"))) {
    setObjectName(QStringLiteral("SketchWindow"));
    setWindowTitle(QStringLiteral("Vessa47 - Make an Object"));
    auto* hint = new QLabel(QStringLiteral(
        "Draw the outline of a shape in one stroke; it becomes a rounded object. Drag the "
        "object, or use the arrow keys, to turn it. A new outline makes a new object."));
    hint->setWordWrap(true);
    message_->setWordWrap(true);
    message_->setMinimumHeight(message_->fontMetrics().lineSpacing() * 2);

    auto* colours = new QHBoxLayout;
    for (const PaletteColour& entry : kPalette) {
        auto* button = new QToolButton;
        button->setObjectName(QString::fromLatin1(entry.control));
        button->setCheckable(true);
        button->setIcon(swatch(entry.colour));
        button->setIconSize(QSize(28, 28));
        button->setFocusPolicy(Qt::StrongFocus);
        button->setProperty("colour", entry.colour);
        palette_->addButton(button);
        colours->addWidget(button);
    }
    palette_->buttons().constFirst()->setChecked(true);
    session_.setColour(kPalette[0].colour);
    colours->addStretch();

    auto* discard = new QPushButton(QStringLiteral("&Discard"));
    discard->setObjectName(QStringLiteral("SketchDiscardButton"));
    undo_->setObjectName(QStringLiteral("SketchUndoButton"));
    undo_->setShortcut(QKeySequence::Undo);
    undo_->setEnabled(false);
    save_->setObjectName(QStringLiteral("SketchSaveButton"));
    save_->setShortcut(QKeySequence::Save);
    save_->setEnabled(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(undo_);
    buttons->addStretch();
    buttons->addWidget(discard);
    buttons->addWidget(save_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(hint);
    layout->addWidget(view_, 1);
    layout->addWidget(message_);
    layout->addLayout(colours);
    layout->addLayout(buttons);
    resize(720, 620);

    connect(view_, &SketchView::strokeDrawn, this, &SketchWindow::strokeDrawn);
    connect(palette_, &QButtonGroup::buttonClicked, this, &SketchWindow::colourChosen);
    connect(undo_, &QPushButton::clicked, this, &SketchWindow::UndoButton_Click);
    connect(discard, &QPushButton::clicked, this, &SketchWindow::DiscardButton_Click);
    connect(save_, &QPushButton::clicked, this, &SketchWindow::SaveButton_Click);
    applyAccessibleNames(this);
    view_->setFocus();
}

void SketchWindow::strokeDrawn(const std::vector<SketchPoint>& pixels) {
    const SketchSession::StrokeOutcome outcome = session_.addStroke(pixels);
    say(outcome.message);
    if (outcome.made)
        showCurrentShape(false);
}

void SketchWindow::colourChosen(QAbstractButton* button) {
    session_.setColour(button->property("colour").value<QColor>());
    if (session_.current())
        showCurrentShape(true);
}

void SketchWindow::UndoButton_Click() {
    session_.undo();
    say({});
    showCurrentShape(false);
}

void SketchWindow::showCurrentShape(bool keepTurn) {
    const SketchSession::Shape* shape = session_.current();
    view_->showObject(shape ? sketchObjectNode(shape->mesh, session_.colour(), kObjectName)
                            : osg::ref_ptr<osg::Node>(),
                      keepTurn);
    undo_->setEnabled(session_.canUndo());
    save_->setEnabled(shape != nullptr);
}

QString SketchWindow::message() const {
    return message_->text();
}

void SketchWindow::say(const QString& message) {
    message_->setText(message);
}

void SketchWindow::SaveButton_Click() {
    const SketchSession::Shape* shape = session_.current();
    if (!shape || finished_)
        return;
    const QString path = newSketchObjectPath();
    if (path.isEmpty()) {
        say(QStringLiteral("No folder for the object could be made in the temporary folder."));
        return;
    }
    const QString fault = writeSketchObject(
        *sketchObjectNode(standingOnItsFoot(shape->mesh), session_.colour(), kObjectName), path);
    if (!fault.isEmpty()) {
        say(fault);
        return;
    }
    finish(sketchSavedMessage(path));
}

void SketchWindow::DiscardButton_Click() {
    finish(sketchDiscardedMessage());
}

void SketchWindow::closeEvent(QCloseEvent* event) {
    finish(sketchDiscardedMessage());
    event->accept();
}

void SketchWindow::finish(const QString& clipboardText) {
    if (finished_)
        return;
    finished_ = true;
    QGuiApplication::clipboard()->setText(clipboardText);
    hide();
    Q_EMIT finished(clipboardText);
}

} // namespace vessa
