#pragma once

#include <QString>

namespace vessa {

// The files of a world folder that the front end reads or writes, spelled as the
// program spells them. On disk any case of a name means the same file.
namespace world_files {
inline const QString Scene = QStringLiteral("World_Scene.py");
inline const QString TreeScript = QStringLiteral("world_script.tv");
inline const QString Python = QStringLiteral("world_script.py");
inline const QString Thumbnail = QStringLiteral("world_thumbnail.bmp");
} // namespace world_files

// The path of name in folder: the entry there whose name differs from it only in case,
// when there is one, otherwise name as it is spelled (for a file still to be made).
QString fileInFolder(const QString& folder, const QString& name);
// The same for the last part of a path.
QString existingPath(const QString& path);

// A folder is a world when its scene file stands in it.
bool isWorldFolder(const QString& path);
// What a user is told of a folder that is no world.
QString notAWorldMessage(const QString& path);

} // namespace vessa
