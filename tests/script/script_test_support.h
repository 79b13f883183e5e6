#pragma once

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "controls/tree_geometry.h"
#include "script/script_host.h"
#include "script/script_model.h"
#include "script/script_request.h"

#include <QFontMetrics>

#include <vector>

namespace vessa::testing {

// The world around the script: counts the changes it was told of and the event log
// replays, and keeps the requests of every kind once it records a model's.
class FakeScriptHost : public ScriptHost {
public:
    void scriptModified() override { ++modifications; }
    void LVUndoFromLog() override { ++eventUndos; }
    void LVRedoFromLog() override { ++eventRedos; }
    int ReplaceInListView(const QString& oldName, const QString& newName) override {
        animationRenames << oldName + QStringLiteral(" -> ") + newName;
        return eventRowsOfRenamedAnimation;
    }
    bool FindInListView(const QString& name) override {
        return animationsWithRows.contains(name, Qt::CaseInsensitive);
    }
    int RemoveFromListView(const QString& name) override {
        removedAnimationRows << name;
        return animationsWithRows.removeAll(name.toLower()) > 0 ? eventRowsOfRemovedAnimation : 0;
    }
    void ReportError(const RunTimeError& error) override { errors.push_back(error.number()); }
    const TreeControl& sceneObjects() override { return objects; }
    QStringList sceneSounds() override { return sounds; }
    bool openingSceneShown() override { return openingScene; }
    QVariantList objectMenuFacts(const QString& objectName) override {
        asked << objectName;
        return facts;
    }
    void runTool(const QString& statement, const QString& failureMessage) override {
        statements << statement;
        failures << failureMessage;
    }
    bool isValidObjectName(const QString& name) override { return !takenNames.contains(name); }

    void RecordRequestsOf(ScriptModel& model) {
        for (int kind = 0; kind <= static_cast<int>(ScriptRequest::Kind::ObjectMenu); ++kind)
            model.requests().registerHandler(
                static_cast<ScriptRequest::Kind>(kind),
                [this](const ScriptRequest& request) { requests.push_back(request); });
    }

    int modifications = 0;
    int eventUndos = 0;
    int eventRedos = 0;
    QStringList animationRenames;        // "old -> new", as the event list was told
    int eventRowsOfRenamedAnimation = 0; // what the event list answers
    QStringList animationsWithRows;      // in lower case: the animations event rows do
    QStringList removedAnimationRows;    // the animations whose rows were asked to go
    int eventRowsOfRemovedAnimation = 0; // what the event list answers for one of those
    std::vector<ScriptRequest> requests;
    std::vector<int> errors;

    // The scene as the menus see it.
    TreeControl objects;       // the object tree
    QStringList sounds;        // the scene's sounds
    bool openingScene = false; // the opening scene's tab is shown
    QVariantList facts;        // what the engine tells of any object for its menu
    QStringList takenNames;    // names the engine refuses
    QStringList asked;         // the objects whose menus were prepared
    QStringList statements;    // run in the scene, in order
    QStringList failures;      // the failure message given with each
};

// A tree laid out as a tree view lays it out, without a window: one row of RowHeight
// per shown node, indented by depth, an icon, then the text in a real font.
class FakeTreeGeometry : public TreeGeometry {
public:
    static constexpr int RowHeight = 20;
    static constexpr int Indent = 20;

    explicit FakeTreeGeometry(const TreeControl& tree) : tree_(tree) {
        font_ = QFont("DejaVu Sans", 10);
    }

    TreeNode* HitTest(const QPoint& point) const override {
        const std::vector<TreeNode*> rows = Rows();
        const int row = point.y() / RowHeight;
        if (point.y() < 0 || row >= static_cast<int>(rows.size()))
            return nullptr;
        TreeNode* node = rows[static_cast<size_t>(row)];
        return point.x() >= TextLeft(node) - 20 ? node : nullptr;
    }

    TreeNode* NodeOnRow(int y) const override {
        const std::vector<TreeNode*> rows = Rows();
        const int row = y / RowHeight;
        if (y < 0 || row >= static_cast<int>(rows.size()))
            return nullptr;
        return rows[static_cast<size_t>(row)];
    }

    QRect NodeRect(const TreeNode* node) const override {
        const std::vector<TreeNode*> rows = Rows();
        for (size_t row = 0; row < rows.size(); ++row)
            if (rows[row] == node)
                return QRect(TextLeft(node), static_cast<int>(row) * RowHeight,
                             QFontMetrics(font_).horizontalAdvance(node->Text()), RowHeight);
        return {};
    }

    int ItemHeight() const override { return RowHeight; }
    int Indentation() const override { return Indent; }
    QFont TextFont() const override { return font_; }
    double TwipsPerPixel() const override { return 15; }

    // The middle of character offset of node's text.
    QPoint AtCharacter(const TreeNode* node, int offset) const {
        const QFontMetrics metrics(font_);
        const QString& text = node->Text();
        const int x = NodeRect(node).left() + metrics.horizontalAdvance(text.left(offset)) +
                      metrics.horizontalAdvance(text.at(offset)) / 2;
        return {x, NodeRect(node).center().y()};
    }

private:
    static int TextLeft(const TreeNode* node) { return Indent * node->Depth() + 24; }

    std::vector<TreeNode*> Rows() const {
        std::vector<TreeNode*> rows;
        AddRows(tree_.FirstRoot(), rows);
        return rows;
    }

    static void AddRows(TreeNode* node, std::vector<TreeNode*>& rows) {
        for (; node; node = node->Next()) {
            rows.push_back(node);
            if (node->Expanded())
                AddRows(node->Child(), rows);
        }
    }

    const TreeControl& tree_;
    QFont font_;
};

} // namespace vessa::testing
