#pragma once

#include "controls/node_ref.h"
#include "script/script_request.h"
#include "script/vocabulary.h"

#include <QColor>
#include <QString>

#include <array>
#include <vector>

namespace vessa {

class TreeControl;
class TreeNode;

// 33 value texts by slot, checked like the vocabulary. A single blank marks a slot
// that holds no value.
class SlotValues {
public:
    SlotValues() { Clear(); }
    void Clear() { values_.fill(QStringLiteral(" ")); }
    QString& operator[](int slot);
    const QString& operator[](int slot) const;

private:
    std::array<QString, VocabularySize> values_;
};

inline const QString UnsetValue = QStringLiteral(" ");
// The Tag of a Python line: free text that the user types, not parsed; and its grey.
inline const QString PythonLineTag = QStringLiteral("1");
inline const QColor PythonLineBack(0xC0, 0xC0, 0xC0);

// What the last click on a line hit, as ParseString leaves it. The menus and editors
// read and change it, and UpdateNode writes a line from it.
struct ParseState {
    QString ParsedObject;
    int ParsedCommand = 0;
    SlotValues EssentialValue;
    SlotValues OptionalValue; // by slot of the command's Optional list
    int ClickedKind = 0;      // 1 object, 2 command, 3 "more...", otherwise the kind
    int ClickedSlot = -1;     // over essentials, then set optional values; -1 off the list
    QString ClickedValue;
    NodeRef SelectedNode;
};

// What a click hit: the values of a line and the piece under position, a character
// offset from 0. A line without a dot fails with RunTimeError::InvalidArgument, an
// unknown command or keyword with RunTimeError::SubscriptOutOfRange.
void ParseString(ParseState& state, const QString& text, int position);

// The text that UpdateNode gives a line: the parsed line with newValue put in place of
// the piece clicked, and the optional values in canonical order.
QString UpdatedLine(const ParseState& state, const QString& newValue);

// The default line of a command for the parsed object: its essential defaults and the
// marker, "Camera.Move(Forward, 1, more...)".
QString DefaultLine(const QString& object, const QString& commandName);

// A line as the engine receives it: the marker and the two long style names removed.
QString NormalizeLine(const QString& text);

// One piece of a line that a click can hit: the object, the command, a value or the
// "more..." marker, by the offset of its first character and its length.
struct LinePiece {
    int Offset = 0;
    int Length = 0;
};
// The pieces of a line in their order, each one ParseString tells apart from the others;
// none for a line that does not parse.
std::vector<LinePiece> linePieces(const QString& line);

// What a parsed click opens: the decision of ShowEditorForClick.
ScriptRequest EditorForClick(const ParseState& state);

// Blocks are told from lines by their text alone: a text holding "DoInOrder", in any
// case, is an in-order block; one holding "DoTogether" and not that, a together block.
enum class BlockKind { None, InOrder, Together };
BlockKind blockKindOf(const QString& text);
bool IsBlock(const QString& text);
bool IsInOrderBlock(const QString& text);
// "DoInOrder" or "DoTogether", what a block runs as.
QString BareBlockWord(const QString& text);
// The text of a root animation, "Walk = DoInOrder", as copies and undo test it.
bool IsAnimationText(const QString& text);
// The same as the Delete command tests it: "*= DoInOrder", a blank before "=" not needed.
bool IsAnimationToDelete(const QString& text);
// The same as a tree script file is read: "*= DoInOrder*", anything may follow.
bool IsAnimationInFile(const QString& text);
// The name of an animation: its text before " = ".
QString AnimationName(const QString& text);
// Lines from the sound list: a left click on "PlaySound*" offers the sounds, and the
// node menu of a "PlaySound(*)" line has no value rows.
bool IsSoundLine(const QString& text);
bool IsBareSoundLine(const QString& text);

// Whether a name for an animation or a block holds only letters A to Z, digits and
// blanks (an underscore is not taken either).
bool IsAllowedName(QStringView name);

// The text forms that are made from a name.
QString AnimationText(const QString& name);                        // "Walk = DoInOrder"
QString LabelledBlock(const QString& label, const QString& block); // "Walk : DoTogether"
QString SoundLine(const QString& soundName);                       // "PlaySound(bell.wav)"

} // namespace vessa
