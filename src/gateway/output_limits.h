#pragma once

#include <QString>

namespace vessa {

// A text pane takes seconds to lay out one very long line, so a line of printed
// output longer than this is shown cut, with a note of how much was left out.
inline constexpr qsizetype kLongestOutputLine = 4000;
// Lines kept in the output pane; older ones scroll away.
inline constexpr int kOutputPaneLines = 20000;

QString cutLongLines(const QString& text, qsizetype longestLine = kLongestOutputLine);

} // namespace vessa
