#pragma once

#include "export/sketch_inflation.h"

#include <QColor>
#include <QString>

#include <osg/Node>
#include <osg/ref_ptr>

namespace vessa {

// The sketch tool's object as OpenSceneGraph draws it and as the engine reads it: one
// part named `name`, its surface one shape in one colour, lit from both sides.
osg::ref_ptr<osg::Node> sketchObjectNode(const SketchMesh& mesh, const QColor& colour,
                                         const std::string& name);

// Writes the object as the engine's object file (OpenSceneGraph's binary format under
// the name `.mdl`), whole or not at all. Answers "" or why it could not.
QString writeSketchObject(const osg::Node& object, const QString& path);

} // namespace vessa
