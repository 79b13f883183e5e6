// Shows the script panel with a small script and saves a picture of it:
//   vessa_script_panel_preview <picture.png> [right-click]
// With "right-click" the picture shows the node menu of a line, as after a right click
// on its Duration value. Run under a virtual display (xvfb-run) or with
// QT_QPA_PLATFORM=offscreen.
#include "core/run_time_error.h"
#include "script/script_host.h"
#include "script/script_icons.h"
#include "script/script_model.h"
#include "script/script_panel.h"
#include "script/script_request.h"

#include <QApplication>
#include <QMainWindow>
#include <QPainter>
#include <QTest>

#include <cstdio>

namespace {

class PreviewHost : public vessa::ScriptHost {
public:
    explicit PreviewHost(QWidget& window) : window_(window) {}
    bool ScriptDirty() const override { return dirty_; }
    void SetScriptDirty(bool dirty) override { dirty_ = dirty; }
    QString Caption() const override { return window_.windowTitle(); }
    void SetCaption(const QString& caption) override { window_.setWindowTitle(caption); }
    void LVUndoFromLog() override {}
    void Dispatch(const vessa::ScriptRequest& request) override {
        std::printf("request %d, number %d, value '%s'\n", static_cast<int>(request.What),
                    request.Number, qPrintable(request.Value));
    }
    void ReportError(const vessa::RunTimeError& error) override {
        std::printf("error %d: %s\n", error.number(), qPrintable(error.description()));
    }

private:
    QWidget& window_;
    bool dirty_ = false;
};

void FillExample(vessa::ScriptModel& script) {
    using vessa::Relation;
    vessa::TreeControl& tree = script.TreeView1();
    vessa::TreeNode* hop = tree.FirstRoot();
    tree.SetText(hop, "Hop = DoInOrder");
    for (const char* line : {"Bunny.Move(Up, 1/2, Duration=1/4, more...)",
                             "Bunny.Turn(Left, 1, Style=abruptly, more...)",
                             "Bunny.Move(Down, 1/2, Duration=1/4, more...)"})
        tree.Add(hop, Relation::Child, "", line);
    vessa::TreeNode* together = tree.Add(hop, Relation::Child, "", "Wave : DoTogether");
    tree.Add(together, Relation::Child, "", "Bunny.Head.Roll(Left, 1/8, more...)");
    tree.Add(together, Relation::Child, "", "PlaySound(boing.wav)");
    vessa::TreeNode* python = tree.Add(hop, Relation::Child, "", "print 'done'");
    tree.SetTag(python, "1");
    tree.SetBackColor(python, QColor(0xC0, 0xC0, 0xC0));
    vessa::RefreshTreeIcons(hop);
    tree.SetExpanded(hop, true);
    tree.SetExpanded(together, true);
    script.AddNewAnimation();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <picture.png> [right-click]\n", argv[0]);
        return 2;
    }
    QApplication app(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Vessa47 - Default");
    PreviewHost host(window);
    vessa::ScriptModel script(host);
    auto* panel = new vessa::ScriptPanel(script);
    window.setCentralWidget(panel);
    FillExample(script);
    window.resize(560, 420);
    window.show();
    QApplication::processEvents();

    QImage picture = window.grab().toImage();
    if (argc > 2) {
        vessa::TreeControlView& view = panel->TreeView1View();
        const vessa::TreeNode* line = script.TreeView1().FirstRoot()->Child();
        const QRect rect = view.NodeRect(line);
        const QPoint duration(
            rect.left() + QFontMetrics(view.font()).horizontalAdvance("Bunny.Move(Up, 1/2, Dur"),
            rect.center().y());
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, duration);
        QApplication::processEvents();
        if (QMenu* menu = panel->OpenMenu()) {
            QPainter painter(&picture);
            painter.drawPixmap(window.mapFromGlobal(menu->pos()), menu->grab());
        }
    }
    return picture.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
