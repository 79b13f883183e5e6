// The sketch tool as the program meets it: started through the home folder's `jview`
// in its working folder, drawn on with the real X server's mouse (xdotool), its
// answer read from the X clipboard by another program, this one.

#include "export/sketch_session.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

const QString kHome = QStringLiteral(VESSA_HOME_DIR "/");

QString xdotool(const QStringList& arguments) {
    QProcess run;
    run.start(QStringLiteral("xdotool"), arguments);
    if (!run.waitForFinished(60'000))
        return {};
    return QString::fromUtf8(run.readAllStandardOutput()).trimmed();
}

// The tool, started as the program starts it, with its window up.
class TeddyTool : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QStringLiteral("xcb"))
            GTEST_SKIP() << "needs a display";
        // What the program does before it starts the tool: nothing old is an answer.
        QGuiApplication::clipboard()->setText(QStringLiteral("some text of the user's"));
        tool_.setWorkingDirectory(kHome + QStringLiteral("Teddy2"));
        tool_.start(kHome + QStringLiteral("bin/jview"), {QStringLiteral("Teddy")});
        ASSERT_TRUE(tool_.waitForStarted());
        window_ = xdotool({QStringLiteral("search"), QStringLiteral("--sync"),
                           QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                           QStringLiteral("Make an Object")})
                      .section(QLatin1Char('\n'), 0, 0);
        ASSERT_FALSE(window_.isEmpty());
        xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), window_});
    }
    void TearDown() override {
        if (tool_.state() != QProcess::NotRunning) {
            tool_.kill();
            tool_.waitForFinished();
        }
    }

    // The clipboard's text once it is not the user's any more.
    QString answer() {
        QString text;
        [[maybe_unused]] const bool came = QTest::qWaitFor(
            [&] {
                text = QGuiApplication::clipboard()->text();
                return text.startsWith(QStringLiteral("TEDDY_"));
            },
            30'000);
        return text;
    }

    QProcess tool_;
    QString window_;
};

TEST_F(TeddyTool, SaveAndExitLeavesThePathOnTheClipboardUntilTheProgramHasIt) {
    // A round stroke in the drawing area, 200 pixels from the window's corner.
    QStringList stroke{
        QStringLiteral("mousemove"), QStringLiteral("--window"), window_,
        QStringLiteral("400"),       QStringLiteral("250"),      QStringLiteral("mousedown"),
        QStringLiteral("1")};
    for (int i = 1; i <= 60; ++i) {
        const double a = 2 * std::numbers::pi * i / 60;
        stroke << QStringLiteral("mousemove") << QStringLiteral("--window") << window_
               << QString::number(std::lround(300 + 100 * std::cos(a)))
               << QString::number(std::lround(250 + 100 * std::sin(a)))
               // one motion event for each point, as a hand makes them
               << QStringLiteral("sleep") << QStringLiteral("0.02");
    }
    stroke << QStringLiteral("mouseup") << QStringLiteral("1");
    xdotool(stroke);
    xdotool({QStringLiteral("key"), QStringLiteral("ctrl+s")});

    const QString text = answer();
    ASSERT_TRUE(text.startsWith(QStringLiteral("TEDDY_SAVE_AND_EXIT "))) << text.toStdString();
    const QString path = text.mid(20);
    EXPECT_TRUE(vessa::isSketchObjectPath(path)) << path.toStdString();
    // The window is gone, but the tool keeps the answer for the program to read...
    EXPECT_EQ(tool_.state(), QProcess::Running);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
    // ...until the clipboard takes something else.
    QGuiApplication::clipboard()->setText(QStringLiteral("read"));
    EXPECT_TRUE(tool_.waitForFinished(10'000));
    EXPECT_EQ(tool_.exitCode(), 0);
    QFile::remove(path);
    QDir().rmdir(QFileInfo(path).absolutePath());
}

TEST_F(TeddyTool, DiscardAnswersThatNothingWasMade) {
    xdotool({QStringLiteral("key"), QStringLiteral("alt+d")});
    EXPECT_EQ(answer(), QStringLiteral("TEDDY_DISCARD_AND_EXIT"));
}

} // namespace
