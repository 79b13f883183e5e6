#include "input/key_codes.h"

#include <Qt>

#include <array>

namespace vessa::core {

namespace {

struct NamedKey {
    int qtKey;
    const char* key;
    int rawkey;
};

constexpr std::array<NamedKey, 24> kNamedKeys = {{
    {Qt::Key_Backspace, "Backspace", 8},
    {Qt::Key_Tab, "Tab", 9},
    {Qt::Key_Return, "Enter", 13},
    {Qt::Key_Enter, "Enter", 13},
    {Qt::Key_Shift, "Shift", 16},
    {Qt::Key_Control, "Control", 17},
    {Qt::Key_Alt, "Alt", 18},
    {Qt::Key_Escape, "Escape", 27},
    {Qt::Key_Space, "Space", 32},
    {Qt::Key_PageUp, "PageUp", 33},
    {Qt::Key_PageDown, "PageDown", 34},
    {Qt::Key_End, "End", 35},
    {Qt::Key_Home, "Home", 36},
    {Qt::Key_Left, "Left", 37},
    {Qt::Key_Up, "Up", 38},
    {Qt::Key_Right, "Right", 39},
    {Qt::Key_Down, "Down", 40},
    {Qt::Key_Insert, "Insert", 45},
    {Qt::Key_Delete, "Delete", 46},
    {Qt::Key_Plus, "+", 107},
    {Qt::Key_Minus, "-", 109},
    {Qt::Key_Period, ".", 190},
    {Qt::Key_Comma, ",", 188},
    {Qt::Key_Slash, "/", 191},
}};

} // namespace

KeyName keyNameFor(int qtKey, const QString& text) {
    if ((qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9))
        return {std::string(1, static_cast<char>(qtKey)), qtKey}; // same codes as Windows
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12)
        return {"F" + std::to_string(qtKey - Qt::Key_F1 + 1), 112 + qtKey - Qt::Key_F1};
    for (const NamedKey& named : kNamedKeys) {
        if (named.qtKey == qtKey)
            return {named.key, named.rawkey};
    }
    return {text.toStdString(), 0};
}

} // namespace vessa::core
