#pragma once

#include "controls/node_ref.h"
#include "text/text_search.h"

#include <QString>

namespace vessa {

class TreeControl;
class TreeNode;

// A line as the script shows it to a find: without the "more..." marker, so that
// "Camera.Move(Forward, 1, more...)" reads "Camera.Move(Forward, 1)".
QString lineAsShown(const QString& line);

// The node after node in reading order (down into its children first, then on to the
// next sibling of it or of an ancestor); nullptr after the last.
TreeNode* nodeAfter(const TreeNode* node);

// Find over the script tree, one press of the Find button at a time. A find goes through
// the lines in reading order from just after the selected one, round the end to the
// top, until it comes back to the node that was selected when the round began (the stop
// node): each press selects the next line that holds the text, and the press that comes
// back to the stop node selects it again and says there is nothing more. What the button
// says is the state between presses: "Find" before a round, "Find Next" during one,
// "Find Again" after one.
class ScriptFind {
public:
    enum class Step { Find, FindNext, FindAgain };

    explicit ScriptFind(TreeControl& tree) : tree_(tree) {}

    Step step() const { return step_; }
    static QString Caption(Step step);
    // The text to find changed: the next press begins a new round.
    void restart() { step_ = Step::Find; }
    // True when a line holding target was selected; false when the round came back to
    // its stop node (selected again), or there is nothing to look through.
    bool FindButton_Click(const QString& target, const FindOptions& options);

private:
    TreeControl& tree_; // Not owned.
    NodeRef StopNode;
    Step step_ = Step::Find;
};

} // namespace vessa
