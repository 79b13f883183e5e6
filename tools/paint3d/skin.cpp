#include "skin.h"

#include <algorithm>
#include <cmath>

namespace vessa::paint3d {

namespace {

int clampSide(int side) {
    return std::clamp(side, 1, Skin::kLargestPicture);
}

std::uint8_t mixed(std::uint8_t a, std::uint8_t b, float t) {
    return static_cast<std::uint8_t>(std::lround(a + (b - a) * t));
}

Rgba mix(Rgba a, Rgba b, float t) {
    return {mixed(a.r, b.r, t), mixed(a.g, b.g, t), mixed(a.b, b.b, t), mixed(a.a, b.a, t)};
}

// The texels within `reach` of the centre (cx, cy), kept on the skin.
TexelRect around(const Skin& skin, double cx, double cy, double reach) {
    TexelRect r;
    r.x0 = std::max(0, static_cast<int>(std::floor(cx - reach)));
    r.y0 = std::max(0, static_cast<int>(std::floor(cy - reach)));
    r.x1 = std::min(skin.width(), static_cast<int>(std::ceil(cx + reach)) + 1);
    r.y1 = std::min(skin.height(), static_cast<int>(std::ceil(cy + reach)) + 1);
    return r;
}

// How much of the brush's colour a texel at distance d from its middle gets.
float coverage(const Brush& brush, double d) {
    if (brush.soft) {
        const double t = d / brush.radius;
        if (t >= 1.0)
            return 0.0f;
        const double fall = 1.0 - t * t;
        return static_cast<float>(fall * fall);
    }
    return static_cast<float>(std::clamp(brush.radius + 0.5 - d, 0.0, 1.0));
}

// src over dst with the given strength (0..1) times src's own alpha.
Rgba blendOver(Rgba dst, Rgba src, float strength) {
    const float a = std::clamp(strength, 0.0f, 1.0f) * (src.a / 255.0f);
    Rgba out = mix(dst, src, a);
    out.a = std::max(dst.a, static_cast<std::uint8_t>(std::lround(255.0f * a)));
    return out;
}

} // namespace

Skin::Skin(int width, int height, Rgba fill)
    : width_(clampSide(width)), height_(clampSide(height)),
      texels_(static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4) {
    fillSkin(*this, fill);
}

Rgba Skin::pixel(int x, int y) const {
    const std::uint8_t* p = &texels_[(static_cast<size_t>(y) * width_ + x) * 4];
    return {p[0], p[1], p[2], p[3]};
}

void Skin::setPixel(int x, int y, Rgba color) {
    std::uint8_t* p = &texels_[(static_cast<size_t>(y) * width_ + x) * 4];
    p[0] = color.r;
    p[1] = color.g;
    p[2] = color.b;
    p[3] = color.a;
}

Rgba Skin::sample(double s, double t) const {
    s -= std::floor(s);
    t -= std::floor(t);
    const double x = s * width_ - 0.5;
    const double y = t * height_ - 0.5;
    const int x0 = std::clamp(static_cast<int>(std::floor(x)), 0, width_ - 1);
    const int y0 = std::clamp(static_cast<int>(std::floor(y)), 0, height_ - 1);
    const int x1 = std::min(x0 + 1, width_ - 1);
    const int y1 = std::min(y0 + 1, height_ - 1);
    const auto fx = static_cast<float>(std::clamp(x - x0, 0.0, 1.0));
    const auto fy = static_cast<float>(std::clamp(y - y0, 0.0, 1.0));
    return mix(mix(pixel(x0, y0), pixel(x1, y0), fx), mix(pixel(x0, y1), pixel(x1, y1), fx), fy);
}

Skin resampled(const Skin& skin, int width, int height) {
    Skin scaled(width, height, {});
    for (int y = 0; y < scaled.height(); ++y) {
        for (int x = 0; x < scaled.width(); ++x)
            scaled.setPixel(x, y,
                            skin.sample((x + 0.5) / scaled.width(), (y + 0.5) / scaled.height()));
    }
    return scaled;
}

TexelRect brushRect(const Skin& skin, double s, double t, const Brush& brush) {
    return around(skin, s * skin.width() - 0.5, t * skin.height() - 0.5, brush.radius + 1.0);
}

void stampBrush(Skin& skin, double s, double t, const Brush& brush) {
    const double cx = s * skin.width() - 0.5;
    const double cy = t * skin.height() - 0.5;
    const TexelRect r = brushRect(skin, s, t, brush);
    for (int y = r.y0; y < r.y1; ++y) {
        for (int x = r.x0; x < r.x1; ++x) {
            const float c = coverage(brush, std::hypot(x - cx, y - cy));
            if (c > 0.0f)
                skin.setPixel(x, y, blendOver(skin.pixel(x, y), brush.color, c));
        }
    }
}

TexelRect pictureRect(const Skin& skin, double s, double t, const Skin& picture, double across) {
    const double scale = across / std::max(picture.width(), picture.height());
    const double halfW = picture.width() * scale / 2.0;
    const double halfH = picture.height() * scale / 2.0;
    const double cx = s * skin.width();
    const double cy = t * skin.height();
    TexelRect r;
    r.x0 = std::max(0, static_cast<int>(std::floor(cx - halfW)));
    r.y0 = std::max(0, static_cast<int>(std::floor(cy - halfH)));
    r.x1 = std::min(skin.width(), static_cast<int>(std::ceil(cx + halfW)));
    r.y1 = std::min(skin.height(), static_cast<int>(std::ceil(cy + halfH)));
    return r;
}

void stampPicture(Skin& skin, double s, double t, const Skin& picture, double across) {
    const double scale = across / std::max(picture.width(), picture.height());
    const double halfW = picture.width() * scale / 2.0;
    const double halfH = picture.height() * scale / 2.0;
    const double cx = s * skin.width();
    const double cy = t * skin.height();
    const TexelRect r = pictureRect(skin, s, t, picture, across);
    for (int y = r.y0; y < r.y1; ++y) {
        for (int x = r.x0; x < r.x1; ++x) {
            const double ps = (x + 0.5 - (cx - halfW)) / (2.0 * halfW);
            const double pt = (y + 0.5 - (cy - halfH)) / (2.0 * halfH);
            if (ps < 0.0 || ps >= 1.0 || pt < 0.0 || pt >= 1.0)
                continue;
            skin.setPixel(x, y, blendOver(skin.pixel(x, y), picture.sample(ps, pt), 1.0f));
        }
    }
}

void fillSkin(Skin& skin, Rgba color) {
    for (int y = 0; y < skin.height(); ++y) {
        for (int x = 0; x < skin.width(); ++x)
            skin.setPixel(x, y, color);
    }
}

} // namespace vessa::paint3d
