#pragma once

#include "paint_object.h"
#include "surface_pick.h"

#include <cstdint>
#include <deque>
#include <set>
#include <unordered_set>
#include <vector>

namespace vessa::paint3d {

// Painting an object: brush strokes, fills and pictures found on its
// surface by rays and put onto the skins, and the undo of each.
//
// Every change is one edit (a whole stroke, one fill, one picture) whose
// undo keeps the squares of texels it touched as they were before it.
// The session also tells which skins changed since it was last asked, for
// a view to show, and whether the skins differ from what was last saved:
// each edit has a number of its own, and the skins are as saved while the
// last edit still applied is the one that was last when they were saved.
class PaintSession {
public:
    static constexpr int kTileSide = 64;
    // Older edits are forgotten when their undo holds more than this.
    static constexpr size_t kUndoBytes = size_t{256} << 20;

    explicit PaintSession(PaintObject object);
    PaintSession(const PaintSession&) = delete;
    PaintSession& operator=(const PaintSession&) = delete;

    const PaintObject& object() const { return object_; }
    const SurfacePicker& picker() const { return picker_; }
    Brush brush;

    // A stroke: a dab where each ray meets the surface. false: it missed.
    bool beginStroke(const Ray& ray);
    bool continueStroke(const Ray& ray);
    void endStroke();
    // The part the ray meets, all in the brush's colour.
    bool fillPart(const Ray& ray);
    // The picture, its longer side `across` texels, centred where the ray meets.
    bool placePicture(const Ray& ray, const Skin& picture, double across);

    bool undo();
    bool canUndo() const { return !edits_.empty(); }
    bool changedSinceSave() const { return lastEdit() != savedAtEdit_; }
    void markSaved() { savedAtEdit_ = lastEdit(); }
    // The parts whose skins changed since the last call.
    std::set<int> takeChangedSkins();

private:
    struct KeptTile {
        int part;
        TexelRect rect;
        std::vector<std::uint8_t> texels;
    };
    struct Edit {
        std::uint64_t number;
        std::vector<KeptTile> tiles;
        size_t bytes = 0;
    };

    void beginEdit();
    // Keeps the tiles of the rectangle that this edit has not kept yet.
    void keep(int part, const TexelRect& rect);
    void changed(int part);
    // The number of the last edit that the skins show; 0 for none.
    std::uint64_t lastEdit() const {
        return edits_.empty() ? forgottenEdit_ : edits_.back().number;
    }
    Skin& skinOf(int part) { return object_.parts[static_cast<size_t>(part)].skin; }

    PaintObject object_;
    SurfacePicker picker_;
    std::deque<Edit> edits_;
    size_t undoBytes_ = 0;
    std::unordered_set<std::uint64_t> keptInEdit_;
    bool stroking_ = false;
    std::uint64_t editsBegun_ = 0;
    // The last edit forgotten to keep the undo small: the skins show it when
    // all that is left is undone.
    std::uint64_t forgottenEdit_ = 0;
    std::uint64_t savedAtEdit_ = 0;
    std::set<int> changedSkins_;
};

} // namespace vessa::paint3d
