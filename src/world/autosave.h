#pragma once

#include "world/recovery_store.h"

#include <QTimer>

#include <chrono>
#include <functional>

namespace vessa {

class EngineLink;
class OpenWorld;

// Keeps a copy of unsaved work in the recovery store, every interval while the open
// world holds work worth saving. What it must ask on the user interface's thread comes
// in short steps, each in a turn of the event loop of its own, so that the user is
// never held for long: the engine takes its scene at once (as a save would write it,
// also while the world runs), then gives the scene file's text a part at a time, then
// the script file's text is made. The files are written off that thread.
class Autosave {
public:
    // How many objects' text one step asks the engine for.
    static constexpr int kObjectsPerStep = 100;

    // tell: one line for the user, when a copy can't be written (once until one can).
    Autosave(EngineLink& engine, OpenWorld& world, RecoveryStore& store,
             std::function<void(const QString&)> tell);

    void start(std::chrono::milliseconds interval);
    void stop();
    // Begins a copy now, when the world holds unsaved work and no copy is under way.
    void copyNow();
    // Steps are under way or files are being written.
    bool busy() const;

private:
    void nextStep();
    void abandon(const QString& why);
    void tellProblems();

    EngineLink& engine_;
    OpenWorld& world_;
    RecoveryStore& store_;
    std::function<void(const QString&)> tell_;
    QTimer interval_;
    QTimer step_;
    bool stepping_ = false;
    bool sceneDone_ = false;
    int generation_ = 0;
    RecoveryCopy copy_;
    bool told_ = false;
};

} // namespace vessa
