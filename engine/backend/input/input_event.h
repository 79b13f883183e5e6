#pragma once

#include "scene/channels.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vessa::core {

// A mouse or key event in the view, as the engine's Python layer receives
// it: what it means for the world (responses, mouse tools, the camera) is
// decided there. Kinds: "LeftMouseDown", "LeftMouseUp", "RightMouseDown",
// "RightMouseUp", "MouseMove", "Wheel", "KeyDown", "KeyUp".
struct InputEvent {
    std::string kind;
    double x = 0.0; // pixels from the top left of the view
    double y = 0.0;
    std::optional<int> node;           // under the pointer, for button events
    std::optional<ChannelValue> point; // where the pointer meets that node
    ChannelValue rayOrigin{};          // the pointer's line of sight, engine frame
    ChannelValue rayDirection{};
    double wheelSteps = 0.0; // positive away from the user
    std::string key;         // "A", "Up", "Space", ...
    int rawkey = 0;          // the Windows virtual-key code worlds test for
    bool shift = false;
    bool control = false;
};

// Events wait here until the engine's next Loop() takes them.
class InputQueue {
public:
    void push(InputEvent event) { events_.push_back(std::move(event)); }
    std::vector<InputEvent> takeAll() { return std::exchange(events_, {}); }
    bool empty() const { return events_.empty(); }

private:
    std::vector<InputEvent> events_;
};

} // namespace vessa::core
