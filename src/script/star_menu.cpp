#include "script/star_menu.h"

#include "script/menu_tables.h"
#include "script/script_host.h"
#include "script/script_model.h"

namespace vessa {

namespace {

constexpr int FirstStarKind = 4;
constexpr int LastStarKind = 23;
constexpr int LikeRubberKind = 16;
constexpr int SoundKind = 20;

// The sound of a PlaySound line has no name as a parameter; its menu row has one.
QString starCaption(int kind) {
    return kind == SoundKind ? QStringLiteral("FileName") : ParameterKinds(kind).Name;
}

} // namespace

std::vector<MenuRow> StarMenu::mnuStarRow(int kind) {
    std::vector<MenuRow> rows =
        menus::starValueRows(kind, model_.Parse().EssentialValue[0], state_.History);
    for (MenuRow& row : rows)
        if (!row.IsSeparator())
            row.Chosen = [this, kind, caption = row.Caption] {
                return chosen(kind, caption);
            };
    return rows;
}

std::vector<MenuRow> StarMenu::mnuStarAll(int command) {
    const KindList& optional = CommandParameters(command).Optional;
    std::vector<MenuRow> rows;
    for (int kind = FirstStarKind; kind <= LastStarKind; ++kind)
        if (optional.SlotOf(kind) >= 0)
            rows.push_back({.Caption = starCaption(kind), .Rows = mnuStarRow(kind)});
    rows.push_back(
        {.Caption = QStringLiteral("-"), .Name = QStringLiteral("mnuStarHozizontalLine")});
    // It ends the menu and does nothing.
    rows.push_back({.Caption = QStringLiteral("Show All..."),
                    .Enabled = false,
                    .Name = QStringLiteral("mnuStarShowAll")});
    return rows;
}

std::vector<MenuRow> StarMenu::mnuSoundList() {
    std::vector<MenuRow> rows;
    for (const QString& sound : model_.Host().sceneSounds())
        rows.push_back({.Caption = sound, .Chosen = [this, sound] {
                            mnuSoundList_Click(sound);
                            return ScriptRequest();
                        }});
    if (rows.empty())
        rows.push_back({.Caption = QStringLiteral("<Empty>"), .Enabled = false});
    return rows;
}

ScriptRequest StarMenu::chosen(int kind, const QString& caption) {
    if (kind != LikeRubberKind || caption == u"Yes")
        return UniversalClick(kind, kind == LikeRubberKind ? QStringLiteral("LikeRubber")
                                                           : menus::valueOfCaption(caption));
    // "No" takes the flag off the line.
    ParseState& parse = model_.Parse();
    parse.ClickedKind = kind;
    const int slot = CommandParameters(parse.ParsedCommand).Optional.SlotOf(kind);
    if (slot >= 0)
        parse.OptionalValue[slot] = UnsetValue;
    parse.ClickedSlot = -1;
    if (TreeNode* node = parse.SelectedNode.Get())
        model_.UpdateNode(node, QString());
    return {};
}

ScriptRequest StarMenu::UniversalClick(int kind, const QString& value) {
    ParseState& parse = model_.Parse();
    // Behind "more..." the kind is known only once its row was opened.
    parse.ClickedKind = kind;
    if (menus::opensEditor(value))
        return menus::editorForKind(kind, false);
    const int slot = CommandParameters(parse.ParsedCommand).Optional.SlotOf(kind);
    if (slot >= 0)
        parse.OptionalValue[slot] = value;
    if (TreeNode* node = parse.SelectedNode.Get())
        model_.UpdateNode(node, value);
    return {};
}

void StarMenu::mnuSoundList_Click(const QString& sound) {
    if (TreeNode* node = model_.Parse().SelectedNode.Get())
        model_.AfterLabelEdit(node, SoundLine(sound));
}

} // namespace vessa
