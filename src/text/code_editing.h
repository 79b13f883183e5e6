#pragma once

#include <QString>
#include <QStringView>

namespace vessa {

// One step of indentation in the code box: four blanks, as Python's own style has it.
inline constexpr int kIndentWidth = 4;

// The most text the code box takes: a world's hand-written Python is a page or a few
// hundred; a paste that would go past this is most likely not code at all.
inline constexpr qsizetype kCodeBoxMaxCharacters = 500'000;

// The blanks a new line begins with when Enter is pressed with lineBeforeCaret before
// the caret: those of the line, and one step more after a line that opens a block (it
// ends in ':', a comment after it aside).
QString indentationAfterEnter(QStringView lineBeforeCaret);

// How many characters at the start of line Shift+Tab takes away: one tab, or blanks up
// to one step of indentation.
int unindentWidth(QStringView line);

// The blanks Tab puts in at column (from 0): up to the next step of indentation.
QString blanksToNextStep(int column);

// The lines (from 0) a run of part of a box covers: from the line of the selection's
// start to that of its last selected character, or the caret's line alone.
struct LineRange {
    int first = 0;
    int last = 0;
    bool selection = false; // false: the caret's line, run as at a prompt

    bool operator==(const LineRange&) const = default;
};

// What may be pasted into a box that holds boxLength characters, of which selected are
// replaced by the paste.
enum class PasteVerdict { Take, NotText, TooLong };
PasteVerdict judgePaste(QStringView pasted, qsizetype boxLength, qsizetype selected);

// Why a paste was refused, for the user; empty for Take.
QString pasteRefusal(PasteVerdict verdict, qsizetype pastedLength);

} // namespace vessa
