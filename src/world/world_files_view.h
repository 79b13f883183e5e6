#pragma once

#include <QDateTime>
#include <QString>

namespace vessa {

// The frame the camera view is shown in, for a new view: its size in pixels and the id
// of its host.
struct CameraFrame {
    int width = 0;
    int height = 0;
    qint64 hostId = 0;
};

// Unsaved work found in the recovery folder: the world it belongs to ("" for an unnamed
// one) and when its copy was written.
struct RecoveredWork {
    QString folder; // the copy, a world folder of its own
    QString worldSaveFile;
    QDateTime savedAt;
};

// What loading, saving and the File commands ask of the windows.
class WorldFilesView {
public:
    enum class Answer { Yes, No, Cancel };
    enum class FolderUse { Open, SaveAs };

    virtual ~WorldFilesView() = default;

    // A box with an OK button; details, when given, stand below the text.
    virtual void showMessage(const QString& title, const QString& text,
                             const QString& details = QString()) = 0;
    // "Save changes to your world first?"
    virtual Answer askSaveChanges() = 0;
    // "This world already exists.  Overwrite?" of a folder chosen to save into.
    virtual Answer askOverwrite(const QString& folder) = 0;
    // Whether to bring back work that was not saved when the program last stopped.
    virtual bool askBringBack(const RecoveredWork& work) = 0;
    // A world folder the user chooses, beginning in startIn; "" when none was chosen.
    virtual QString chooseWorldFolder(FolderUse use, const QString& startIn) = 0;

    virtual void SwitchToTab(int tab) = 0;
    virtual CameraFrame cameraFrame() const = 0;
    virtual void showHelpPage(const QString& page) = 0;
    // The camera window goes above the others again if the user asked for that.
    virtual void keepCameraWindowOnTop() = 0;
    virtual void pumpEvents() = 0;
    virtual void PrintOutput(const QString& text) = 0;
};

} // namespace vessa
