#include "export/tool_sessions.h"

#include "export/sketch_session.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

namespace {

constexpr int kClipboardLookMs = 100;
// The engine's step while a tool runs, and the usual one.
constexpr int kToolIdleMs = 42;
constexpr int kIdleMs = 1;
// What jview answers for a tool it does not have: the tool is missing.
constexpr int kNoSuchTool = 127;

const QString kVendorPage = QStringLiteral("https://vessa47.org/download");

struct MessageForm {
    const char* prefix;
    int comparedLength;
    int pathFrom; // -1: the message names no file
    ToolMessage::Kind kind;
};

// In this order, so that the longer PAINT3D_SAVE_AND_EXIT wins over PAINT3D_SAVE.
constexpr MessageForm kMessages[] = {
    {"PAINT3D_SAVE_AND_EXIT", 21, 22, ToolMessage::Kind::PaintSaveAndExit},
    {"PAINT3D_SAVE", 12, 13, ToolMessage::Kind::PaintSave},
    {"PAINT3D_DISCARD_AND_EXIT", 24, -1, ToolMessage::Kind::PaintDiscardAndExit},
    {"TEDDY_SAVE_AND_EXIT", 19, 20, ToolMessage::Kind::TeddySaveAndExit},
    {"TEDDY_DISCARD_AND_EXIT", 22, -1, ToolMessage::Kind::TeddyDiscardAndExit},
};

// A path as a Python string literal between single quotes.
QString quotedForPython(QString path) {
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    path.replace(QLatin1Char('\''), QStringLiteral("\\'"));
    return path;
}

QString canonicalFolder(const QString& folder) {
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(folder) : canonical;
}

} // namespace

ToolMessage readToolMessage(const QString& text) {
    for (const MessageForm& form : kMessages) {
        const QString prefix = QString::fromLatin1(form.prefix);
        if (text.left(form.comparedLength)
                .compare(prefix.left(form.comparedLength), Qt::CaseInsensitive) != 0)
            continue;
        ToolMessage message{form.kind, {}};
        if (form.pathFrom >= 0)
            message.path = text.mid(form.pathFrom);
        return message;
    }
    return {};
}

ErrorFormContent toolMissingContent(const QString& versionText) {
    ErrorFormContent content;
    content.typeCaption =
        QStringLiteral("System file missing. For help, copy this message to the Windows "
                       "clipboard (with the button to the right), and then paste it into an "
                       "email to ") +
        kSupportAddress;
    content.labelText = QStringLiteral("Version: ") + versionText +
                        QStringLiteral("\r\nInstall the latest version of Internet Explorer "
                                       "from ") +
                        kVendorPage;
    return content;
}

ToolSessions::ToolSessions(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                           ToolSessionsView& view, ToolClipboard& clipboard,
                           MakeProcess makeProcess, QString tempFolder, QObject* parent)
    : QObject(parent), state_(state), engine_(engine), reporter_(reporter), view_(view),
      clipboard_(clipboard), makeProcess_(std::move(makeProcess)),
      tempFolder_(std::move(tempFolder)) {
    PaintTimer_.setObjectName(QStringLiteral("PaintTimer"));
    TeddyTimer_.setObjectName(QStringLiteral("TeddyTimer"));
    for (QTimer* timer : {&PaintTimer_, &TeddyTimer_})
        timer->setInterval(kClipboardLookMs);
    connect(&PaintTimer_, &QTimer::timeout, this, &ToolSessions::PaintTimer_Timer);
    connect(&TeddyTimer_, &QTimer::timeout, this, &ToolSessions::TeddyTimer_Timer);
}

ToolSessions::~ToolSessions() {
    // A tool left running outlives the program; its end is no longer heard.
    for (auto* process : {paintProcess_.get(), teddyProcess_.get(), standInProcess_.get()})
        if (process)
            process->finished = {};
}

void ToolSessions::guarded(const QString& handler, const std::function<void()>& work) {
    try {
        asRunTimeError(work);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(
            ReportForm::C, QStringLiteral("VB:MainForm:") + handler + QStringLiteral(" Error"), e);
    }
}

void ToolSessions::mnuPaint_Click(const QString& objectName) {
    if (PaintTimer_.isActive()) {
        view_.showMessage(QStringLiteral("Paint Tool Already Running"),
                          QStringLiteral("Sorry, but you can only paint one object at a time."));
        return;
    }
    guarded(QStringLiteral("mnuPaint_Click()"), [&] {
        const QString file = QDir(tempFolder_).filePath(objectName + QStringLiteral(".mdl"));
        const QVariant stored = engine_.ExecuteCode(
            objectName + QStringLiteral(".store('") + quotedForPython(file) + QStringLiteral("')"),
            QStringLiteral("<Tool>"));
        reporter_.CheckInterpreterResult(
            stored, QStringLiteral("MainForm:mnuPaint_Click: Error storing object for painting."));
        // Without the file there is nothing to paint.
        if (!isSuccessResult(stored))
            return;
        PaintObjectName_ = objectName;
        paintFile_ = file;
        if (!startTool(QStringLiteral("VessaPaint3D"), {QStringLiteral("Paint3d"), file},
                       paintProcess_, [this](int exitCode) { toolEnded(PaintTimer_, exitCode); })) {
            reportToolMissing();
            return;
        }
        clipboard_.clear();
        beginSession(PaintTimer_);
    });
}

