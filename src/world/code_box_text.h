#pragma once

#include <QString>

namespace vessa {

// What the code box holds: the world's hand-edited Python, and whether the box is shown.
// A world opens with the box shown exactly when it holds code.
struct CodeBoxText {
    QString Text;
    bool Visible = false;
};

} // namespace vessa
