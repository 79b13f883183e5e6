#include "script/action_menu.h"

#include "script/menu_tables.h"
#include "script/script_host.h"
#include "script/script_model.h"

#include <QScopeGuard>

namespace vessa {

namespace {

// The facts of PrepareObjectMenu by their place in the engine's answer.
enum Fact {
    CameraPresent = 0,
    IsModel = 4,
    FirstClass = 5,
    Lighting = 6,
    Filling = 7,
    Texture = 8,
};

QVariant fact(const QVariantList& facts, Fact which) {
    return which < facts.size() ? facts[which] : QVariant();
}

// The rows below a menu row, each chosen as the path to it.
std::vector<MenuRow> leaves(std::vector<MenuRow> rows, const QStringList& path,
                            const std::function<ScriptRequest(const QStringList&)>& chosen) {
    for (MenuRow& row : rows)
        if (!row.IsSeparator())
            row.Chosen = [chosen, path = path + QStringList{row.Caption}] {
                return chosen(path);
            };
    return rows;
}

QString failureOf(const QString& handler) {
    return QStringLiteral("ActionMenu:") + handler +
           QStringLiteral("_Click: Error on call to python.");
}

} // namespace

std::vector<MenuRow>
ActionMenu::cascade(bool withWait, const std::function<ScriptRequest(const QStringList&)>& chosen) {
    std::vector<MenuRow> rows;
    for (const menus::CascadeCommand& command : menus::actionCascade()) {
        if (!withWait && command.Caption == u"Wait")
            continue;
        const QStringList path{command.Caption};
        MenuRow row{.Caption = command.Caption};
        if (command.First.isEmpty()) {
            row.Chosen = [chosen, path] {
                return chosen(path);
            };
        } else if (command.FirstIsNumber) {
            row.Rows = leaves(menus::numberRows(command.First, state_.History), path, chosen);
        } else if (command.Second.empty()) {
            std::vector<MenuRow> values;
            for (const QString& first : command.First)
                values.push_back({.Caption = first});
            row.Rows = leaves(std::move(values), path, chosen);
        } else {
            for (qsizetype first = 0; first < command.First.size(); ++first) {
                MenuRow value{.Caption = command.First[first]};
                value.Rows = leaves(
                    menus::numberRows(command.Second[static_cast<size_t>(first)], state_.History),
                    path + QStringList{value.Caption}, chosen);
                row.Rows.push_back(std::move(value));
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<MenuRow> ActionMenu::mnuActionsMain() {
    return cascade(true, [this](const QStringList& path) { return chosenOnLine(path); });
}

std::vector<MenuRow> ActionMenu::ObjectMenuButton(const QString& objectName) {
    state_.MenuObject = objectName;
    const QVariantList facts = model_.Host().objectMenuFacts(objectName);
    std::vector<MenuRow> rows;
    rows.push_back(
        {.Caption = objectName, .Default = true, .Name = QStringLiteral("ObjectNameMenuButton")});
    rows.push_back({.Caption = QStringLiteral("-")});
    if (model_.Host().openingSceneShown()) {
        // Commands run at once move, turn and size models; any object takes a colour.
        const bool model = fact(facts, IsModel).toBool();
        for (MenuRow& row :
             cascade(false, [this](const QStringList& path) { return chosenOneShot(path); })) {
            row.Visible = model || row.Caption == u"SetColor";
            rows.push_back(std::move(row));
        }
    } else {
        for (MenuRow& row : cascade(true, [this, objectName](const QStringList& path) {
                 return chosenForNewLine(objectName, path);
             }))
            rows.push_back(std::move(row));
    }
    rows.push_back({.Caption = QStringLiteral("-")});
    for (MenuRow& row : objectRows(objectName, facts))
        rows.push_back(std::move(row));
    return rows;
}

std::vector<MenuRow> ActionMenu::objectRows(const QString& objectName, const QVariantList& facts) {
    ScriptHost& host = model_.Host();
    const auto run = [&host](const QString& statement, const QString& handler) {
        return [&host, statement, handler] {
            host.runTool(statement, failureOf(handler));
            return ScriptRequest();
        };
    };
    const QString& name = objectName;
    const bool camera = fact(facts, CameraPresent).toBool();
    const bool model = fact(facts, IsModel).toBool();
    const bool firstClass = model && fact(facts, FirstClass).toBool();
    const QString cameraAt =
        QStringLiteral("c=getdefaultcamera()\r\nif c==None:\r\n pass\r\nelse:\r\n c.");

    std::vector<MenuRow> rows;
    rows.push_back({.Caption = QStringLiteral("Paint me..."),
                    .Visible = model,
                    .Chosen =
                        [name] {
                            ScriptRequest paint;
                            paint.What = ScriptRequest::Kind::PaintObject;
                            paint.Value = name;
                            return paint;
                        },
                    .Name = QStringLiteral("mnuPaint")});
    rows.push_back({.Caption = QStringLiteral("&Point Camera At"),
                    .Enabled = camera,
                    .Chosen = run(cameraAt + QStringLiteral("pointat(") + name + u')',
                                  QStringLiteral("ObjectPointCameraMenuButton")),
                    .Name = QStringLiteral("ObjectPointCameraMenuButton")});
    rows.push_back({.Caption = QStringLiteral("&Get a Good Look At"),
                    .Enabled = camera,
                    .Chosen = run(cameraAt + QStringLiteral("getagoodlookat(") + name + u')',
                                  QStringLiteral("ObjectGoodLookMenuButton")),
                    .Name = QStringLiteral("ObjectGoodLookMenuButton")});
    rows.push_back(
        {.Caption = QStringLiteral("&Copy"),
         .Enabled = model,
         .Chosen = run(QStringLiteral("Vessa.Undo.Push(None, '['); DoInOrder(") + name +
                           QStringLiteral(".Copy().Nudge(Forward, 1)); Vessa.Undo.Push(None, ']')"
                                          "; PlaySystemSound('Copy')"),
                       QStringLiteral("ObjectCopyMenuButton")),
         .Name = QStringLiteral("ObjectCopyMenuButton")});
    rows.push_back({.Caption = QStringLiteral("&Rename"),
                    .Chosen =
                        [name] {
                            ScriptRequest ask;
                            ask.What = ScriptRequest::Kind::ObjectRename;
                            ask.Value = name;
                            return ask;
                        },
                    .Name = QStringLiteral("ObjectRenameMenuButton")});
    rows.push_back(
        {.Caption = QStringLiteral("Show Statistics"),
         .Chosen = run(QStringLiteral("print ") + name + QStringLiteral(".GetName()+': '+ `len([") +
                           name + QStringLiteral("]+") + name +
                           QStringLiteral(".GetChildren(All))` + ' objects, '+`") + name +
                           QStringLiteral(".GetFaceCount()` + ' faces, ' + `") + name +
                           QStringLiteral(".GetVertexCount()` + ' vertices'"),
                       QStringLiteral("ObjectStatisticsMenuButton")),
         .Name = QStringLiteral("ObjectStatisticsMenuButton")});
    rows.push_back({.Caption = QStringLiteral("IsFirstClass"),
                    .Enabled = model,
                    .Chosen = run(name + (firstClass ? QStringLiteral(".becomepart()")
                                                     : QStringLiteral(".becomefirstclass()")),
                                  QStringLiteral("ObjectFirstClassMenuButton")),
                    .Checkable = true,
                    .Checked = firstClass,
                    .Name = QStringLiteral("ObjectFirstClassMenuButton")});

    const auto style = [&](const char* caption, const char* control, const QString& statement,
                           bool checked) {
        return MenuRow{.Caption = QString::fromLatin1(caption),
                       .Chosen = run(name + statement, QString::fromLatin1(control)),
                       .Checkable = true,
                       .Checked = checked,
                       .Name = QString::fromLatin1(control)};
    };
    const int filling = fact(facts, Filling).toInt();
    const int lighting = fact(facts, Lighting).toInt();
    const int texture = fact(facts, Texture).toInt();
    MenuRow display{.Caption = QStringLiteral("Display Style"),
                    .Enabled = model,
                    .Name = QStringLiteral("ObjectDisplayStyleMenuButton")};
    display.Rows.push_back(
        {.Caption = QStringLiteral("Filling Style"),
         .Rows = {style("Solid", "ObjectSolidMenuButton", ".SetFillingStyle(Solid)",
                        filling == 128),
                  style("Lines", "ObjectLinesMenuButton", ".SetFillingStyle(Lines)", filling == 64),
                  style("Points", "ObjectPointsMenuButton", ".SetFillingStyle(Points)",
                        filling == 0)},
         .Name = QStringLiteral("ObjectFillinfStyleMenuButton")});
    display.Rows.push_back(
        {.Caption = QStringLiteral("Lighting Style"),
         .Rows = {style("Lit", "ObjectLitMenuButton", ".SetLightingStyle(Lit)", lighting == -1),
                  style("UnLit", "ObjectUnLitMenuButton", ".SetLightingStyle(UnLit)",
                        lighting == 0)},
         .Name = QStringLiteral("ObjectLightingStyleMenuButton")});
    display.Rows.push_back(
        {.Caption = QStringLiteral("Texture"),
         .Rows = {style("On", "ObjectTextureOnMenuButton", ".SetTexture()", texture == 1),
                  style("Off", "ObjectTextureOffMenuButton", ".SetTexture(None)", texture == 0)},
         .Name = QStringLiteral("ObjectTextureMenuButton")});
    rows.push_back(std::move(display));
    return rows;
}

ScriptRequest ActionMenu::chosenOnLine(const QStringList& path) {
    ParseState& parse = model_.Parse();
    state_.PendingCommand = CommandIndex(path[0]);
    if (path.size() == 1)
        return universalclick(path[0]);
    const KindList& essential = CommandParameters(state_.PendingCommand).Essential;
    parse.ClickedKind = essential[0];
    parse.ClickedSlot = 0;
    parse.EssentialValue[0] = menus::valueOfCaption(path[1]);
    if (path.size() == 2)
        return universalclick(path[1]);
    parse.ClickedKind = essential[1];
    parse.EssentialValue[1] = menus::valueOfCaption(path[2]);
    parse.ClickedSlot = 1;
    return universalclick(path[2]);
}

ScriptRequest ActionMenu::chosenForNewLine(const QString& objectName, const QStringList& path) {
    const QString& command = CommandNames(CommandIndex(path[0]));
    TreeNode* line = model_.addLineToCurrentAnimation(DefaultLine(objectName, command));
    ParseState& parse = model_.Parse();
    ParseString(parse, line->Text(), 0);
    parse.ClickedKind = 2;
    parse.ClickedSlot = -1;
    parse.ClickedValue = command;
    parse.SelectedNode = NodeRef::To(model_.TreeView1(), line);
    // The line is recorded as added; filling in its values is part of that.
    const bool recording = model_.UndoRecording();
    model_.SetUndoRecording(false);
    const auto restore = qScopeGuard([&] { model_.SetUndoRecording(recording); });
    return chosenOnLine(path);
}

ScriptRequest ActionMenu::chosenOneShot(const QStringList& path) {
    ParseState& parse = model_.Parse();
    state_.PendingCommand = CommandIndex(path[0]);
    state_.PendingFirstValue.clear();
    state_.PendingSecondValue.clear();
    // The value of a row that opens an editor is what the editor is for.
    const auto pending = [](const QString& caption) {
        return menus::opensEditor(caption) ? QString() : menus::valueOfCaption(caption);
    };
    const KindList& essential = CommandParameters(state_.PendingCommand).Essential;
    if (path.size() >= 2) {
        parse.ClickedKind = essential[0];
        state_.PendingFirstValue = pending(path[1]);
    }
    if (path.size() == 3) {
        parse.ClickedKind = essential[1];
        state_.PendingSecondValue = pending(path[2]);
    }
    return UniversalClickTwo(path.last());
}

ScriptRequest ActionMenu::universalclick(const QString& value) {
    ParseState& parse = model_.Parse();
    // Optional values don't survive a change of command.
    if (parse.ParsedCommand != state_.PendingCommand)
        parse.OptionalValue.Clear();
    parse.ParsedCommand = state_.PendingCommand;
    const QString cut = menus::valueOfCaption(value);
    if (menus::opensEditor(cut))
        return menus::editorForKind(parse.ClickedKind, false);
    if (TreeNode* node = parse.SelectedNode.Get())
        model_.UpdateNode(node, cut);
    return {};
}

ScriptRequest ActionMenu::UniversalClickTwo(const QString& value) {
    const QString cut = menus::valueOfCaption(value);
    if (menus::opensEditor(cut)) {
        state_.gOneShots = true;
        return menus::editorForKind(model_.Parse().ClickedKind, true);
    }
    QString arguments = state_.PendingFirstValue;
    if (!state_.PendingSecondValue.isEmpty())
        arguments += QStringLiteral(", ") + state_.PendingSecondValue;
    // This handler has always reported its failures in the words of another.
    model_.Host().runTool(state_.MenuObject + u'.' + CommandNames(state_.PendingCommand) + u'(' +
                              arguments + u')',
                          failureOf(QStringLiteral("ObjectGoodLookMenuButton")));
    return {};
}

ScriptRequest ActionMenu::renameObject(const QString& objectName, const QString& newName) {
    if (newName.isEmpty())
        return {};
    if (!model_.Host().isValidObjectName(newName)) {
        ScriptRequest refusal;
        refusal.What = ScriptRequest::Kind::Message;
        refusal.Title = QStringLiteral("Invalid name!");
        refusal.Value = QStringLiteral("An object with this name already exists.");
        return refusal;
    }
    model_.Host().runTool(objectName + QStringLiteral(".rename('") + newName + QStringLiteral("')"),
                          failureOf(QStringLiteral("ObjectRenameMenuButton")));
    return {};
}

} // namespace vessa
