#pragma once

#include "paint_object.h"

#include <osg/Group>
#include <osg/Image>
#include <osg/ref_ptr>

#include <string>
#include <vector>

namespace vessa::core {
class ReaderProcess;
}

namespace vessa::paint3d {

// The object as the engine's object files hold it: a group named after it,
// each further part a transform with the part's name and place under its
// parent's, each part's meshes in a geode, every mesh of a part wearing
// the part's skin. The images show the skins' own pixels (they change as
// the skins do), one for each part, in `skins` when asked for.
osg::ref_ptr<osg::Group> graphOf(const PaintObject& object,
                                 std::vector<osg::ref_ptr<osg::Image>>* skins = nullptr);

// An object file read for painting, through the engine's reader program with
// its limits: the object, or why it can't be painted.
struct OpenedObject {
    std::optional<PaintObject> object;
    std::string refusal;
};
OpenedObject openForPainting(const std::string& path, core::ReaderProcess& reader);

// Writes the painted object beside the file it came from, under a name of
// its own that no file has yet ("<name>_painted<n>.mdl", n from 1): the
// engine's object format with the skins inside. Nothing else is ever
// overwritten. The path written, or why nothing was.
struct SavedObject {
    std::string path;
    std::string failure;
};
SavedObject savePainted(const PaintObject& object, const std::string& givenPath);

} // namespace vessa::paint3d
