#pragma once

#include <QSet>
#include <QStringList>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

namespace vessa {

// Colours Python in a text document: keywords, strings (in three quotes over several
// lines too), comments, numbers, and the names the world knows: its commands and its
// objects. Each line is coloured from the state the line before ended in, so an edit
// colours its own line again, and the lines after it only while their start changes.
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

    enum class Look { Keyword, String, Comment, Number, Command, Object };
    const QTextCharFormat& format(Look look) const;

protected:
    void highlightBlock(const QString& text) override;

private:
    QSet<QString> commands_; // lower case
    QSet<QString> objects_;  // lower case
    QTextCharFormat looks_[6];
    bool recolouring_ = false;
};

} // namespace vessa
