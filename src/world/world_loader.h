#pragma once

#include <QString>
#include <QVariant>

#include <functional>

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;
class OpenWorld;
class WorldFilesView;

// What moving a world between its folder and the program needs: the program's values,
// the engine, the reports of failed engine calls, the open world and the windows.
struct WorldContext {
    AppState& state;
    EngineLink& engine;
    ErrorReporter& reporter;
    OpenWorld& world;
    WorldFilesView& view;
    // Whether the user trusts the code of the world in a folder.
    std::function<bool(const QString& folder)> trusted;

    // An engine call whose failure is told with failure; the work goes on either way.
    void call(const QString& method, const QVariantList& args, const QString& failure);
    // One of the front end's own statements, the same way.
    void runTool(const QString& statement, const QString& failure);
    // The object tree's records, taken out of the rhythm of the main loop.
    void pollTreeDifferences(const QString& where);
    // Tells the engine whether the code of the open world is trusted.
    void tellTrust();
};

// The title of every box about a world that could not be loaded.
inline const QString kWorldLoadTitle = QStringLiteral("Vessa47 - World Load");

// Brings a world folder into the engine and the open world. Everything that can refuse
// a world is asked first: the folder is a world, a save of it cut short is finished,
// its script file is read and checked, the engine reads its scene (the engine changes
// nothing when it refuses). Only then does the open world change, in the order the
// program has always had: the trees emptied, the camera view made, the script, rows
// and code filled in, the world named, made clean, its state kept as the handbasket,
// and the tab it asks for shown. A refusal is told in a box and leaves the world that
// was open as it was.
class WorldLoader {
public:
    explicit WorldLoader(WorldContext& context) : context_(context) {}

    // With showHelp, a help page the world has is shown beside it.
    bool LoadWorld(const QString& worldPath, bool showHelp);
    // A copy of a world, kept apart from it (recovered work), loaded and named as the
    // world at worldSaveFile ("" for an unnamed one); it holds unsaved work.
    bool loadCopy(const QString& folder, const QString& worldSaveFile);

private:
    bool load(const QString& folder, const QString& name);
    bool refuse(const QString& folder, const QString& why, const QString& whatToDo);
    void showTabOfWorld(const QString& folder);

    WorldContext& context_;
};

// The folder as a world is named: no separator at its end.
QString worldPathOf(const QString& path);

} // namespace vessa
