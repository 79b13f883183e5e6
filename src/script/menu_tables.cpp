#include "script/menu_tables.h"

#include "script/basic_text.h"
#include "script/vocabulary.h"

namespace vessa::menus {

namespace {

const QStringList kDistances = {"1/2 (meter)", "1 (meter)", "2 (meters)"};
const QStringList kRevolutions = {"1/4 (Revolution)", "1/2 (Revolution)", "3/4 (Revolution)",
                                  "1 (All the way around)"};
const QStringList kSeconds = {"1/4 (second)", "1/2 (second)", "1 (second)", "2 (seconds)"};
const QStringList kColors = {"Red",    "Pink",  "Orange", "Yellow", "Green", "Blue",
                             "Purple", "Brown", "White",  "Grey",   "Black"};

// Half and twice the size, named for the direction they stretch in.
QStringList scaleRows(const QString& measure) {
    return {QStringLiteral("1/4"), QStringLiteral("1/2 (Half as ") + measure + u')',
            QStringLiteral("2 (Twice as ") + measure + u')'};
}

QString measureOf(const QString& direction) {
    if (text::Same(direction, u"InAllDirections"))
        return QStringLiteral("Big");
    if (text::Same(direction, u"LeftToRight"))
        return QStringLiteral("Wide");
    if (text::Same(direction, u"TopToBottom"))
        return QStringLiteral("Tall");
    if (text::Same(direction, u"FrontToBack"))
        return QStringLiteral("Deep");
    return {};
}

std::vector<MenuRow> plainRows(const QStringList& captions) {
    std::vector<MenuRow> rows;
    for (const QString& caption : captions)
        rows.push_back({.Caption = caption});
    return rows;
}

} // namespace

const std::vector<CascadeCommand>& actionCascade() {
    static const std::vector<CascadeCommand> cascade = [] {
        const QStringList turns = {"Left", "Right", "Up", "Down"};
        const QStringList sizes = {"InAllDirections", "LeftToRight", "FrontToBack", "TopToBottom"};
        std::vector<QStringList> sizeNumbers;
        for (const QString& direction : sizes)
            sizeNumbers.push_back(scaleRows(measureOf(direction)));
        return std::vector<CascadeCommand>{
            {"Move",
             {"Forward", "Back", "Left", "Right", "Up", "Down"},
             false,
             std::vector<QStringList>(6, kDistances)},
            {"Turn", turns, false, std::vector<QStringList>(4, kRevolutions)},
            {"Roll", {"Left", "Right"}, false, std::vector<QStringList>(2, kRevolutions)},
            {"Resize", sizes, false, sizeNumbers},
            {"PointAt", {"Other Object..."}, false, {}},
            {"Destroy", {}, false, {}},
            {"SetColor", kColors, false, {}},
            {"Hide", {}, false, {}},
            {"Show", {}, false, {}},
            {"Wait", kSeconds, true, {}},
            {"StandUp", {}, false, {}},
        };
    }();
    return cascade;
}

std::vector<MenuRow> numberRows(const QStringList& values, const NumberHistory& history) {
    std::vector<MenuRow> rows = plainRows(values);
    rows.push_back({.Caption = QStringLiteral("-")});
    rows.push_back({.Caption = QStringLiteral("Other...")});
    const QStringList& typed = history.entries();
    rows.push_back({.Caption = QStringLiteral("-"), .Visible = !typed.isEmpty()});
    for (int entry = 0; entry < NumberHistory::Size; ++entry)
        rows.push_back({.Caption = entry < typed.size() ? typed[entry] : QString(),
                        .Visible = entry < typed.size()});
    return rows;
}

std::vector<MenuRow> starValueRows(int kind, const QString& direction,
                                   const NumberHistory& history) {
    switch (kind) {
    case 4:
        return plainRows({"InAllDirections", "FrontToBack", "LeftToRight", "TopToBottom"});
    case 5:
        return plainRows({"Forward", "Back", "Left", "Right", "Up", "Down"});
    case 6:
        return plainRows({"Left", "Right", "Up", "Down"});
    case 7:
        return plainRows({"Left", "Right"});
    case 8:
        return numberRows(kDistances, history);
    case 9:
        return numberRows(kRevolutions, history);
    case 10: {
        const QString measure = measureOf(direction);
        return numberRows(
            measure.isEmpty() ? QStringList{"1/4", "1/2 ()", "2 ()"} : scaleRows(measure), history);
    }
    case 11:
    case 14:
        return plainRows({"Pick Object..."});
    case 12:
        return plainRows(kColors);
    case 13:
        return plainRows({"OnTopOf", "OnBottomOf", "ToLeftOf", "ToRightOf", "InFrontOf", "InBackOf",
                          "OnFloorOf", "OnCeilingOf"});
    case 15:
        return plainRows({"ObjectOnly", "ObjectAndParts", "ObjectAndChildren"});
    case 16:
        return plainRows({"Yes", "No"});
    case 17:
        return numberRows(kSeconds, history);
    case 18:
        return plainRows({"1/4", "1/2", "1", "-", "Other..."});
    case 19:
        return plainRows(
            {"Gently", "Abruptly", "BeginGently-EndAbruptly", "BeginAbruptly-EndGently"});
    case 20:
        return plainRows({"Pick Sound..."});
    case 21:
        return plainRows({"0", "1/4", "1/2", "1", "-", "Other..."});
    case 22:
        return plainRows({"Pick Light..."});
    case 23:
        return plainRows({"Yes", "No", "Toggle"});
    default:
        return {};
    }
}

QString valueOfCaption(const QString& caption) {
    const int cut = text::InStr(caption, u" (");
    return cut > 0 ? text::Left(caption, cut - 1) : caption;
}

bool opensEditor(const QString& caption) {
    return caption.contains(QStringLiteral("..."));
}

ScriptRequest editorForKind(int kind, bool oneShot) {
    ScriptRequest request;
    request.OneShot = oneShot;
    if (kind == 11 || kind == 14) {
        request.What = ScriptRequest::Kind::ObjectPicker;
        return request;
    }
    request.What = ScriptRequest::Kind::TextEditor;
    request.Title = QStringLiteral("Change Value");
    request.Prompt = QStringLiteral("Type New ") + ParameterKinds(kind).Name + u':';
    return request;
}

} // namespace vessa::menus
