#include "export/sketch_session.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <unistd.h>

#include <algorithm>
#include <limits>

namespace vessa {

namespace {

const QString kFolderPrefix = QStringLiteral("vessa47-sketch-");
const QString kObjectFile = QStringLiteral("Sketch.mdl");

QString problemMessage(OutlineProblem problem) {
    switch (problem) {
    case OutlineProblem::TooFewPoints:
        return QStringLiteral("Draw the outline in one stroke: hold the left mouse button "
                              "down and go all the way round the shape.");
    case OutlineProblem::TooSmall:
        return QStringLiteral("That outline is too small to make an object from. Draw it "
                              "bigger.");
    case OutlineProblem::NoArea:
        return QStringLiteral("That outline has no inside. Go round the shape and end near "
                              "where you started.");
    case OutlineProblem::None:
        break;
    }
    return {};
}

} // namespace

SketchSession::StrokeOutcome SketchSession::addStroke(const std::vector<SketchPoint>& pixels) {
    std::vector<SketchPoint> meters;
    meters.reserve(pixels.size());
    for (const SketchPoint& p : pixels)
        meters.push_back({p.x / kPixelsPerMeter, -p.y / kPixelsPerMeter});
    Shape shape;
    shape.outline = cleanOutline(meters, kSmallestStrokePixels / kPixelsPerMeter);
    if (!shape.outline.usable())
        return {false, problemMessage(shape.outline.problem)};
    shape.mesh = inflate(shape.outline);
    // A surface that is not whole is never shown nor saved.
    if (shape.mesh.empty() || !surfaceFault(shape.mesh).empty())
        return {false, QStringLiteral("That outline could not be made into an object. Draw it "
                                      "again, a little more smoothly.")};
    StrokeOutcome outcome{true, {}};
    if (shape.outline.loopsCut)
        outcome.message =
            QStringLiteral("Your outline crossed itself, so only its biggest loop was used.");
    shapes_.push_back(std::move(shape));
    return outcome;
}

bool SketchSession::undo() {
    if (shapes_.empty())
        return false;
    shapes_.pop_back();
    return true;
}

SketchMesh standingOnItsFoot(const SketchMesh& mesh) {
    SketchMesh moved = mesh;
    float minX = std::numeric_limits<float>::max(), maxX = -minX, minY = minX;
    for (size_t v = 0; v < mesh.positions.size(); v += 3) {
        minX = std::min(minX, mesh.positions[v]);
        maxX = std::max(maxX, mesh.positions[v]);
        minY = std::min(minY, mesh.positions[v + 1]);
    }
    for (size_t v = 0; v < moved.positions.size(); v += 3) {
        moved.positions[v] -= (minX + maxX) / 2;
        moved.positions[v + 1] -= minY;
    }
    return moved;
}

QString sketchSavedMessage(const QString& objectPath) {
    return QStringLiteral("TEDDY_SAVE_AND_EXIT ") + objectPath;
}

QString sketchDiscardedMessage() {
    return QStringLiteral("TEDDY_DISCARD_AND_EXIT");
}

QString newSketchObjectPath() {
    QTemporaryDir folder(QDir::tempPath() + QLatin1Char('/') + kFolderPrefix +
                         QStringLiteral("XXXXXX"));
    if (!folder.isValid())
        return {};
    folder.setAutoRemove(false);
    return folder.filePath(kObjectFile);
}

bool isSketchObjectPath(const QString& path) {
    const QFileInfo file(path);
    if (!file.exists() || !file.isFile() || file.isSymLink() ||
        file.suffix().compare(QStringLiteral("mdl"), Qt::CaseInsensitive) != 0)
        return false;
    const QFileInfo folder(file.absolutePath());
    return !folder.isSymLink() && folder.fileName().startsWith(kFolderPrefix) &&
           folder.ownerId() == ::getuid() && file.ownerId() == ::getuid() &&
           QFileInfo(folder.absolutePath()).canonicalFilePath() ==
               QFileInfo(QDir::tempPath()).canonicalFilePath();
}

} // namespace vessa
