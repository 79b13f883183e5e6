#pragma once

#include "gateway/error_report.h"

namespace vessa {

// Where internal errors and errors in the user's code are shown: ErrorForm on
// screen, a recorder in tests.
class ErrorDisplay {
public:
    virtual ~ErrorDisplay() = default;
    // Pumps events once, then shows the form modally and returns when it closes.
    virtual void showModal(const ErrorFormContent& content) = 0;
};

// How the process ends when it must.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;
    [[noreturn]] virtual void endProcess(int exitCode) = 0;
};

} // namespace vessa
