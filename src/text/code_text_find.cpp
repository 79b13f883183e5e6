#include "text/code_text_find.h"

#include <QTextDocument>

#include <vector>

namespace vessa {

bool CodeTextFind::ArbitraryCodeBox_FindText(QTextCursor& cursor, const QString& target,
                                             const FindOptions& options) {
    const QString text = cursor.document()->toPlainText();
    const qsizetype found = findText(text, target, SearchPos, options);
    if (found < 0) {
        SearchPos = 0;
        return false;
    }
    cursor.setPosition(static_cast<int>(found));
    cursor.setPosition(static_cast<int>(found + target.size()), QTextCursor::KeepAnchor);
    SearchPos = static_cast<int>(found) + 1;
    return true;
}

bool CodeTextFind::Replace(QTextCursor& cursor, const QString& target, const QString& with,
                           const FindOptions& options) {
    if (cursor.hasSelection() && isMatch(cursor.selectedText(), target, options)) {
        cursor.insertText(with);
        SearchPos = cursor.position();
    }
    return ArbitraryCodeBox_FindText(cursor, target, options);
}

int CodeTextFind::ReplaceAll(QTextDocument& document, const QString& target, const QString& with,
                             const FindOptions& options) {
    const QString text = document.toPlainText();
    std::vector<qsizetype> places;
    for (qsizetype at = findText(text, target, 0, options); at >= 0;
         at = findText(text, target, at + target.size(), options))
        places.push_back(at);
    if (places.empty())
        return 0;
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    // From the end, so that each place still stands where it was found.
    for (auto at = places.crbegin(); at != places.crend(); ++at) {
        cursor.setPosition(static_cast<int>(*at));
        cursor.setPosition(static_cast<int>(*at + target.size()), QTextCursor::KeepAnchor);
        cursor.insertText(with);
    }
    cursor.endEditBlock();
    return static_cast<int>(places.size());
}

} // namespace vessa