void ToolSessions::StartSketchTool() {
    guarded(QStringLiteral("StartSketchTool()"), [&] {
        if (startTool(QStringLiteral("Teddy2"), {QStringLiteral("Teddy")}, teddyProcess_,
                      [this](int exitCode) { toolEnded(TeddyTimer_, exitCode); })) {
            clipboard_.clear();
            beginSession(TeddyTimer_);
            return;
        }
        // The paint tool stands in, on its own: nothing is given to it and no answer is
        // awaited.
        if (!startTool(QStringLiteral("VessaPaint3D"), {QStringLiteral("Paint3d")}, standInProcess_,
                       [this](int exitCode) {
                           if (exitCode == kNoSuchTool)
                               reportToolMissing();
                       }))
            reportToolMissing();
    });
}

bool ToolSessions::startTool(const QString& folder, const QStringList& arguments,
                             std::unique_ptr<ToolProcess>& slot, std::function<void(int)> ended) {
    std::unique_ptr<ToolProcess> process = makeProcess_();
    // The tool works in its own folder when the home has one.
    const QString workingFolder = state_.HomeDir + folder;
    const QString jview = state_.HomeDir + QStringLiteral("bin/jview");
    if (!process->start(jview, arguments,
                        QFileInfo(workingFolder).isDir() ? workingFolder : state_.HomeDir))
        return false;
    process->finished = std::move(ended);
    slot = std::move(process);
    return true;
}

void ToolSessions::toolEnded(QTimer& timer, int exitCode) {
    // Its last answer may still be on the clipboard: it is read before the session ends.
    if (&timer == &PaintTimer_ && timer.isActive())
        PaintTimer_Timer();
    if (&timer == &TeddyTimer_ && timer.isActive())
        TeddyTimer_Timer();
    if (timer.isActive())
        endSession(timer);
    if (exitCode == kNoSuchTool)
        reportToolMissing();
}

void ToolSessions::beginSession(QTimer& timer) {
    state_.RunEngineLoop = false;
    view_.setIdleTimerInterval(kToolIdleMs);
    timer.start();
}

void ToolSessions::endSession(QTimer& timer) {
    state_.RunEngineLoop = true;
    view_.setIdleTimerInterval(kIdleMs);
    timer.stop();
}

void ToolSessions::reportToolMissing() {
    view_.showToolMissing(toolMissingContent(state_.VersionText));
}

bool ToolSessions::fromTool(const QString& path, const QStringList& folders,
                            const QString& file) const {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isAbsolute() || !info.isFile())
        return false;
    if (!file.isEmpty() && info.canonicalFilePath() == QFileInfo(file).canonicalFilePath())
        return true;
    const QString folder = info.canonicalPath();
    for (const QString& given : folders)
        if (!given.isEmpty() && folder == canonicalFolder(given))
            return true;
    return false;
}

void ToolSessions::PaintTimer_Timer() {
    guarded(QStringLiteral("PaintTimer_Timer()"), [&] {
        const ToolMessage message = readToolMessage(clipboard_.text());
        switch (message.kind) {
        case ToolMessage::Kind::PaintSaveAndExit:
        case ToolMessage::Kind::PaintSave:
            if (!fromTool(message.path, {tempFolder_}, paintFile_))
                return;
            if (view_.sceneScriptTab() != 0)
                view_.switchToTab(0);
            reporter_.CheckInterpreterResult(
                engine_.call(QStringLiteral("replaceobject"), {PaintObjectName_, message.path}),
                QStringLiteral("MainForm:PaintTimer_Timer: Error replacing repainted objects."));
            clipboard_.clear();
            if (message.kind == ToolMessage::Kind::PaintSaveAndExit)
                endSession(PaintTimer_);
            return;
        case ToolMessage::Kind::PaintDiscardAndExit:
            clipboard_.clear();
            endSession(PaintTimer_);
            return;
        default:
            return;
        }
    });
}

void ToolSessions::TeddyTimer_Timer() {
    guarded(QStringLiteral("TeddyTimer_Timer()"), [&] {
        const ToolMessage message = readToolMessage(clipboard_.text());
        if (message.kind == ToolMessage::Kind::TeddySaveAndExit) {
            // The sketch tool writes into a folder of its own in the temporary folder.
            if (!isSketchObjectPath(message.path) &&
                !fromTool(message.path, {tempFolder_, state_.HomeDir + QStringLiteral("Teddy2")},
                          {}))
                return;
            if (view_.sceneScriptTab() != 0)
                view_.switchToTab(0);
            reporter_.CheckInterpreterResult(
                engine_.call(QStringLiteral("loadteddyobject"), {message.path}),
                QStringLiteral("MainForm:TeddyTimer_Timer: Error loading the new object."));
            endSession(TeddyTimer_);
        } else if (message.kind == ToolMessage::Kind::TeddyDiscardAndExit) {
            // The clipboard keeps this message.
            endSession(TeddyTimer_);
        }
    });
}

} // namespace vessa
