#pragma once

#include <QString>
#include <QStringView>

// Finding and replacing a piece of text as Find and Replace compare it: without regard
// to case unless asked, and anywhere in a word unless whole words are asked for.
namespace vessa {

struct FindOptions {
    bool MatchCase = false;
    // A find counts only where it neither follows nor runs on into a letter, digit or "_".
    bool WholeWord = false;
};

// Where target first stands in text at or after from, case ignored, or -1: Qt's own
// search folded at every character; this folds ASCII by arithmetic, the find's case.
qsizetype indexIgnoringCase(QStringView text, QStringView target, qsizetype from);
// Where target first stands in text at or after from, or -1. An empty target stands
// nowhere.
qsizetype findText(QStringView text, QStringView target, qsizetype from,
                   const FindOptions& options);
// Whether the whole of text is target, as a find compares them.
bool isMatch(QStringView text, QStringView target, const FindOptions& options);
// Every place target stands in text, left to right and never overlapping, replaced by
// with; replaced counts them.
QString replaceText(const QString& text, QStringView target, const QString& with,
                    const FindOptions& options, int& replaced);

} // namespace vessa
