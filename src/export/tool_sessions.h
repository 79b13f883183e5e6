#pragma once

#include "gateway/error_report.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

namespace vessa {

class EngineLink;
class ErrorReporter;
struct AppState;

// The system clipboard as the tools' answers come through it.
class ToolClipboard {
public:
    virtual ~ToolClipboard() = default;
    virtual QString text() const = 0;
    virtual void clear() = 0;
};

// One run of a tool program. finished is called when the program ends, with its exit
// code, unless the process is dropped first.
class ToolProcess {
public:
    virtual ~ToolProcess() = default;
    // Starts program with arguments in workingFolder; false when it could not be started.
    virtual bool start(const QString& program, const QStringList& arguments,
                       const QString& workingFolder) = 0;
    std::function<void(int exitCode)> finished;
};

// What the sessions ask of the windows.
class ToolSessionsView {
public:
    virtual ~ToolSessionsView() = default;
    virtual void showMessage(const QString& title, const QString& text) = 0;
    // The error form for a tool that can't be started; the camera window is held off
    // the top while it is up.
    virtual void showToolMissing(const ErrorFormContent& content) = 0;
    virtual int sceneScriptTab() const = 0;
    virtual void switchToTab(int tab) = 0;
    virtual void setIdleTimerInterval(int ms) = 0;
};

// A tool's answer on the clipboard, taken apart.
struct ToolMessage {
    enum class Kind {
        None,
        PaintSaveAndExit,
        PaintSave,
        PaintDiscardAndExit,
        TeddySaveAndExit,
        TeddyDiscardAndExit
    };
    Kind kind = Kind::None;
    QString path; // the file the message names; empty for the discards
};
// Reads the clipboard text as the tools write it: a prefix of fixed length, compared
// without regard to case, in an order in which the longer paint message wins.
ToolMessage readToolMessage(const QString& text);

// The paint tool (Paint3d, which repaints an object's skin) and the sketch tool (Teddy,
// which makes an object from a drawn outline): each runs as a program of its own,
// started through the home folder's jview, and answers through the clipboard, which a
// timer reads ten times a second while the tool runs. Meanwhile the engine is stepped
// by the idle timer at a lower rate, so that the tool gets the machine.
//
// A message is acted on only when the file it names is the one the tool was given or
// lies in the folder the tool was given: text another program leaves on the clipboard
// can't make the world load a file of its choosing. A tool that ends without a message
// ends its session too.
class ToolSessions : public QObject {
    Q_OBJECT
public:
    using MakeProcess = std::function<std::unique_ptr<ToolProcess>()>;

    ToolSessions(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                 ToolSessionsView& view, ToolClipboard& clipboard, MakeProcess makeProcess,
                 QString tempFolder, QObject* parent = nullptr);
    ~ToolSessions() override;

    // The tools are found through the home folder's bin/jview (state's HomeDir); an
    // object is stored for the paint tool in tempFolder.
    // Opens objectName in the paint tool; one paint session at a time.
    void mnuPaint_Click(const QString& objectName);
    // Opens the sketch tool for a new object.
    void StartSketchTool();

    void PaintTimer_Timer();
    void TeddyTimer_Timer();

    QTimer& PaintTimer() { return PaintTimer_; }
    QTimer& TeddyTimer() { return TeddyTimer_; }
    const QString& PaintObjectName() const { return PaintObjectName_; }

private:
    // Starts jview with arguments in the home's folder; the process goes into slot and
    // ended hears its end.
    bool startTool(const QString& folder, const QStringList& arguments,
                   std::unique_ptr<ToolProcess>& slot, std::function<void(int)> ended);
    // The session of timer ends with its tool: a last answer is read first.
    void toolEnded(QTimer& timer, int exitCode);
    void beginSession(QTimer& timer);
    void endSession(QTimer& timer);
    // Whether path is the file given to the tool or a file in a folder given to it.
    bool fromTool(const QString& path, const QStringList& folders, const QString& file) const;
    void reportToolMissing();
    void guarded(const QString& handler, const std::function<void()>& work);

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    ToolSessionsView& view_;
    ToolClipboard& clipboard_;
    MakeProcess makeProcess_;
    QString tempFolder_;
    QTimer PaintTimer_;
    QTimer TeddyTimer_;
    QString PaintObjectName_;
    QString paintFile_; // the object file given to the paint tool
    std::unique_ptr<ToolProcess> paintProcess_;
    std::unique_ptr<ToolProcess> teddyProcess_;
    std::unique_ptr<ToolProcess> standInProcess_; // the paint tool in place of the sketch tool
};

// The error form's texts when a tool can't be started.
ErrorFormContent toolMissingContent(const QString& versionText);

} // namespace vessa
