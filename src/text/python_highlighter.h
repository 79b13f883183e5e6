#pragma once

#include <QList>
#include <QSet>
#include <QStringList>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>
#include <QTextCursor>

#include <climits>

namespace vessa {

// Colours Python in a text document: keywords, strings (in three quotes over several
// lines too), comments, numbers, and the names the world knows: its commands and its
// objects. Each line is coloured from the state the line before ended in, so an edit
// colours its own line again, and the lines after it only while their start changes.
// Those lines (all the rest, when a key opens a string in three quotes) are coloured a
// share per turn of the event loop, so that no key waits for a whole long text.
class PythonHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
public:
    explicit PythonHighlighter(QTextDocument* document);

    // The commands (Move, Turn, ...) and the objects of the world; names compare
    // without regard to capitals, as the world's names do. The document is coloured
    // again only when they changed.
    void setWorldNames(const QStringList& commands, const QStringList& objects);

    // Whether the whole document is being coloured again for new names: the text then
    // stays as it was, though the document tells of a change.
    bool recolouring() const { return recolouring_; }

    // Whether lines after an edit still wait for their share of a later turn.
    bool colouringLater() const { return !later_.isEmpty(); }

    // How many lines after an edit are coloured in one turn of the event loop.
    static constexpr int kLinesPerTurn = 1000;

    enum class Look { Keyword, String, Comment, Number, Command, Object };
    const QTextCharFormat& format(Look look) const;

protected:
    void highlightBlock(const QString& text) override;

private:
    void noteEdit(int from, int removed, int added);
    bool putOff(int stateAfter);
    void colourPutOffLines();

    QSet<QString> commands_; // lower case
    QSet<QString> objects_;  // lower case
    QTextCharFormat looks_[6];
    bool recolouring_ = false;
    // Where the text the last edit changed ends: lines after it are coloured only because
    // the line before them ended differently, and only kLinesPerTurn of them at once.
    int editEnd_ = INT_MAX;
    int linesAfterEdit_ = 0;
    QList<QTextCursor> later_; // the lines whose ends are not yet told to the next line
};

} // namespace vessa
