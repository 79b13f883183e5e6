#pragma once

#include <string_view>

namespace vessa::core {

// The shape of a tween over time: maps the elapsed fraction [0, 1] to the
// fraction of the change applied. Styles are the engine's words, any case;
// an unknown style eases gently at both ends.
using Easing = double (*)(double);

Easing easingFor(std::string_view style);

} // namespace vessa::core
