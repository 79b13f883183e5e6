#pragma once

#include <QList>
#include <QString>

namespace vessa {

class EngineLink;

// An error found in a world: the file it stands in (relative to the world folder, or
// the folder itself when it is no world), the line (from 1; 0 when there is none) and
// what is wrong.
struct WorldError {
    QString file;
    int line = 0;
    QString message;
};

struct WorldReport {
    QString world;
    QList<WorldError> errors;
    bool clean() const { return errors.isEmpty(); }
};

// Checks worlds in an engine that runs on a manual clock (UseManualClock): loads each
// world, reads its script files, generates its Python and runs it as a run does, then
// runs the world for a number of seconds of its own time, as fast as it goes. Every
// failure on the way is an error of the world, with the line of the file it stands in:
// the scene file, world_script.tv (a damaged file, a row the Python had to leave out),
// or world_script.py, as saving the world writes it, for an error of its Python.
class WorldChecker {
public:
    WorldChecker(EngineLink& engine, double seconds) : engine_(engine), seconds_(seconds) {}

    WorldReport check(const QString& world);

private:
    EngineLink& engine_; // Not owned.
    double seconds_;
};

} // namespace vessa
