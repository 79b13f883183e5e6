#pragma once

namespace vessa::testing {

// How long a test waits for a window to be shown or made active. A shared, loaded
// machine can take seconds; a window that never comes still fails, only later.
inline constexpr int kWindowWaitMs = 30'000;

} // namespace vessa::testing
