#include "paint_window.h"

#include "painted_file.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QColorDialog>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace vessa::paint3d {

namespace {

const QString kTitle = QStringLiteral("Vessa47 - Paint");
const QString kSaveAnswer = QStringLiteral("PAINT3D_SAVE ");
const QString kSaveAndExitAnswer = QStringLiteral("PAINT3D_SAVE_AND_EXIT ");
const QString kDiscardAnswer = QStringLiteral("PAINT3D_DISCARD_AND_EXIT");
// How long a tool that left keeps its answer on the clipboard for nobody.
constexpr int kAnswerKeptMs = 60 * 1000;

struct PaletteColor {
    const char* name;
    QRgb rgb;
};
constexpr PaletteColor kPalette[] = {
    {"Red", 0xd62828},        {"Orange", 0xf77f00},     {"Yellow", 0xfcbf49}, {"Green", 0x2a9d3f},
    {"Dark green", 0x1b5e20}, {"Light blue", 0x64b5f6}, {"Blue", 0x1e56c8},   {"Navy", 0x14213d},
    {"Purple", 0x7b2cbf},     {"Pink", 0xf49cbb},       {"Brown", 0x7f4f24},  {"Tan", 0xd4a373},
    {"White", 0xffffff},      {"Grey", 0x8d99ae},       {"Black", 0x000000},
};

Rgba rgbaOf(const QColor& color) {
    return {static_cast<std::uint8_t>(color.red()), static_cast<std::uint8_t>(color.green()),
            static_cast<std::uint8_t>(color.blue()), 255};
}

QIcon swatch(const QColor& color) {
    QPixmap square(24, 24);
    square.fill(color);
    QPainter frame(&square);
    frame.setPen(Qt::darkGray);
    frame.drawRect(0, 0, 23, 23);
    return QIcon(square);
}

// A picture the user chose, read with bounds (a file from anywhere is no
// file to trust): no side over Skin::kLargestPicture, at most 64 MiB
// decoded. Empty, with why, when it can't be read.
Skin pictureFrom(const QString& file, QString& why) {
    QImageReader reader(file);
    reader.setAllocationLimit(64);
    const QSize size = reader.size();
    if (size.isValid() &&
        (size.width() > Skin::kLargestPicture || size.height() > Skin::kLargestPicture)) {
        why = QStringLiteral("%1 is too big: pictures can be at most %2 pixels a side.")
                  .arg(file)
                  .arg(Skin::kLargestPicture);
        return {};
    }
    const QImage image = reader.read().convertToFormat(QImage::Format_RGBA8888);
    if (image.isNull() || image.width() > Skin::kLargestPicture ||
        image.height() > Skin::kLargestPicture) {
        why = QStringLiteral("%1 can't be read as a picture: %2").arg(file, reader.errorString());
        return {};
    }
    Skin picture(image.width(), image.height(), {});
    for (int y = 0; y < image.height(); ++y) {
        const uchar* row = image.constScanLine(image.height() - 1 - y); // bottom row first
        for (int x = 0; x < image.width(); ++x)
            picture.setPixel(x, y, {row[4 * x], row[4 * x + 1], row[4 * x + 2], row[4 * x + 3]});
    }
    return picture;
}

// What a screen reader says for each control of the tool, by object name.
// The tool is a program of its own, so its names live with it, as the
// engine's camera view names itself.
void nameControls(QWidget* window) {
    static const std::pair<const char*, const char*> names[] = {
        {"PaintView", "Object to paint"},      {"PaintBrushTool", "Brush"},
        {"PaintFillTool", "Fill a part"},      {"PaintPictureTool", "Paint a picture"},
        {"PaintTurnTool", "Turn the object"},  {"PaintBrushSize", "Brush size"},
        {"PaintSoftEdge", "Soft edge"},        {"PaintPalette", "Colours"},
        {"PaintPickColour", "Mix a colour"},   {"PaintChoosePicture", "Choose a picture"},
        {"PaintUndo", "Undo painting"},        {"PaintSave", "Save"},
        {"PaintSaveAndExit", "Save and Exit"}, {"PaintDiscard", "Discard"},
    };
    for (const auto& [control, name] : names) {
        if (auto* widget = window->findChild<QWidget*>(QLatin1String(control)))
            widget->setAccessibleName(QString::fromUtf8(name));
    }
}

QPushButton* button(const QString& name, const QString& text, QWidget* parent) {
    auto* made = new QPushButton(text, parent);
    made->setObjectName(name);
    return made;
}

} // namespace

