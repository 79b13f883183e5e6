#pragma once

#include <QString>

// Starts the built program as a user would, headless, with settings of its own, driven
// by the test driver plugin (VESSA_TEST_PLUGIN_DIR) through script.

namespace vessa::testing {

struct ProgramRun {
    bool finished = false;
    int exitCode = -1;
    QString errors; // standard error, where the driver reports
};

// With settings kept in configFolder.
ProgramRun runProgram(const QString& program, const QString& script, const QString& configFolder);
// With settings of its own, which go when it ends.
ProgramRun runProgram(const QString& program, const QString& script);

} // namespace vessa::testing
