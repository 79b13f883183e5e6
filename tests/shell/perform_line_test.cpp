// "Perform this Line" from the script's node menu, with the real engine behind the
// main window: what the line makes runs in the scene at once.
#include "window_on_the_engine.h"

#include "support/qt_print.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

TEST(PerformThisLine, ALineAndThenABlockMoveTheCameraInTheScene) {
    WindowOnTheEngine w;
    TreeNode* forward = w.script.Add(w.action1, Relation::Child, "",
                                     "Camera.Move(Forward, 1, Duration=0, more...)");
    TreeNode* hop = w.script.Add(w.action1, Relation::Child, "", "DoInOrder : Hop");
    w.script.Add(hop, Relation::Child, "", "Camera.Move(Up, 1, Duration=0, more...)");
    w.script.Add(hop, Relation::Child, "", "Camera.Move(Up, 2, Duration=0, more...)");
    w.script.SetExpanded(hop, true);
    ASSERT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 0.000"));

    w.perform(forward);
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 1.000"));
    w.perform(hop);
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 3.000 1.000"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(PerformThisLine, AMistakeInTheLineIsToldAsAMistakeInTheUsersScript) {
    WindowOnTheEngine w;
    TreeNode* line =
        w.script.Add(w.action1, Relation::Child, "", "Bunny.Move(Forward, 1, more...)");
    QString told;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QStringLiteral("ErrorForm"))
            return;
        told = box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"))->text();
        QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("OkButton")), Qt::LeftButton);
    });
    closer.start(0);
    w.perform(line);
    w.runEngine();
    EXPECT_TRUE(told.contains(QStringLiteral("Bunny"))) << told.toStdString();
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}