PaintWindow::PaintWindow(const QString& objectFile, core::ReaderProcess& reader)
    : objectFile_(objectFile) {
    setObjectName(QStringLiteral("Paint3dWindow"));
    setWindowTitle(kTitle);
    auto* layout = new QHBoxLayout(this);
    OpenedObject opened = openForPainting(objectFile.toStdString(), reader);
    if (opened.object)
        session_ = std::make_unique<PaintSession>(std::move(*opened.object));
    layout->addWidget(makeTools());
    if (session_) {
        setWindowTitle(kTitle + QStringLiteral(" - ") +
                       QString::fromStdString(session_->object().name));
        view_ = new PaintView(*session_, this);
        connect(view_, &PaintView::painted, this, &PaintWindow::updateButtons);
        layout->addWidget(view_, 1);
    } else {
        message_ = new QLabel(
            QStringLiteral("This object can't be painted.\n\n%1\n\nDiscard closes the paint tool.")
                .arg(QString::fromStdString(opened.refusal)),
            this);
        message_->setObjectName(QStringLiteral("PaintRefusal"));
        message_->setWordWrap(true);
        message_->setMinimumSize(320, 240);
        layout->addWidget(message_, 1);
    }
    nameControls(this);
    updateButtons();
    resize(900, 640);
    if (view_)
        view_->setFocus();
}

PaintWindow::~PaintWindow() = default;

QWidget* PaintWindow::makeTools() {
    auto* tools = new QWidget(this);
    auto* column = new QVBoxLayout(tools);
    auto* group = new QButtonGroup(tools);
    const std::pair<const char*, const char*> toolButtons[] = {{"PaintBrushTool", "&Brush"},
                                                               {"PaintFillTool", "&Fill a part"},
                                                               {"PaintPictureTool", "&Picture"},
                                                               {"PaintTurnTool", "&Turn"}};
    for (const auto& [name, text] : toolButtons) {
        QPushButton* tool = button(QLatin1String(name), QString::fromUtf8(text), tools);
        tool->setCheckable(true);
        group->addButton(tool, static_cast<int>(tools_.size()));
        column->addWidget(tool);
        tools_.push_back(tool);
    }
    tools_.front()->setChecked(true);
    connect(group, &QButtonGroup::idClicked, this, [this](int id) {
        if (view_)
            view_->setTool(static_cast<PaintTool>(id));
        if (static_cast<PaintTool>(id) == PaintTool::Picture && view_ && !view_->hasPicture())
            choosePicture();
    });

    auto* sizeLabel = new QLabel(QStringLiteral("Brush si&ze"), tools);
    size_ = new QSpinBox(tools);
    size_->setObjectName(QStringLiteral("PaintBrushSize"));
    size_->setRange(1, 128);
    size_->setValue(8);
    size_->setSuffix(QStringLiteral(" px"));
    sizeLabel->setBuddy(size_);
    connect(size_, &QSpinBox::valueChanged, this, [this](int radius) {
        if (session_)
            session_->brush.radius = radius;
    });
    soft_ = new QCheckBox(QStringLiteral("S&oft edge"), tools);
    soft_->setObjectName(QStringLiteral("PaintSoftEdge"));
    connect(soft_, &QCheckBox::toggled, this, [this](bool soft) {
        if (session_)
            session_->brush.soft = soft;
    });
    column->addWidget(sizeLabel);
    column->addWidget(size_);
    column->addWidget(soft_);

    auto* colorsLabel = new QLabel(QStringLiteral("C&olours"), tools);
    palette_ = new QListWidget(tools);
    palette_->setObjectName(QStringLiteral("PaintPalette"));
    palette_->setViewMode(QListView::IconMode);
    palette_->setIconSize(QSize(24, 24));
    palette_->setGridSize(QSize(30, 30));
    palette_->setMovement(QListView::Static);
    palette_->setFixedSize(160, 130);
    for (const PaletteColor& color : kPalette) {
        auto* item = new QListWidgetItem(swatch(QColor(color.rgb)), QString(), palette_);
        item->setData(Qt::AccessibleTextRole, QString::fromUtf8(color.name));
        item->setToolTip(QString::fromUtf8(color.name));
        item->setData(Qt::UserRole, QColor(color.rgb));
    }
    colorsLabel->setBuddy(palette_);
    connect(palette_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item)
            chooseColor(item->data(Qt::UserRole).value<QColor>());
    });
    palette_->setCurrentRow(0);
    column->addWidget(colorsLabel);
    column->addWidget(palette_);

    QPushButton* pick =
        button(QStringLiteral("PaintPickColour"), QStringLiteral("&Mix a colour..."), tools);
    connect(pick, &QPushButton::clicked, this, &PaintWindow::pickColor);
    choosePicture_ =
        button(QStringLiteral("PaintChoosePicture"), QStringLiteral("Choose p&icture..."), tools);
    connect(choosePicture_, &QPushButton::clicked, this, &PaintWindow::choosePicture);
    undo_ = button(QStringLiteral("PaintUndo"), QStringLiteral("&Undo"), tools);
    undo_->setShortcut(QKeySequence::Undo);
    connect(undo_, &QPushButton::clicked, this, &PaintWindow::undo);
    column->addWidget(pick);
    column->addWidget(choosePicture_);
    column->addWidget(undo_);
    column->addStretch(1);

    save_ = button(QStringLiteral("PaintSave"), QStringLiteral("&Save"), tools);
    save_->setShortcut(QKeySequence::Save);
    connect(save_, &QPushButton::clicked, this, &PaintWindow::save);
    saveAndExit_ =
        button(QStringLiteral("PaintSaveAndExit"), QStringLiteral("Save and E&xit"), tools);
    connect(saveAndExit_, &QPushButton::clicked, this, &PaintWindow::saveAndExit);
    QPushButton* discardButton =
        button(QStringLiteral("PaintDiscard"), QStringLiteral("&Discard"), tools);
    connect(discardButton, &QPushButton::clicked, this, &PaintWindow::discard);
    column->addWidget(save_);
    column->addWidget(saveAndExit_);
    column->addWidget(discardButton);
    return tools;
}

