#pragma once

#include "controls/tree_control.h"

#include <QString>

namespace vessa {

// Images of the object kinds: the even one for an object on its own, the one
// below it for the same kind as a part of another object.
namespace object_images {
constexpr int ScenePart = 1;
constexpr int Scene = 2;
constexpr int Camera = 4;
constexpr int Light = 6;
constexpr int ModelPart = 7;
constexpr int Model = 8;
constexpr int Sound = 53;
} // namespace object_images

// Keys of the scene trees' nodes, from the ids the engine sends as text.
inline QString objectKey(const QString& id) {
    return QLatin1Char('k') + id;
}
inline QString soundKey(const QString& id) {
    return QLatin1Char('s') + id;
}

// The trees that mirror the engine's scene. Only the engine's difference
// records change ObjectTree, Junkyard, SoundTree and SoundTreeJunkyard; the
// panels send the engine statements and wait for the records to come back.
struct SceneTrees {
    TreeControl ObjectTree;        // objects, parts under their owners; Key objectKey(id)
    TreeControl ObjectTree2;       // read-only copy for choosing who an event happens to
    TreeControl Junkyard;          // destroyed objects, waiting to be brought back
    TreeControl SoundTree;         // the scene's sounds; Key soundKey(id)
    TreeControl SoundTreeJunkyard; // sounds that are not in the scene
    QString SelectedObjectName;    // Tag of the object pressed last in ObjectTree
    QString SelectedSoundName;     // Text of the sound pressed last in SoundTree
};

// Makes node's label its name relative to its parent, and its children's
// labels theirs relative to it. Grandchildren are left as they are.
void SetNodeLabels(TreeNode* node, const QString& name);

// Copies source and all below it onto target (which may be in another tree).
// Nodes that can't be chosen are greyed: the scene and its part form always,
// a model part when greyImage7 is set, and with greyMarked every node at or
// below the one whose Tag is markTag. Without greyMarked, the copy whose Tag
// is markTag becomes the selected and highlighted item. Roots are expanded;
// other copies keep their expansion only with keepExpanded.
void CopyNodes(TreeControl& tree, const TreeNode* source, TreeNode* target, bool keepExpanded,
               bool greyImage7, const QString& markTag, bool greyMarked);

// Rebuilds ObjectTree2 from ObjectTree, with "AnyWhere" beside the scene.
void ObjectTree2_Update(SceneTrees& trees);

// Empties the sound trees, leaving the junkyard's two holders of sounds.
void InitSoundTree(SceneTrees& trees);

} // namespace vessa
