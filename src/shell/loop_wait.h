#pragma once

namespace vessa {

class EngineLink;

// How long the program may rest before it steps the engine again: the main loop
// sleeping in its pump, and IdleTimer while a dialog holds the loop. The engine says
// how soon it is next due (GetLoopWait, in milliseconds, negative when nothing is);
// the program never rests longer than kLongestRestMs, so that what the engine could
// not foresee is still seen soon, and asks an engine that can't tell again after
// kUnknownRestMs, so that its animations stay smooth.
inline constexpr int kLongestRestMs = 250;
inline constexpr int kUnknownRestMs = 10;

int restBeforeNextStepMs(EngineLink& engine);

} // namespace vessa