void PaintWindow::chooseColor(const QColor& color) {
    if (session_)
        session_->brush.color = rgbaOf(color);
}

void PaintWindow::pickColor() {
    const QColor chosen = QColorDialog::getColor(
        session_ ? QColor(session_->brush.color.r, session_->brush.color.g, session_->brush.color.b)
                 : QColor(Qt::red),
        this, QStringLiteral("Mix a colour"));
    if (chosen.isValid()) {
        palette_->setCurrentItem(nullptr);
        chooseColor(chosen);
    }
}

void PaintWindow::choosePicture() {
    if (!view_)
        return;
    const QString file =
        QFileDialog::getOpenFileName(this, QStringLiteral("Choose a picture to paint"), QString(),
                                     QStringLiteral("Pictures (*.png *.jpg *.jpeg *.bmp *.gif)"));
    if (file.isEmpty())
        return;
    QString why;
    const Skin picture = pictureFrom(file, why);
    if (picture.width() == 0) {
        QMessageBox::warning(this, kTitle, why);
        return;
    }
    view_->setPicture(picture);
    view_->setTool(PaintTool::Picture);
    tools_[static_cast<size_t>(PaintTool::Picture)]->setChecked(true);
}

void PaintWindow::undo() {
    if (session_ && session_->undo() && view_)
        view_->showSkins();
    updateButtons();
}

void PaintWindow::updateButtons() {
    const bool painting = session_ != nullptr;
    for (QPushButton* tool : tools_)
        tool->setEnabled(painting);
    size_->setEnabled(painting);
    soft_->setEnabled(painting);
    palette_->setEnabled(painting);
    choosePicture_->setEnabled(painting);
    undo_->setEnabled(painting && session_->canUndo());
    save_->setEnabled(painting);
    saveAndExit_->setEnabled(painting);
}

QString PaintWindow::savedAnswer(const QString& prefix) {
    if (!session_)
        return {};
    const SavedObject saved = savePainted(session_->object(), objectFile_.toStdString());
    if (saved.path.empty()) {
        QMessageBox::warning(this, kTitle, QString::fromStdString(saved.failure));
        return {};
    }
    session_->markSaved();
    return prefix + QString::fromStdString(saved.path);
}

void PaintWindow::save() {
    const QString answer = savedAnswer(kSaveAnswer);
    if (!answer.isEmpty())
        QApplication::clipboard()->setText(answer);
}

void PaintWindow::saveAndExit() {
    const QString answer = savedAnswer(kSaveAndExitAnswer);
    if (!answer.isEmpty())
        answerAndLeave(answer);
}

void PaintWindow::discard() {
    if (userKeepsPainting())
        return;
    answerAndLeave(kDiscardAnswer);
}

bool PaintWindow::userKeepsPainting() {
    if (leaving_ || !session_ || !session_->changedSinceSave())
        return false;
    const auto answer = QMessageBox::question(
        this, QStringLiteral("Discard your painting?"),
        QStringLiteral("Your painting has not been saved. Discard it and close the paint tool?"),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    return answer != QMessageBox::Yes;
}

void PaintWindow::answerAndLeave(const QString& answer) {
    if (leaving_)
        return;
    leaving_ = true;
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->setText(answer);
    hide();
    // Whoever reads the answer clears or replaces the clipboard; then it is
    // safe to go. Other programs' comings and goings are told too: only a
    // clipboard that no longer holds the answer means it was taken.
    connect(clipboard, &QClipboard::changed, this,
            [this, clipboard, answer](QClipboard::Mode mode) {
                if (mode == QClipboard::Clipboard && clipboard->text() != answer)
                    Q_EMIT finished();
            });
    QTimer::singleShot(kAnswerKeptMs, this, &PaintWindow::finished);
}

void PaintWindow::closeEvent(QCloseEvent* event) {
    if (userKeepsPainting()) {
        event->ignore();
        return;
    }
    answerAndLeave(kDiscardAnswer);
    event->accept();
}

} // namespace vessa::paint3d
