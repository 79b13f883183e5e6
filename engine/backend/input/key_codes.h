#pragma once

#include <QString>

#include <string>

namespace vessa::core {

// A key as worlds name it: the text they compare with ev.key ("A", "Up",
// "Space") and the Windows virtual-key code they compare with ev.rawkey
// (65, 38, 32), which scripts written for the program rely on.
struct KeyName {
    std::string key;
    int rawkey = 0;
};

KeyName keyNameFor(int qtKey, const QString& text);

} // namespace vessa::core
