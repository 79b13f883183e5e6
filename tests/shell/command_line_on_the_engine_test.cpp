// The command line with the real engine behind the main window: what a line does shows
// at once, and a line that never ends or is far too long is told as a mistake while the
// program and the world go on.
#include "window_on_the_engine.h"

#include "text/command_line_bar.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct CommandLineOnTheEngine : WindowOnTheEngine {
    QLineEdit& edit = *form->commandLine().CommandLineBox().lineEdit();
    QStringList mistakes; // what the user's error form said, each closed at once
    QTimer closer;

    CommandLineOnTheEngine() {
        QObject::connect(&closer, &QTimer::timeout, [this] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box || box->objectName() != QStringLiteral("ErrorForm"))
                return;
            mistakes
                << box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"))->text() + u'|' +
                       box->findChild<QPlainTextEdit*>(QStringLiteral("ErrorLabel"))->toPlainText();
            QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("OkButton")),
                              Qt::LeftButton);
        });
        closer.start(0);
    }

    void run(const QString& line) {
        edit.setText(line);
        QTest::keyClick(&edit, Qt::Key_Return);
        runEngine();
    }
};

TEST(CommandLineOnTheEngine, ALineRunsAtOnceAndAnExpressionShowsItsValue) {
    CommandLineOnTheEngine w;
    w.form->OutputText()->clear();
    w.run(QStringLiteral("Camera.Move(Forward, 2, Duration=0)"));
    w.run(QStringLiteral("6 * 7"));
    EXPECT_TRUE(w.form->OutputText()->toPlainText().contains(QStringLiteral("42")));
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 2.000"));
    EXPECT_TRUE(w.mistakes.isEmpty()) << w.mistakes.join(u'\n').toStdString();
}

TEST(CommandLineOnTheEngine, AnEndlessLoopIsStoppedAndToldAndTheWorldGoesOn) {
    CommandLineOnTheEngine w;
    w.engine.call(QStringLiteral("SetWatchdogSeconds"), {0.5});
    w.run(QStringLiteral("Camera.Move(Up, 1, Duration=0)"));
    QElapsedTimer clock;
    clock.start();
    w.run(QStringLiteral("while True: pass"));
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_EQ(w.mistakes.size(), 1);
    EXPECT_TRUE(w.mistakes.first().contains(QStringLiteral("too long")))
        << w.mistakes.first().toStdString();
    // Nothing lost: the line stays to be mended, the world is as it was and takes lines.
    EXPECT_EQ(w.edit.text(), QStringLiteral("while True: pass"));
    w.run(QStringLiteral("Camera.Move(Forward, 1, Duration=0)"));
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 1.000 1.000"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(CommandLineOnTheEngine, LinesOfAHundredThousandCharactersAreRunOrToldAsMistakes) {
    CommandLineOnTheEngine w;
    // A long string is no problem; a sum of 50,000 terms is too deep for Python to
    // compile, and is told as a mistake in the line.
    w.run(QStringLiteral("s = '") + QString(100000, u'a') + QStringLiteral("'"));
    w.form->OutputText()->clear();
    w.run(QStringLiteral("len(s)"));
    EXPECT_TRUE(w.form->OutputText()->toPlainText().contains(QStringLiteral("100000")));
    EXPECT_TRUE(w.mistakes.isEmpty());
    QString sum = QStringLiteral("1");
    while (sum.size() < 100000)
        sum += QStringLiteral("+1");
    w.run(sum);
    EXPECT_EQ(w.mistakes.size(), 1);
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
    w.run(QStringLiteral("Camera.Move(Forward, 1, Duration=0)"));
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 1.000"));
}

} // namespace
