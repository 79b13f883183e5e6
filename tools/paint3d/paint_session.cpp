#include "paint_session.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vessa::paint3d {

PaintSession::PaintSession(PaintObject object) : object_(std::move(object)), picker_(object_) {
}

void PaintSession::beginEdit() {
    edits_.push_back({++editsBegun_, {}, 0});
    keptInEdit_.clear();
}

void PaintSession::keep(int part, const TexelRect& rect) {
    if (rect.empty())
        return;
    Skin& skin = skinOf(part);
    Edit& edit = edits_.back();
    for (int ty = rect.y0 / kTileSide; ty <= (rect.y1 - 1) / kTileSide; ++ty) {
        for (int tx = rect.x0 / kTileSide; tx <= (rect.x1 - 1) / kTileSide; ++tx) {
            const std::uint64_t key = (static_cast<std::uint64_t>(part) << 32) |
                                      (static_cast<std::uint64_t>(ty) << 16) |
                                      static_cast<std::uint64_t>(tx);
            if (!keptInEdit_.insert(key).second)
                continue;
            KeptTile tile{part,
                          {tx * kTileSide, ty * kTileSide,
                           std::min(skin.width(), (tx + 1) * kTileSide),
                           std::min(skin.height(), (ty + 1) * kTileSide)},
                          {}};
            const size_t rowBytes = static_cast<size_t>(tile.rect.x1 - tile.rect.x0) * 4;
            tile.texels.resize(rowBytes * static_cast<size_t>(tile.rect.y1 - tile.rect.y0));
            for (int y = tile.rect.y0; y < tile.rect.y1; ++y)
                std::memcpy(&tile.texels[rowBytes * static_cast<size_t>(y - tile.rect.y0)],
                            skin.data() +
                                (static_cast<size_t>(y) * skin.width() + tile.rect.x0) * 4,
                            rowBytes);
            edit.bytes += tile.texels.size();
            undoBytes_ += tile.texels.size();
            edit.tiles.push_back(std::move(tile));
        }
    }
    // The oldest edits go first; the one being made stays.
    while (undoBytes_ > kUndoBytes && edits_.size() > 1) {
        undoBytes_ -= edits_.front().bytes;
        forgottenEdit_ = edits_.front().number;
        edits_.pop_front();
    }
}

void PaintSession::changed(int part) {
    changedSkins_.insert(part);
}

bool PaintSession::beginStroke(const Ray& ray) {
    endStroke();
    beginEdit();
    stroking_ = true;
    return continueStroke(ray);
}

bool PaintSession::continueStroke(const Ray& ray) {
    if (!stroking_)
        return false;
    const auto hit = picker_.pick(ray);
    if (!hit)
        return false;
    Skin& skin = skinOf(hit->part);
    keep(hit->part, brushRect(skin, hit->s, hit->t, brush));
    stampBrush(skin, hit->s, hit->t, brush);
    changed(hit->part);
    return true;
}

void PaintSession::endStroke() {
    if (stroking_ && edits_.back().tiles.empty())
        edits_.pop_back(); // a stroke that met nothing is nothing to undo
    stroking_ = false;
}

bool PaintSession::fillPart(const Ray& ray) {
    endStroke();
    const auto hit = picker_.pick(ray);
    if (!hit)
        return false;
    beginEdit();
    Skin& skin = skinOf(hit->part);
    keep(hit->part, skin.whole());
    fillSkin(skin, brush.color);
    changed(hit->part);
    return true;
}

bool PaintSession::placePicture(const Ray& ray, const Skin& picture, double across) {
    endStroke();
    const auto hit = picker_.pick(ray);
    if (!hit)
        return false;
    beginEdit();
    Skin& skin = skinOf(hit->part);
    keep(hit->part, pictureRect(skin, hit->s, hit->t, picture, across));
    stampPicture(skin, hit->s, hit->t, picture, across);
    changed(hit->part);
    return true;
}

bool PaintSession::undo() {
    endStroke();
    if (edits_.empty())
        return false;
    Edit edit = std::move(edits_.back());
    edits_.pop_back();
    undoBytes_ -= edit.bytes;
    for (const KeptTile& tile : edit.tiles) {
        Skin& skin = skinOf(tile.part);
        const size_t rowBytes = static_cast<size_t>(tile.rect.x1 - tile.rect.x0) * 4;
        for (int y = tile.rect.y0; y < tile.rect.y1; ++y)
            std::memcpy(skin.data() + (static_cast<size_t>(y) * skin.width() + tile.rect.x0) * 4,
                        &tile.texels[rowBytes * static_cast<size_t>(y - tile.rect.y0)], rowBytes);
        changed(tile.part);
    }
    return true;
}

std::set<int> PaintSession::takeChangedSkins() {
    return std::exchange(changedSkins_, {});
}

} // namespace vessa::paint3d
