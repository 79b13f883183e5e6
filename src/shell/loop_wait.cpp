#include "shell/loop_wait.h"

#include "gateway/engine_link.h"

#include <algorithm>

namespace vessa {

int restBeforeNextStepMs(EngineLink& engine) {
    try {
        const int wait = engine.call(QStringLiteral("GetLoopWait")).toInt();
        return wait < 0 ? kLongestRestMs : std::min(wait, kLongestRestMs);
    } catch (const RunTimeError&) {
        return kUnknownRestMs;
    }
}

} // namespace vessa
