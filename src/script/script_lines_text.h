#pragma once

#include <QString>

#include <optional>

namespace vessa {

class TreeControl;
class TreeNode;

// Lines of the script as plain text, the way a user mails them to a friend or finds them on
// a web page, and back:
//
//     Hop = DoInOrder
//     	Bunny.Move(Up, 1)
//     	DoTogether
//     		Bunny.Turn(Left, 1/4, Duration=2)
//
// One line of the script a line of text, indented by one tab a level, without the
// "more..." markers. Reading the text back takes nothing on trust: every line must be a
// block or a line of the script's vocabulary, with plain values, indented under a block.

// The most a text may hold to be read as lines: more is refused before it is looked at.
inline constexpr qsizetype MaxScriptTextCharacters = 1'000'000;
inline constexpr int MaxScriptTextLines = 10'000;
inline constexpr int MaxScriptTextLineLength = 1'000;
inline constexpr int MaxScriptTextDepth = 100;

// node and everything below it, node's own line not indented.
QString ScriptLinesText(const TreeNode* node);

// The node's text a plain line stands for: the marker put back, the keywords spelled as
// the script spells them; nothing when the line is not a line of the script.
std::optional<QString> ScriptLineOf(const QString& plain);

// Reads text into tree, which must be empty, as one root: the one item the text holds at
// its top level, or, when it holds several, a "DoInOrder" block around them, so that they
// go in together and come out by one undo. An animation ("Hop = DoInOrder") anywhere but
// alone at the top becomes a labelled block ("DoInOrder : Hop"). Answers what is wrong,
// in words for the user, and then leaves tree empty; an empty answer means all was read.
QString ReadScriptLines(const QString& text, TreeControl& tree);

} // namespace vessa
