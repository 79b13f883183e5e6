#include "text/python_highlighter.h"

#include "text/python_tokens.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTimer>

#include <utility>

namespace vessa {

namespace {

QTextCharFormat look(const QColor& colour, bool bold = false, bool italic = false) {
    QTextCharFormat format;
    format.setForeground(colour);
    if (bold)
        format.setFontWeight(QFont::Bold);
    format.setFontItalic(italic);
    return format;
}

QSet<QString> lowerCased(const QStringList& names) {
    QSet<QString> set;
    set.reserve(names.size());
    for (const QString& name : names)
        set.insert(name.toLower());
    return set;
}

} // namespace

PythonHighlighter::PythonHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(static_cast<QObject*>(document)) {
    // Told of each edit before the colouring that follows it, to know where it ends.
    connect(document, &QTextDocument::contentsChange, this, &PythonHighlighter::noteEdit);
    setDocument(document);
    // Dark colours that keep their contrast on a white page.
    looks_[int(Look::Keyword)] = look(QColor(0, 0, 160), true);
    looks_[int(Look::String)] = look(QColor(160, 32, 0));
    looks_[int(Look::Comment)] = look(QColor(0, 110, 0), false, true);
    looks_[int(Look::Number)] = look(QColor(128, 0, 128));
    looks_[int(Look::Command)] = look(QColor(0, 100, 140), true);
    looks_[int(Look::Object)] = look(QColor(150, 80, 0), true);
}

const QTextCharFormat& PythonHighlighter::format(Look look) const {
    return looks_[int(look)];
}

void PythonHighlighter::setWorldNames(const QStringList& commands, const QStringList& objects) {
    QSet<QString> newCommands = lowerCased(commands);
    QSet<QString> newObjects = lowerCased(objects);
    if (newCommands == commands_ && newObjects == objects_)
        return;
    commands_ = std::move(newCommands);
    objects_ = std::move(newObjects);
    recolouring_ = true;
    editEnd_ = INT_MAX;
    rehighlight();
    recolouring_ = false;
}

void PythonHighlighter::noteEdit(int from, int removed, int added) {
    // The last line the edit touched, found as the colouring finds it.
    const QTextBlock last = document()->findBlock(from + added + (removed > 0 ? 1 : 0));
    editEnd_ = last.isValid() ? last.position() + last.length() : INT_MAX;
    linesAfterEdit_ = 0;
}

bool PythonHighlighter::putOff(int stateAfter) {
    const QTextBlock line = currentBlock();
    if (line.position() < editEnd_ || ++linesAfterEdit_ <= kLinesPerTurn ||
        currentBlockState() == stateAfter)
        return false;
    // The line keeps the end it had, so the colouring stops after it for this turn.
    later_.append(QTextCursor(line));
    if (later_.size() == 1)
        QTimer::singleShot(0, this, &PythonHighlighter::colourPutOffLines);
    return true;
}

void PythonHighlighter::colourPutOffLines() {
    // The cursors followed any edits made meanwhile to the lines they stand on.
    const QList<QTextCursor> lines = std::exchange(later_, {});
    recolouring_ = true;
    for (const QTextCursor& at : lines) {
        const QTextBlock line = at.block();
        editEnd_ = line.position() + line.length();
        linesAfterEdit_ = 0;
        rehighlightBlock(line);
    }
    recolouring_ = false;
}

void PythonHighlighter::highlightBlock(const QString& text) {
    const int before = previousBlockState() < 0 ? OrdinaryLine : previousBlockState();
    int after = OrdinaryLine;
    for (const PythonToken& token : pythonTokens(text, before, after)) {
        const int start = int(token.start);
        const int length = int(token.length);
        switch (token.kind) {
        case PythonTokenKind::Keyword:
            setFormat(start, length, format(Look::Keyword));
            break;
        case PythonTokenKind::String:
            setFormat(start, length, format(Look::String));
            break;
        case PythonTokenKind::Comment:
            setFormat(start, length, format(Look::Comment));
            break;
        case PythonTokenKind::Number:
            setFormat(start, length, format(Look::Number));
            break;
        case PythonTokenKind::Name: {
            if (commands_.isEmpty() && objects_.isEmpty())
                break;
            const QString word = text.mid(start, length).toLower();
            if (objects_.contains(word))
                setFormat(start, length, format(Look::Object));
            else if (commands_.contains(word))
                setFormat(start, length, format(Look::Command));
            break;
        }
        }
    }
    if (!putOff(after))
        setCurrentBlockState(after);
}

} // namespace vessa
