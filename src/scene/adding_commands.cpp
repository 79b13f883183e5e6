#include "scene/adding_commands.h"

#include "controls/accessible_names.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "scene/gallery_dialog.h"

#include <QBoxLayout>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace vessa {

AddingCommands::AddingCommands(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                               QWidget* window)
    : QObject(window), state_(state), engine_(engine), reporter_(reporter), window_(window) {
}

void AddingCommands::guarded(const std::function<void()>& work) {
    try {
        asRunTimeError(work);
    } catch (const RunTimeError& e) {
        reporter_.reportHandlerFailure(e);
    }
}

void AddingCommands::add(const QString& method, const QString& argument, const QString& title,
                         const QString& failureMessage) {
    QVariant answer;
    try {
        answer = engine_.call(method, {argument});
    } catch (const RunTimeError& e) {
        reporter_.CheckInterpreterResult(e.description(), failureMessage);
        return;
    }
    // The engine answers why it added nothing; what it did add, its records show.
    if (isSuccessResult(answer))
        return;
    auto* box =
        new QMessageBox(QMessageBox::Warning, title, answer.toString(), QMessageBox::Ok, window_);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void AddingCommands::AddObjectFile() {
    guarded([this] {
        modelKinds_.clear();
        for (const QVariant& kind : engine_.call(QStringLiteral("GetModelFileKinds")).toList())
            modelKinds_ << kind.toString().toLower();
        // An engine that reads no model files still shows the gallery, and says so when
        // an object is chosen.
        galleryModel_.load(state_.HomeDir + QStringLiteral("Objects"),
                           modelKinds_.isEmpty() ? QStringList{QStringLiteral("mdl")}
                                                 : modelKinds_);
    });
    if (!gallery_) {
        gallery_ = new GalleryDialog(
            galleryModel_, [this] { return chooseModelFile(); }, window_);
        connect(gallery_, &GalleryDialog::objectChosen, this, &AddingCommands::addObject);
    }
    gallery_->showGallery();
    gallery_->open();
}

QString AddingCommands::chooseModelFile() {
    QFileDialog dialog(gallery_, QStringLiteral("Add An Object"),
                       state_.HomeDir + QStringLiteral("Objects"), modelFileFilter(modelKinds_));
    dialog.setObjectName(QStringLiteral("MiscDialog"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

void AddingCommands::addObject(const QString& path) {
    add(QStringLiteral("addobject"), path, QStringLiteral("Add An Object"),
        QStringLiteral("MainForm:AddObjectButton_MouseUp: Error calling python addobject."));
}

void AddingCommands::AddSoundFile() {
    if (soundFolder_.isEmpty())
        soundFolder_ = state_.HomeDir + QStringLiteral("Sounds");
    QFileDialog dialog(window_, QStringLiteral("Add A Sound"), soundFolder_,
                       QStringLiteral("wav files (*.wav);;All Files (*)"));
    dialog.setObjectName(QStringLiteral("SoundDialog"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    // Cancel only stops.
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    const QString path = dialog.selectedFiles().first();
    soundFolder_ = QFileInfo(path).absolutePath();
    add(QStringLiteral("AddSound"), path, QStringLiteral("Add A Sound"),
        QStringLiteral("AddSound:Error making sound."));
}

void AddingCommands::showAddTextForm() {
    if (!addTextForm_)
        makeAddTextForm();
    addTextBox_->clear();
    addTextForm_->open();
    addTextBox_->setFocus();
}

void AddingCommands::makeAddTextForm() {
    addTextForm_ = new QDialog(window_);
    addTextForm_->setObjectName(QStringLiteral("AddTextForm"));
    addTextForm_->setWindowTitle(QStringLiteral("Add Text"));
    addTextBox_ = new QLineEdit(addTextForm_);
    addTextBox_->setObjectName(QStringLiteral("AddTextBox"));
    auto* label = new QLabel(tr("&Text to put in the world:"), addTextForm_);
    label->setBuddy(addTextBox_);
    auto* add = new QPushButton(tr("Add Text"), addTextForm_);
    add->setObjectName(QStringLiteral("AddTextButton"));
    add->setDefault(true);
    auto* cancel = new QPushButton(tr("Cancel"), addTextForm_);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(add);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(addTextForm_);
    layout->addWidget(label);
    layout->addWidget(addTextBox_);
    layout->addLayout(buttons);
    applyAccessibleNames(addTextForm_);
    connect(add, &QPushButton::clicked, this, &AddingCommands::addText);
    connect(cancel, &QPushButton::clicked, addTextForm_, &QDialog::reject);
    // However the form goes, its box is empty the next time.
    connect(addTextForm_, &QDialog::finished, addTextBox_, &QLineEdit::clear);
}

void AddingCommands::addText() {
    const QString text = addTextBox_->text();
    addTextForm_->accept();
    if (text.isEmpty())
        return;
    guarded([&] { engine_.call(QStringLiteral("AddText"), {text}); });
}

} // namespace vessa
