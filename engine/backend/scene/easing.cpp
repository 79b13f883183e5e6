#include "scene/easing.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <utility>

namespace vessa::core {

namespace {

double linear(double t) {
    return t;
}

double gently(double t) {
    return t * t * (3.0 - 2.0 * t);
}

double beginGently(double t) {
    return t * t;
}

double beginAbruptly(double t) {
    return 1.0 - (1.0 - t) * (1.0 - t);
}

const std::array<std::pair<std::string_view, Easing>, 6> kStyles = {{
    {"abruptly", linear},
    {"gently", gently},
    {"begingently", beginGently}, // and ends abruptly
    {"endabruptly", beginGently},
    {"beginabruptly", beginAbruptly}, // and ends gently
    {"endgently", beginAbruptly},
}};

} // namespace

Easing easingFor(std::string_view style) {
    std::string key(style);
    std::transform(key.begin(), key.end(), key.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const auto& [name, easing] : kStyles) {
        if (name == key)
            return easing;
    }
    return gently;
}

} // namespace vessa::core
