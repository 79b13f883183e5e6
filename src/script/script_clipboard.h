#pragma once

#include <QString>

namespace vessa {

class ScriptModel;
class TreeNode;

// Cut, copy and paste of lines, blocks and whole animations of the script, through the
// model's hidden tree CopyBuffer: an empty root, and under it the node copied with all
// below it and its Key, which stays there for any number of pastes and through a change
// of world. Each change is one record of the script's undo log.
//
// Where a paste goes: an animation with nothing selected becomes a new animation, its
// name and key given a free suffix ("Hop_1", "Hop_2") when taken; an animation pasted on
// a node comes in as a labelled block ("DoInOrder : Hop"); a line or block goes into the
// selected block, after the selected line, or, with nothing selected, at the end of the
// newest animation.
class ScriptClipboard {
public:
    explicit ScriptClipboard(ScriptModel& model) : model_(model) {}

    // The node copied, nullptr while nothing has been.
    const TreeNode* Copied() const;
    // Copies node with all below it; without a node CopyBuffer stays as it was.
    void Copy(const TreeNode* node);
    // Copies node, then deletes it as Delete does: an animation's event rows go with it,
    // which the caller has asked the user about.
    void Cut(TreeNode* node);
    // Pastes what was copied where the selection says. Answers the new node; nullptr when
    // nothing was copied or a line has no animation to go into.
    TreeNode* Paste();
    // Pastes text written as ScriptLinesText writes it, by the same rules, as if it had
    // been copied; CopyBuffer does not change. Answers what is wrong with the text, in
    // words for the user, with nothing changed; empty when it was pasted.
    QString PasteText(const QString& text);

private:
    TreeNode* PasteCopy(const TreeNode* copied);

    ScriptModel& model_; // Not owned.
};

} // namespace vessa
