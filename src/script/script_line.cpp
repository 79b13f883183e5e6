#include "script/script_line.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/basic_text.h"

#include <QVarLengthArray>

#include <algorithm>

namespace vessa {

using text::InStr;
using text::Left;
using text::Mid;

namespace {

// The row of the star menu with the highest kind number.
constexpr int LastStarRow = 23;

size_t CheckedSlot(int slot) {
    if (slot < 0 || slot >= VocabularySize)
        throw RunTimeError::Bounds("SlotValues");
    return static_cast<size_t>(slot);
}

// Step 2 of a parse: object and command, from the last dot before the first "(".
int ParseHead(ParseState& state, const QString& line) {
    const int open = InStr(line, u"(");
    int dot = open;
    while (dot > 0 && line[dot - 1] != u'.')
        --dot;
    state.ParsedObject = Left(line, dot - 1);
    state.ParsedCommand = CommandIndex(Mid(line, dot + 1, open - dot - 1));
    return open;
}

// Step 3: one value per essential kind, each up to the next comma or the line's end.
int ParseEssentials(ParseState& state, const QString& line, int cursor) {
    const KindList& essential = CommandParameters(state.ParsedCommand).Essential;
    for (int slot = 0; essential[slot] != NoEntry; ++slot) {
        int place = InStr(cursor + 1, line, u",");
        if (place == 0)
            place = static_cast<int>(line.size());
        state.EssentialValue[slot] = Mid(line, cursor + 1, place - cursor - 1);
        cursor = place + 1;
    }
    return cursor;
}

// The slot of each optional item, in the order the line gives them.
using ItemSlots = QVarLengthArray<int, 8>;

// Step 4: every further item that a comma ends; the marker has none behind it.
ItemSlots ParseOptionals(ParseState& state, const QString& line, int cursor) {
    const KindList& optional = CommandParameters(state.ParsedCommand).Optional;
    ItemSlots itemSlots;
    for (int comma = InStr(cursor + 1, line, u","); comma > 0;
         comma = InStr(cursor + 1, line, u",")) {
        const QString value = Mid(line, cursor + 1, comma - cursor - 1);
        const int equals = InStr(value, u"=");
        // A value without a keyword goes by its place in the line.
        int slot = static_cast<int>(itemSlots.size());
        if (equals != 0) {
            const QString keyword = Left(value, equals - 1);
            for (slot = 0; !text::Same(ParameterKinds(optional[slot]).Name, keyword);)
                ++slot;
        }
        state.OptionalValue[slot] = equals == 0 ? value : Mid(value, equals + 1);
        itemSlots.append(slot);
        cursor = comma + 1;
    }
    return itemSlots;
}

// Step 5, inside the list: a blank counts from the character after it. An optional value
// is known by its keyword, wherever the line puts it; UpdatedLine counts the values that
// are set in the order of the command's Optional list.
void ClassifyValue(ParseState& state, const QString& line, int open, int position,
                   const ItemSlots& itemSlots) {
    int blanks = 0;
    for (int blank = InStr(open + 1, line, u" "); blank > 0 && blank <= position;
         blank = InStr(blank + 1, line, u" "))
        ++blanks;
    const CommandParameterLists& lists = CommandParameters(state.ParsedCommand);
    const int essentials = lists.Essential.Count();
    if (blanks < essentials) {
        state.ClickedSlot = blanks;
        state.ClickedKind = lists.Essential[blanks];
        state.ClickedValue = state.EssentialValue[blanks];
        return;
    }
    // A blank inside a value counts on to an item that is not there.
    if (blanks - essentials >= itemSlots.size())
        throw RunTimeError::Bounds("ParseString");
    const int slot = itemSlots[blanks - essentials];
    int setBefore = 0;
    for (int earlier = 0; earlier < slot; ++earlier)
        if (state.OptionalValue[earlier] != UnsetValue)
            ++setBefore;
    state.ClickedSlot = essentials + setBefore;
    state.ClickedKind = lists.Optional[slot];
    state.ClickedValue = state.OptionalValue[slot];
}

void Classify(ParseState& state, const QString& line, int open, int position,
              const ItemSlots& itemSlots) {
    state.ClickedSlot = -1;
    const QString& command = CommandNames(state.ParsedCommand);
    const int objectLength = static_cast<int>(state.ParsedObject.size());
    if (position <= objectLength) {
        state.ClickedKind = ObjectKind;
        state.ClickedValue = state.ParsedObject;
    } else if (position <= objectLength + command.size() + 1) {
        state.ClickedKind = 2;
        state.ClickedValue = command;
    } else if (position > line.size() - 9 && state.ParsedCommand != WaitCommand) {
        state.ClickedKind = MarkerKind;
        state.ClickedValue = QStringLiteral("more...");
    } else {
        ClassifyValue(state, line, open, position, itemSlots);
    }
}

} // namespace

QString& SlotValues::operator[](int slot) {
    return values_[CheckedSlot(slot)];
}

const QString& SlotValues::operator[](int slot) const {
    return values_[CheckedSlot(slot)];
}

void ParseString(ParseState& state, const QString& line, int position) {
    state.EssentialValue.Clear();
    state.OptionalValue.Clear();
    const int open = ParseHead(state, line);
    const int cursor = ParseEssentials(state, line, open);
    const ItemSlots itemSlots = ParseOptionals(state, line, cursor);
    Classify(state, line, open, position, itemSlots);
}

QString UpdatedLine(const ParseState& state, const QString& newValue) {
    const QString& command = CommandNames(state.ParsedCommand);
    if (state.ClickedKind == 2 && !text::Same(newValue, command))
        return DefaultLine(state.ParsedObject, newValue);
    const QString object = state.ClickedKind == ObjectKind ? newValue : state.ParsedObject;
    QString line;
    line.reserve(96);
    line += object + u'.' + command + u'(';
    const CommandParameterLists& lists = CommandParameters(state.ParsedCommand);
    if (state.ParsedCommand == WaitCommand)
        return line + (state.ClickedSlot == 0 ? newValue : state.EssentialValue[0]) + u')';
    const int essentials = lists.Essential.Count();
    for (int slot = 0; slot < essentials; ++slot)
        line += (slot == state.ClickedSlot ? newValue : state.EssentialValue[slot]) + ", ";
    int written = 0;
    for (int slot = 0; slot < lists.Optional.Count(); ++slot) {
        if (state.OptionalValue[slot] == UnsetValue)
            continue;
        const int kind = lists.Optional[slot];
        if (!Keywordless(kind))
            line += ParameterKinds(kind).Name + u'=';
        line += state.ClickedSlot == essentials + written ? newValue : state.OptionalValue[slot];
        line += QStringLiteral(", ");
        ++written;
    }
    return line + QStringLiteral("more...)");
}

QString DefaultLine(const QString& object, const QString& commandName) {
    const KindList& essential = CommandParameters(CommandIndex(commandName)).Essential;
    QString line = object + u'.' + commandName + u'(';
    for (int slot = 0; slot < essential.Count(); ++slot)
        line += ParameterKinds(essential[slot]).DefaultValue() + QStringLiteral(", ");
    return line + QStringLiteral("more...)");
}

namespace {

bool hasEllipsis(const QString& line) {
    for (qsizetype dot = line.indexOf(u'.'); dot >= 0; dot = line.indexOf(u'.', dot + 1)) {
        if (dot + 2 < line.size() && line[dot + 1] == u'.' && line[dot + 2] == u'.')
            return true;
    }
    return false;
}

} // namespace

QString NormalizeLine(const QString& line) {
    // What is taken out holds "..." or "-": a line without them is left as it is,
    // without a search that ignores case.
    QString result = line;
    if (hasEllipsis(result)) {
        result = text::Replace(result, u", more...", u"");
        if (hasEllipsis(result))
            result = text::Replace(result, u"(more...)", u"()");
    }
    if (result.contains(u'-')) {
        result = text::Replace(result, u"BeginGently-EndAbruptly", u"BeginGently");
        result = text::Replace(result, u"BeginAbruptly-EndGently", u"BeginAbruptly");
    }
    return result;
}

std::vector<LinePiece> linePieces(const QString& line) {
    const qsizetype open = line.indexOf(u'(');
    const qsizetype dot = open < 0 ? -1 : line.lastIndexOf(u'.', open);
    if (dot < 0)
        return {};
    // Where pieces begin: the line's start, after the dot, after "(" and after each ", ".
    QVarLengthArray<qsizetype, 12> starts{0, dot + 1, open + 1};
    for (qsizetype comma = line.indexOf(u", ", open); comma >= 0;
         comma = line.indexOf(u", ", comma + 1))
        starts.append(comma + 2);
    std::vector<LinePiece> pieces;
    ParseState probe;
    std::pair<int, int> last{-1, -2};
    try {
        for (qsizetype start : starts) {
            if (start >= line.size())
                continue;
            ParseString(probe, line, static_cast<int>(start));
            const std::pair<int, int> piece{probe.ClickedKind, probe.ClickedSlot};
            if (piece == last)
                continue;
            last = piece;
            qsizetype end = start == 0 ? dot : start == dot + 1 ? open : line.indexOf(u',', start);
            if (probe.ClickedKind == MarkerKind)
                end = start + 7; // "more..."
            else if (end < 0)
                end = line.lastIndexOf(u')');
            pieces.push_back(
                {static_cast<int>(start), static_cast<int>(std::max(end - start, qsizetype{0}))});
        }
    } catch (const RunTimeError&) {
        return {};
    }
    return pieces;
}

ScriptRequest EditorForClick(const ParseState& state) {
    ScriptRequest request;
    if (ParameterKinds(state.ClickedKind).Class == ObjectClass) {
        request.What = ScriptRequest::Kind::ObjectPicker;
        request.Value = state.ClickedValue;
    } else if (state.ClickedKind == 2) {
        request.What = ScriptRequest::Kind::ActionMenu;
    } else if (state.ClickedKind == MarkerKind) {
        request.What = ScriptRequest::Kind::StarMenuAll;
        request.Number = state.ParsedCommand;
    } else if (state.ClickedKind >= 4 && state.ClickedKind <= LastStarRow) {
        request.What = ScriptRequest::Kind::StarMenuRow;
        request.Number = state.ClickedKind;
    }
    return request;
}

BlockKind blockKindOf(const QString& line) {
    // One pass over the places "Do" stands, for both words.
    bool together = false;
    for (int at = text::InStr(line, u"Do"); at > 0; at = text::InStr(at + 1, line, u"Do")) {
        const QStringView rest = QStringView(line).sliced(at + 1);
        if (rest.startsWith(u"InOrder", Qt::CaseInsensitive))
            return BlockKind::InOrder;
        together = together || rest.startsWith(u"Together", Qt::CaseInsensitive);
    }
    return together ? BlockKind::Together : BlockKind::None;
}

bool IsAllowedName(QStringView name) {
    return std::all_of(name.begin(), name.end(), [](QChar c) {
        return c == u' ' || (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') ||
               (c >= u'a' && c <= u'z');
    });
}

bool IsBlock(const QString& line) {
    return blockKindOf(line) != BlockKind::None;
}

bool IsInOrderBlock(const QString& line) {
    return blockKindOf(line) == BlockKind::InOrder;
}

QString BareBlockWord(const QString& line) {
    return IsInOrderBlock(line) ? QStringLiteral("DoInOrder") : QStringLiteral("DoTogether");
}

bool IsAnimationText(const QString& line) {
    return text::Like(line, u"* = DoInOrder") || text::Like(line, u"* = DoTogether");
}

bool IsAnimationToDelete(const QString& line) {
    return text::Like(line, u"*= DoInOrder") || text::Like(line, u"*= DoTogether");
}

bool IsAnimationInFile(const QString& line) {
    return text::Like(line, u"*= DoInOrder*") || text::Like(line, u"*= DoTogether*");
}

QString AnimationName(const QString& line) {
    return text::Before(line, u" = ");
}

bool IsSoundLine(const QString& line) {
    return text::Like(line, u"PlaySound*");
}

bool IsBareSoundLine(const QString& line) {
    return text::Like(line, u"PlaySound(*)");
}

QString AnimationText(const QString& name) {
    return name + QStringLiteral(" = DoInOrder");
}

QString LabelledBlock(const QString& label, const QString& block) {
    return label + QStringLiteral(" : ") + block;
}

QString SoundLine(const QString& soundName) {
    return QStringLiteral("PlaySound(") + soundName + u')';
}

} // namespace vessa
