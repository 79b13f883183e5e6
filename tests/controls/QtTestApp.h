#pragma once

#include <QApplication>

namespace vessa::testing {

// The one QApplication of a test program, made on first use rather than at start-up so
// that listing the tests needs no display.
inline void EnsureApplication() {
    static int argc = 1;
    static char name[] = "vessa_test";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance())
        return;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(argc, argv); // lives as long as the program
}

} // namespace vessa::testing
