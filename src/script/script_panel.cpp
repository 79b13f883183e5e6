#include "script/script_panel.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/tree_images.h"
#include "script/script_host.h"
#include "script/script_icons.h"
#include "script/script_model.h"

#include <QMenu>
#include <QMessageBox>
#include <QVBoxLayout>

namespace vessa {

namespace {

TreeControlView* MakeView(TreeControl& tree, const QString& name, const QList<QIcon>& icons,
                          QWidget* parent) {
    auto* view = new TreeControlView(tree, parent);
    view->setObjectName(name);
    view->ItemModel().SetImageList(icons);
    return view;
}

// A view tall enough for rows lines and no more.
void FitRows(TreeControlView& view, int rows) {
    const int frame = 2 * view.frameWidth();
    view.setFixedHeight(rows * view.fontMetrics().height() * 5 / 4 + frame + 4);
}

} // namespace

ScriptPanel::ScriptPanel(ScriptModel& model, QWidget* parent)
    : QWidget(parent), model_(model), clicks_(model) {
    setObjectName(QStringLiteral("ScriptPanel"));
    const QList<QIcon> icons = TreeImages();
    constructTree_ = MakeView(model.ConstructTree(), QStringLiteral("ConstructTree"), icons, this);
    treeView1_ = MakeView(model.TreeView1(), QStringLiteral("TreeView1"), icons, this);
    commandLine_ =
        MakeView(model.CommandLineTreeview(), QStringLiteral("CommandLineTreeview"), icons, this);
    constructTree_->setRootIsDecorated(false);
    commandLine_->setRootIsDecorated(false);
    FitRows(*constructTree_, 2);
    FitRows(*commandLine_, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(constructTree_);
    layout->addWidget(treeView1_, 1);
    layout->addWidget(commandLine_);
    applyAccessibleNames(this);

    treeView1_->ItemModel().SetLabelEditHandler(
        [this](TreeNode* node, const QString& text) { model_.AfterLabelEdit(node, text); });
    connect(treeView1_, &TreeControlView::MouseDown, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                Guarded([&] { clicks_.TreeView1_MouseDown(button, point, *treeView1_); });
            });
    connect(treeView1_, &TreeControlView::MouseUp, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                Guarded([&] {
                    Show(clicks_.TreeView1_MouseUp(button, point, *treeView1_), *treeView1_);
                });
            });
    // The menu key asks for what a right click on the selected line would show.
    connect(treeView1_, &TreeControlView::menuKeyPressed, this, [this](const QPoint& point) {
        Guarded([&] {
            Show(clicks_.TreeView1_MouseUp(Qt::RightButton, point, *treeView1_), *treeView1_);
        });
    });
    connect(commandLine_, &TreeControlView::MouseUp, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                Guarded([&] {
                    Show(clicks_.CommandLineTreeview_MouseUp(button, point, *commandLine_),
                         *commandLine_);
                });
            });
}

void ScriptPanel::ApplyScriptFont(const QFont& font) {
    treeView1_->setFont(font);
    commandLine_->setFont(font);
    FitRows(*commandLine_, 1);
}

void ScriptPanel::UndoFromLog() {
    Guarded([this] { model_.UndoFromLog(); });
}

void ScriptPanel::Guarded(const std::function<void()>& work) {
    // A failure ends the handler and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        model_.Host().ReportError(error);
    }
}

void ScriptPanel::Show(ScriptRequest request, TreeControlView& view) {
    request.ScreenPoint = view.viewport()->mapToGlobal(request.TreePoint);
    switch (request.What) {
    case ScriptRequest::Kind::None:
        return;
    case ScriptRequest::Kind::NodeMenu:
        PopUp(request, [this](int row) { NodeRowChosen(row); });
        return;
    case ScriptRequest::Kind::Message: {
        auto* box = new QMessageBox(QMessageBox::Information, request.Title, request.Value,
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
        return;
    }
    case ScriptRequest::Kind::BlankMenu:
        PopUp(request, [this, &view, request](int row) {
            Guarded([&] {
                ScriptRequest next = clicks_.mnuBlankRightB_Click(row);
                next.TreePoint = request.TreePoint;
                Show(next, view);
            });
        });
        return;
    default:
        model_.requests().route(request);
    }
}

void ScriptPanel::PopUp(const ScriptRequest& request, const std::function<void(int)>& chosen) {
    if (menu_)
        menu_->close();
    menu_ = new QMenu(this);
    menu_->setAttribute(Qt::WA_DeleteOnClose);
    const bool node = request.What == ScriptRequest::Kind::NodeMenu;
    menu_->setTitle(node ? tr("&Node") : tr("Blank Space"));
    menu_->setAccessibleName(node ? tr("Node") : tr("Blank Space"));
    for (size_t row = 0; row < request.Rows.size(); ++row) {
        const MenuRow& line = request.Rows[row];
        QAction* action =
            line.Caption == u"-" ? menu_->addSeparator() : menu_->addAction(line.Caption);
        action->setVisible(line.Visible);
        action->setEnabled(line.Enabled);
        connect(action, &QAction::triggered, this,
                [chosen, row] { chosen(static_cast<int>(row)); });
    }
    menu_->popup(request.ScreenPoint);
}

void ScriptPanel::NodeRowChosen(int row) {
    if (row == ScriptClicks::PythonLine) {
        AskForPythonLine();
        return;
    }
    Guarded([&] { Show(clicks_.mnuNodeRightB_Click(row), *treeView1_); });
}

void ScriptPanel::AskForPythonLine() {
    auto* box = new QMessageBox(QMessageBox::Warning, tr("Warning - Typing ahead"),
                                QStringLiteral("Warning! This will give you a line of Python "
                                               "Code\n\nIncorrect syntax may lead to errors."
                                               "\n\nProceed only if you are very familiar "
                                               "with Vessa."),
                                QMessageBox::Yes | QMessageBox::No, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAccessibleName(tr("Warning - Typing ahead"));
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Yes)
            Guarded([this] { clicks_.mnuNodeRightB_Click(ScriptClicks::PythonLine); });
    });
    box->open();
}

} // namespace vessa
