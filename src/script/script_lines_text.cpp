#include "script/script_lines_text.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/basic_text.h"
#include "script/script_line.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace vessa {

namespace {

const QString NamePattern = QStringLiteral("[A-Za-z_][A-Za-z0-9_]*");

// "Bunny.Head.Move(...)": the object's dotted name, the command, what stands in brackets.
const QRegularExpression& commandLinePattern() {
    static const QRegularExpression pattern(
        QStringLiteral("^(%1(?:\\.%1)*)\\.([A-Za-z]+)\\((.*)\\)$").arg(NamePattern));
    return pattern;
}

// A value as the script's menus and editors write one: a word, a name, a number or a
// fraction, or a quoted text (a sound's file) that does not end in a backslash. Nothing
// that could end the call early and run something else.
bool isPlainValue(const QString& value) {
    static const QRegularExpression pattern(
        QStringLiteral("^(?:[A-Za-z0-9_.+*/-]+|\"(?:[^\"]*[^\"\\\\])?\")$"));
    return value == UnsetValue || pattern.match(value).hasMatch();
}

// A character of text: no control or format character, no half of a pair, nothing
// unassigned, no replacement of bytes that were not text.
bool isTextCharacter(QChar c) {
    switch (c.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
        return false;
    default:
        return c != QChar::ReplacementCharacter;
    }
}

// The text of a block line, its block word spelled as the palette spells it.
std::optional<QString> blockLineOf(const QString& plain) {
    static const QRegularExpression named(
        QStringLiteral("^(%1) = (DoInOrder|DoTogether)$").arg(NamePattern),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression labelAfter(
        QStringLiteral("^(DoInOrder|DoTogether) : (%1)$").arg(NamePattern),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression labelBefore(
        QStringLiteral("^(%1) : (DoInOrder|DoTogether)$").arg(NamePattern),
        QRegularExpression::CaseInsensitiveOption);
    if (text::Same(plain, u"DoInOrder") || text::Same(plain, u"DoTogether"))
        return BareBlockWord(plain);
    if (const auto match = named.match(plain); match.hasMatch())
        return match.captured(1) + QStringLiteral(" = ") + BareBlockWord(match.captured(2));
    if (const auto match = labelAfter.match(plain); match.hasMatch())
        return BareBlockWord(match.captured(1)) + QStringLiteral(" : ") + match.captured(2);
    if (const auto match = labelBefore.match(plain); match.hasMatch())
        return LabelledBlock(match.captured(1), BareBlockWord(match.captured(2)));
    return std::nullopt;
}

// A line of the vocabulary: the marker put back, parsed, and written again as the script
// writes it; a line that comes out otherwise than it went in is not one.
std::optional<QString> commandLineOf(QString plain) {
    const auto match = commandLinePattern().match(plain);
    if (!match.hasMatch())
        return std::nullopt;
    // Values are parted at ", ", as the script writes them.
    if (!plain.contains(u'"'))
        plain.replace(QRegularExpression(QStringLiteral("\\s*,\\s*")), QStringLiteral(", "));
    const int command = CommandIndex(match.captured(2));
    if (command != WaitCommand && !plain.endsWith(QStringLiteral("more...)"))) {
        plain.chop(1);
        plain += plain.endsWith(u'(') ? QStringLiteral("more...)") : QStringLiteral(", more...)");
    }
    try {
        ParseState parse;
        ParseString(parse, plain, 0);
        const CommandParameterLists& lists = CommandParameters(parse.ParsedCommand);
        for (int slot = 0; slot < lists.Essential.Count(); ++slot)
            if (!isPlainValue(parse.EssentialValue[slot]))
                return std::nullopt;
        for (int slot = 0; slot < lists.Optional.Count(); ++slot)
            if (!isPlainValue(parse.OptionalValue[slot]))
                return std::nullopt;
        const QString written = UpdatedLine(parse, parse.ParsedObject);
        if (!text::Same(written, plain))
            return std::nullopt;
        return written;
    } catch (const RunTimeError&) {
        return std::nullopt;
    }
}

QString lineWithoutMarker(const TreeNode* node) {
    if (node->Tag() == PythonLineTag)
        return node->Text();
    QString line = text::Replace(node->Text(), u", more...", u"");
    return text::Replace(line, u"(more...)", u"()");
}

void writeLines(const TreeNode* node, const QString& indent, QString& text) {
    text += indent;
    text += lineWithoutMarker(node);
    text += u'\n';
    const QString inner = indent + u'\t';
    for (const TreeNode* child = node->Child(); child; child = child->Next())
        writeLines(child, inner, text);
}

QString shown(const QString& line) {
    constexpr int shownLength = 80;
    return line.size() > shownLength ? line.left(shownLength) + QStringLiteral("...") : line;
}

const QString NothingPasted = QStringLiteral(" Nothing was pasted.");

// A line of the text placed in the tree after the lines before it: the chain runs from
// the item at the top down to the line before, each with its indent.
class LinePlacer {
public:
    explicit LinePlacer(TreeControl& tree) : tree_(tree) {}

    // Answers what is wrong with the place of the line, empty when it found one.
    QString place(int number, const QString& indent, const QString& nodeText) {
        bool dedented = false;
        while (!chain_.empty() && indent.size() < chain_.back().Indent.size()) {
            chain_.pop_back();
            dedented = true;
        }
        TreeNode* parent = nullptr;
        if (!chain_.empty() && indent == chain_.back().Indent) {
            chain_.pop_back();
            parent = chain_.empty() ? nullptr : chain_.back().Node;
        } else if (!chain_.empty() && !dedented && indent.startsWith(chain_.back().Indent)) {
            parent = chain_.back().Node;
            if (!IsBlock(parent->Text()))
                return QStringLiteral("Line %1 of the text is indented under a line that is not "
                                      "a DoInOrder or DoTogether block.")
                    .arg(number);
        } else if (!chain_.empty() || base_) {
            return QStringLiteral("Line %1 of the text is not indented as any line above it is.")
                .arg(number);
        }
        if (!base_)
            base_ = indent;
        if (chain_.size() >= MaxScriptTextDepth)
            return QStringLiteral("The text's lines go deeper than %1 levels.")
                .arg(MaxScriptTextDepth);
        // Only an item at the top stays an animation.
        QString placedText = nodeText;
        if (parent && IsAnimationText(nodeText))
            placedText = BareBlockWord(nodeText) + QStringLiteral(" : ") + AnimationName(nodeText);
        TreeNode* node = parent ? tree_.Add(parent, Relation::Child, QString(), placedText)
                                : tree_.AddRoot(QString(), placedText);
        chain_.push_back({indent, node});
        return {};
    }

private:
    struct Level {
        QString Indent;
        TreeNode* Node;
    };
    TreeControl& tree_;
    std::vector<Level> chain_;
    std::optional<QString> base_; // the indent of the items at the top
};

// Several items at the top go into one DoInOrder block, an animation among them as a
// labelled block; one animation alone keeps its name as its key.
void gatherItems(TreeControl& tree) {
    if (tree.RootCount() == 1) {
        TreeNode* item = tree.FirstRoot();
        if (IsAnimationText(item->Text()))
            tree.SetKey(item, AnimationName(item->Text()).toLower());
        return;
    }
    TreeNode* block = tree.AddRoot(QString(), QStringLiteral("DoInOrder"));
    while (tree.FirstRoot() != block) {
        TreeNode* item = tree.FirstRoot();
        if (IsAnimationText(item->Text()))
            tree.SetText(item, BareBlockWord(item->Text()) + QStringLiteral(" : ") +
                                   AnimationName(item->Text()));
        tree.Move(item, block);
    }
}

QString readInto(const QString& text, TreeControl& tree) {
    if (text.size() > MaxScriptTextCharacters)
        return QStringLiteral("The text is longer than Vessa47 takes as lines of a script (%1 "
                              "characters at most).")
            .arg(MaxScriptTextCharacters);
    const QStringList lines = text.split(u'\n');
    if (lines.size() > MaxScriptTextLines)
        return QStringLiteral("The text has more lines than Vessa47 takes into a script at once "
                              "(%1 at most).")
            .arg(MaxScriptTextLines);
    LinePlacer placer(tree);
    int number = 0;
    for (QString line : lines) {
        ++number;
        if (line.endsWith(u'\r'))
            line.chop(1);
        qsizetype bodyStart = 0;
        while (bodyStart < line.size() && (line[bodyStart] == u' ' || line[bodyStart] == u'\t'))
            ++bodyStart;
        const QString body = line.mid(bodyStart).trimmed();
        if (body.isEmpty())
            continue;
        if (line.size() > MaxScriptTextLineLength)
            return QStringLiteral("Line %1 of the text is longer than a line of a script can be "
                                  "(%2 characters at most).")
                .arg(number)
                .arg(MaxScriptTextLineLength);
        if (!std::all_of(body.cbegin(), body.cend(), isTextCharacter))
            return QStringLiteral("Line %1 of the text holds characters that are not text: it may "
                                  "come from a picture or a program rather than from a script.")
                .arg(number);
        const std::optional<QString> nodeText = ScriptLineOf(body);
        if (!nodeText)
            return QStringLiteral("Line %1 of the text is not a line of a script:\n\n    %2\n\n"
                                  "Text becomes lines of the script only when every line of it "
                                  "is written as Vessa47 writes lines, such as "
                                  "Bunny.Move(Forward, 1), each indented under its block.")
                .arg(number)
                .arg(shown(body));
        if (QString problem = placer.place(number, line.left(bodyStart), *nodeText);
            !problem.isEmpty())
            return problem;
    }
    if (!tree.FirstRoot())
        return QStringLiteral("The clipboard holds no lines to paste.");
    gatherItems(tree);
    return {};
}

} // namespace

QString ScriptLinesText(const TreeNode* node) {
    QString text;
    if (node)
        writeLines(node, QString(), text);
    return text;
}

std::optional<QString> ScriptLineOf(const QString& plain) {
    if (std::optional<QString> block = blockLineOf(plain))
        return block;
    static const QRegularExpression soundLine(QStringLiteral("^PlaySound\\([A-Za-z0-9_. -]+\\)$"));
    if (soundLine.match(plain).hasMatch())
        return plain;
    return commandLineOf(plain);
}

QString ReadScriptLines(const QString& text, TreeControl& tree) {
    QString problem = readInto(text, tree);
    if (!problem.isEmpty()) {
        tree.Clear();
        problem += NothingPasted;
    }
    return problem;
}

} // namespace vessa
