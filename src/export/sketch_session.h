#pragma once

#include "export/sketch_inflation.h"

#include <QColor>
#include <QString>

#include <vector>

namespace vessa {

// What the sketch tool has made so far: the shape of each stroke that made one, the
// last the one shown, so that Undo goes back a stroke; and the colour chosen. Strokes
// come in the drawing area's pixels, y downward; shapes are in meters, y upward, in
// the same place, so that the object stands where its outline was drawn.
class SketchSession {
public:
    struct Shape {
        SketchOutline outline;
        SketchMesh mesh;
    };
    // What became of a stroke: a new shape, or none, with a word for the user either way
    // (empty when there is nothing to say).
    struct StrokeOutcome {
        bool made = false;
        QString message;
    };

    static constexpr double kPixelsPerMeter = 100;
    // A stroke smaller across than this many pixels makes nothing.
    static constexpr double kSmallestStrokePixels = 12;

    StrokeOutcome addStroke(const std::vector<SketchPoint>& pixels);
    // Back to the shape before the last stroke (or to none); false when there is none.
    bool undo();
    bool canUndo() const { return !shapes_.empty(); }
    const Shape* current() const { return shapes_.empty() ? nullptr : &shapes_.back(); }

    const QColor& colour() const { return colour_; }
    void setColour(const QColor& colour) { colour_ = colour; }

private:
    std::vector<Shape> shapes_;
    QColor colour_ = QColor(0xc8, 0x8a, 0x4a);
};

// The shape's surface moved so that the middle of its foot is the origin: an object
// stands on the ground where the engine puts it.
SketchMesh standingOnItsFoot(const SketchMesh& mesh);

// The clipboard texts of the sketch tool, which the program waits for.
QString sketchSavedMessage(const QString& objectPath);
QString sketchDiscardedMessage();

// A new, empty folder of the tool's own in the user's temporary folder (only the user
// may read it), and the path of the object file to write in it; "" when none can be
// made. The folder stays after the tool ends: the world keeps using the object's file
// until it is saved with the world.
QString newSketchObjectPath();
// Whether path is an object file the sketch tool makes: a `.mdl` file directly inside
// a folder that newSketchObjectPath makes.
bool isSketchObjectPath(const QString& path);

} // namespace vessa
