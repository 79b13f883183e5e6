#pragma once

#include "scene/gallery_model.h"

#include <QObject>
#include <QPointer>

class QDialog;
class QLineEdit;
class QWidget;

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;
class GalleryDialog;

// The commands by which things come into the scene: Add Object (the gallery of the home
// folder's objects, or a model file from elsewhere), Add Sound (a sound file) and Add
// Text (letters typed into a small form). They only ask the engine; the object and sound
// trees follow when its records come back. A file the engine can't read is refused with
// the engine's own words, and nothing is added. The dialogs are made on first use and
// belong to window.
class AddingCommands : public QObject {
    Q_OBJECT
public:
    AddingCommands(AppState& state, EngineLink& engine, ErrorReporter& reporter, QWidget* window);

    // "Add Object...": opens the gallery.
    void AddObjectFile();
    // "Add Sound...": asks for a sound file, in the folder of the last one or else the home
    // folder's sounds.
    void AddSoundFile();
    // "Add Text...": opens the form, its box empty and focused.
    void showAddTextForm();

    GalleryDialog* gallery() const { return gallery_; }
    QDialog* addTextForm() const { return addTextForm_; }

private:
    void addObject(const QString& path);
    QString chooseModelFile();
    void makeAddTextForm();
    void addText();
    // Asks the engine to add from a file; shows its refusal under title, and a failed
    // call as failureMessage.
    void add(const QString& method, const QString& argument, const QString& title,
             const QString& failureMessage);
    void guarded(const std::function<void()>& work);

    AppState& state_;         // Not owned.
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    QWidget* window_;         // Not owned.
    GalleryModel galleryModel_;
    QStringList modelKinds_;           // what the engine reads, as the gallery was last opened
    GalleryDialog* gallery_ = nullptr; // Owned by window_.
    QDialog* addTextForm_ = nullptr;   // Owned by window_.
    QLineEdit* addTextBox_ = nullptr;  // Owned by addTextForm_.
    QString soundFolder_;              // where the last sound came from
};

} // namespace vessa
