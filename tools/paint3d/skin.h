#pragma once

#include <cstdint>
#include <vector>

namespace vessa::paint3d {

struct Rgba {
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
    bool operator==(const Rgba&) const = default;
};

// A rectangle of texels, [x0, x1) by [y0, y1); empty when x0 >= x1 or y0 >= y1.
struct TexelRect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool empty() const { return x0 >= x1 || y0 >= y1; }
};

// The picture a part wears while it is painted: 8-bit red, green, blue and
// alpha, bottom row first, as OpenSceneGraph's images and texture
// coordinates have it (t = 0 is the bottom row). Its pixels never move in
// memory, so a texture can show them as they change.
class Skin {
public:
    // The largest skin painted on; pictures (those a model wears, those a
    // user lays on) may be larger, up to kLargestPicture.
    static constexpr int kLargestSide = 1024;
    static constexpr int kLargestPicture = 4096;

    Skin() = default;
    Skin(int width, int height, Rgba fill); // sides clamped to 1..kLargestPicture

    int width() const { return width_; }
    int height() const { return height_; }
    Rgba pixel(int x, int y) const;
    void setPixel(int x, int y, Rgba color);
    // The colour at texture coordinates (s, t), each wrapped into 0..1, blended
    // from the four nearest texels.
    Rgba sample(double s, double t) const;
    std::uint8_t* data() { return texels_.data(); }
    const std::uint8_t* data() const { return texels_.data(); }
    TexelRect whole() const { return {0, 0, width_, height_}; }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> texels_;
};

// The skin scaled to width x height, each texel sampled from the original.
Skin resampled(const Skin& skin, int width, int height);

struct Brush {
    double radius = 8.0; // in texels
    Rgba color{200, 30, 30, 255};
    bool soft = false; // a soft edge fades out from the middle; a hard one is solid to its rim
};

// One dab of the brush centred at texture coordinates (s, t); brushRect is
// what it may change.
TexelRect brushRect(const Skin& skin, double s, double t, const Brush& brush);
void stampBrush(Skin& skin, double s, double t, const Brush& brush);
// The picture laid over the skin, its longer side `across` texels, centred
// at (s, t), blended by its own alpha; pictureRect is what it may change.
TexelRect pictureRect(const Skin& skin, double s, double t, const Skin& picture, double across);
void stampPicture(Skin& skin, double s, double t, const Skin& picture, double across);
// The whole skin one colour.
void fillSkin(Skin& skin, Rgba color);

} // namespace vessa::paint3d
