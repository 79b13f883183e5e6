#pragma once

#include "text/text_search.h"

#include <QString>
#include <QTextCursor>

class QTextDocument;

namespace vessa {

// Find and Replace in a box of code, over its document (no window needed). A find
// selects the next place the text stands from SearchPos, one character after the
// last find; when there is none the next find starts again at the top. Replacing goes
// through the document's own undo: a replace of all is one step of it.
class CodeTextFind {
public:
    // The next place target stands: selected in cursor (a cursor of the document) and
    // true, or false with the cursor left as it was.
    bool ArbitraryCodeBox_FindText(QTextCursor& cursor, const QString& target,
                                   const FindOptions& options);
    // When the cursor's selection is target, it becomes with; then the next place is
    // found as ArbitraryCodeBox_FindText finds it. Answers whether a next one was found.
    bool Replace(QTextCursor& cursor, const QString& target, const QString& with,
                 const FindOptions& options);
    // Every place target stands, as one step of the document's undo; answers how many.
    static int ReplaceAll(QTextDocument& document, const QString& target, const QString& with,
                          const FindOptions& options);

    int SearchPos = 0; // where the next find begins
};

} // namespace vessa
