#include "script/in_place_editors.h"

#include "controls/tree_copy.h"
#include "script/basic_text.h"
#include "script/script_host.h"
#include "script/script_model.h"
#include "script/tree_walks.h"

namespace vessa {

namespace {

constexpr int PointAtCommand = 5;
constexpr int AsSeenByKind = 11;
constexpr int SoundKind = 20;

const QString kUseLetters = QStringLiteral("Invalid Name: Use only letters and numbers");
const QString kAlreadyUsed = QStringLiteral("Invalid Name: Already used");

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

// Digits, with one "/" or "." among them: "1/2", "0.25", "3". A "/" needs a number on
// either side.
bool isNumber(const QString& text) {
    int marks = 0;
    bool digits = false;
    for (QChar c : text) {
        if (c == u'/' || c == u'.')
            ++marks;
        else if (isDigit(c))
            digits = true;
        else
            return false;
    }
    return digits && marks <= 1 && !text.startsWith(u'/') && !text.endsWith(u'/');
}

bool fitsInALine(const QString& text) {
    for (QChar c : {u' ', u',', u'(', u')'})
        if (text.contains(c))
            return false;
    return true;
}

bool isQuotedFileName(const QString& text) {
    return text.size() > 2 && text.startsWith(u'"') && text.endsWith(u'"') && text.count(u'"') == 2;
}

// The name editor's prompt with message on top. The tests are on the whole prompt: a
// message is not put twice in a row, and replaces the other name message.
QString withNameMessage(const QString& label, const QString& message, const QString& other) {
    if (label == other)
        return message;
    if (label == message)
        return label;
    return message + u'\n' + label;
}

// A value editor's prompt with message on top, unless the prompt starts with it already.
QString withValueMessage(const QString& label, const QString& message) {
    const QString head = text::Before(message, u":");
    return label.startsWith(head) ? label : message + u'\n' + label;
}

// The statement of a command run at once: the object of the menu, the command, the values
// chosen before and the last one.
QString oneShotStatement(const MenuState& state, const QString& lastValue) {
    QString arguments = state.PendingFirstValue;
    if (!arguments.isEmpty())
        arguments += QStringLiteral(", ");
    return state.MenuObject + u'.' + CommandNames(state.PendingCommand) + u'(' + arguments +
           lastValue + u')';
}

// The node of the tree, depth first, that first satisfies matches.
template <typename Matches> TreeNode* findNode(TreeNode* node, const Matches& matches) {
    for (; node; node = node->Next()) {
        if (matches(node))
            return node;
        if (TreeNode* below = findNode(node->Child(), matches))
            return below;
    }
    return nullptr;
}

} // namespace

QString valueRefusal(int kind, const QString& text, const QStringList& sounds) {
    if (ParameterKinds(kind).Class == NumberClass)
        return isNumber(text) ? QString() : QStringLiteral("Invalid Number");
    if (kind == SoundKind) {
        const bool known = sounds.contains(text, Qt::CaseInsensitive) ||
                           (isQuotedFileName(text) && fitsInALine(text));
        return known ? QString()
                     : QStringLiteral("Invalid Sound: Use a sound of the scene, or a file name "
                                      "in double quotes");
    }
    return fitsInALine(text) ? QString()
                             : QStringLiteral("Invalid Value: Use no blanks, commas or brackets");
}

// -- TextInputBox -------------------------------------------------------------------------

void TextInputBox::BringUpTextWidget(const ScriptRequest& request) {
    const ParseState& parse = model_.Parse();
    node_ = parse.SelectedNode;
    kind_ = parse.ClickedKind;
    state_.gOneShots = request.OneShot;
    const TreeNode* node = node_.Get();
    // Told by the block words as written.
    const bool block = node && (node->Text().contains(QStringLiteral("DoTogether")) ||
                                node->Text().contains(QStringLiteral("DoInOrder")));
    mode_ = request.OneShot ? Mode::OneShot : block ? Mode::Name : Mode::Value;
}

EditorAnswer TextInputBox::OKButton_Click(const QString& text, const QString& label) {
    if (text.isEmpty())
        return {};
    switch (mode_) {
    case Mode::OneShot:
        return oneShot(text, label);
    case Mode::Name:
        return name(text, label);
    case Mode::Value:
        break;
    }
    return value(text, label);
}

EditorAnswer TextInputBox::oneShot(const QString& text, const QString& label) {
    const QString refusal = valueRefusal(kind_, text, model_.Host().sceneSounds());
    if (!refusal.isEmpty())
        return {false, withValueMessage(label, refusal)};
    model_.Host().runTool(
        oneShotStatement(state_, text),
        QStringLiteral("TextInputBoxForm:OKButton_Click: Error on call to python."));
    state_.gOneShots = false;
    state_.History.add(text);
    return {};
}

EditorAnswer TextInputBox::name(const QString& text, const QString& label) {
    if (!IsAllowedName(text))
        return {false, withNameMessage(label, kUseLetters, kAlreadyUsed)};
    TreeNode* block = node_.Get();
    if (!block)
        return {};
    if (!block->Parent()) {
        if (!model_.RenameAnimation(block, text))
            return {false, withNameMessage(label, kAlreadyUsed, kUseLetters)};
        return {};
    }
    model_.UndoLog(UndoOperation::Changed, block);
    const QString& line = block->Text();
    const int labelEnd = text::InStr(line, u" : ");
    model_.TreeView1().SetText(block, labelEnd > 0 ? text + line.mid(labelEnd - 1)
                                                   : LabelledBlock(text, line));
    return {};
}

EditorAnswer TextInputBox::value(const QString& text, const QString& label) {
    const QString refusal = valueRefusal(kind_, text, model_.Host().sceneSounds());
    if (!refusal.isEmpty())
        return {false, withValueMessage(label, refusal)};
    TreeNode* line = node_.Get();
    if (!line)
        return {};
    ParseState& parse = model_.Parse();
    parse.ClickedKind = kind_;
    const int slot = CommandParameters(parse.ParsedCommand).Optional.SlotOf(kind_);
    if (slot >= 0)
        parse.OptionalValue[slot] = text;
    model_.UpdateNode(line, text);
    if (ParameterKinds(kind_).Class == NumberClass)
        state_.History.add(text);
    return {};
}

// -- ObjectPicker -------------------------------------------------------------------------

void ObjectPicker::StartTreeWidget(const ScriptRequest& request, Picked picked) {
    const ParseState& parse = model_.Parse();
    oneShot_ = request.OneShot;
    kind_ = parse.ClickedKind;
    picked_ = std::move(picked);
    // An object can't point at itself.
    const int command = oneShot_ ? state_.PendingCommand : parse.ParsedCommand;
    QString excluded;
    if (!picked_ && kind_ == AsSeenByKind && command == PointAtCommand)
        excluded = oneShot_ ? state_.MenuObject : parse.ParsedObject;

    treeWidget_.Clear();
    TreeNode* root = treeWidget_.AddRoot(QString(), QStringLiteral("Scene"));
    treeWidget_.SetTag(root, QStringLiteral("Scene"));
    if (const TreeNode* scene = model_.Host().sceneObjects().FirstRoot())
        AddNodes(root, scene,
                 {.KeepExpanded = true, .ExcludedTag = excluded, .WantedTag = request.Value});
    treeWidget_.SetExpanded(root, true);
    if (picked_) {
        TreeNode* anywhere = treeWidget_.AddRoot(QString(), QStringLiteral("AnyWhere"));
        treeWidget_.SetTag(anywhere, QStringLiteral("AnyWhere"));
        treeWidget_.SetImage(anywhere, root->Image()); // a place, as the scene is
        if (text::Same(request.Value, QStringLiteral("AnyWhere")))
            treeWidget_.SetSelectedItem(anywhere);
    }
    if (!treeWidget_.SelectedItem())
        treeWidget_.SetSelectedItem(root);
}

EditorAnswer ObjectPicker::TreeWidget_MouseUp(TreeNode* node) {
    if (!node || node->ForeColor() == kGreyedOut)
        return {false, QString()};
    const QString& object = node->Tag();
    if (picked_) {
        picked_(object);
        return {};
    }
    if (oneShot_) {
        model_.Host().runTool(
            oneShotStatement(state_, object),
            QStringLiteral("ActionMenu:ObjectGoodLookMenuButton_Click: Error on call to python."));
        state_.gOneShots = false;
        return {};
    }
    ParseState& parse = model_.Parse();
    parse.ClickedKind = kind_;
    const int slot = CommandParameters(parse.ParsedCommand).Optional.SlotOf(kind_);
    if (slot >= 0)
        parse.OptionalValue[slot] = object;
    if (TreeNode* line = parse.SelectedNode.Get())
        model_.UpdateNode(line, object);
    return {};
}

EditorAnswer ObjectPicker::pickByName(const QString& typed) {
    const QString name = typed.trimmed();
    if (name.isEmpty())
        return TreeWidget_MouseUp(treeWidget_.SelectedItem());
    TreeNode* node = findNode(treeWidget_.FirstRoot(), [&](const TreeNode* candidate) {
        return text::Same(candidate->Tag(), name) || text::Same(candidate->Text(), name);
    });
    if (!node)
        node = firstNamed(name);
    if (!node)
        return {false, QStringLiteral("There is no object called ") + name +
                           QStringLiteral(" in the scene.")};
    if (node->ForeColor() == kGreyedOut)
        return {false, node->Tag() + QStringLiteral(" can't be chosen here.")};
    return TreeWidget_MouseUp(node);
}

TreeNode* ObjectPicker::firstNamed(const QString& text) const {
    if (text.isEmpty())
        return nullptr;
    return findNode(treeWidget_.FirstRoot(), [&](const TreeNode* candidate) {
        return candidate->Tag().startsWith(text, Qt::CaseInsensitive) ||
               candidate->Text().startsWith(text, Qt::CaseInsensitive);
    });
}

} // namespace vessa
