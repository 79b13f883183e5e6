#pragma once

#include <QDateTime>
#include <QString>

namespace vessa {

struct WorldContext;

// What SaveWorld answers, compared as text by the commands that need a saved world.
inline const QString kYesSave = QStringLiteral("yessave");
inline const QString kNoSave = QStringLiteral("nosave");

// Writes the open world into a world folder: world_script.tv, a dated copy of it in the
// Backups folder, world_script.py, then the engine's scene with its files and picture.
// The files of one save change together (StagedSave): a save cut short leaves the old
// world, and a save that fails (a folder gone or read only, a full disk, a file the
// disk won't replace) is told in a box with what the user can do, leaves the folder as
// it was, and leaves the world open and unchanged, so that it can be saved elsewhere.
class WorldSaver {
public:
    explicit WorldSaver(WorldContext& context) : context_(context) {}

    // "yessave" when the world was saved, "nosave" when not. now dates the backup.
    QString SaveWorld(const QString& worldPath,
                      const QDateTime& now = QDateTime::currentDateTime());

private:
    QString notSaved(const QString& text, const QString& details = QString());

    WorldContext& context_;
};

} // namespace vessa
