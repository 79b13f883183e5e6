// The paint tool's window as a user meets it: painting with the mouse, undo
// from the keyboard, and its answers on the clipboard for Save, Save and
// Exit, Discard and a closed window (asking first when paint is not saved);
// a file it can't paint.

#include "paint_support.h"

#include "paint_window.h"
#include "reading/reader_process.h"
#include "support/moved_view.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vessa::paint3d;
using vessa::core::ReaderProcess;

QString clipboardText() {
    return QApplication::clipboard()->text();
}

// A button's shortcut or mnemonic clicks it a moment later, as a press shows.
bool waitFor(const std::function<bool()>& done) {
    return QTest::qWaitFor(done, 5000);
}

QPushButton* buttonOf(PaintWindow& window, const char* name) {
    auto* found = window.findChild<QPushButton*>(QLatin1String(name));
    EXPECT_TRUE(found) << name;
    return found;
}

// Does `action`, clicking `reply` on the first message box it brings up,
// until `done` (without one, until the box is answered); the title of the
// box, or "" when none came. A mnemonic clicks its button a moment after
// the key, so the box may come late.
QString answering(QMessageBox::StandardButton reply, const std::function<void()>& action,
                  const std::function<bool()>& done = {}) {
    QString asked;
    QTimer watch;
    watch.setInterval(0);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        watch.stop();
        asked = box->windowTitle();
        QTest::mouseClick(box->button(reply), Qt::LeftButton);
    });
    watch.start();
    action();
    const auto answered = [&] {
        return !watch.isActive() && !QApplication::activeModalWidget();
    };
    EXPECT_TRUE(waitFor(done ? done : answered));
    watch.stop();
    return asked;
}

// The view draws with OpenGL, which Qt's offscreen platform lacks.
bool canDraw() {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

// A window on a copy of a gallery object, shown, the clipboard holding
// someone else's text.
struct Painting {
    QTemporaryDir folder;
    QString given = copyOfGalleryObject(folder, QStringLiteral("Cube"));
    PaintWindow window{given, ReaderProcess::shared()};
    Painting() {
        QApplication::clipboard()->setText(QStringLiteral("someone else's words"));
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        if (auto* refusal = window.findChild<QLabel*>(QStringLiteral("PaintRefusal")))
            ADD_FAILURE() << refusal->text().toStdString();
    }
    // A drag across the middle of the view with the left button.
    void strokeAcrossTheMiddle() {
        PaintView* view = window.view();
        const QPoint middle = view->rect().center();
        QTest::mousePress(view, Qt::LeftButton, {}, middle - QPoint(20, 0));
        for (int dx = -15; dx <= 20; dx += 5) {
            QMouseEvent move(QEvent::MouseMove, middle + QPoint(dx, 0),
                             view->mapToGlobal(middle + QPoint(dx, 0)), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(view, &move);
        }
        QTest::mouseRelease(view, Qt::LeftButton, {}, middle + QPoint(20, 0));
    }
};

TEST(PaintWindow, SaveAnswersWithANewFileEachTimeAndTheToolGoesOn) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    Painting p;
    p.strokeAcrossTheMiddle();
    QTest::mouseClick(buttonOf(p.window, "PaintSave"), Qt::LeftButton);
    const QString first = clipboardText();
    ASSERT_TRUE(first.startsWith(QStringLiteral("PAINT3D_SAVE "))) << first.toStdString();
    const QString path = first.mid(13);
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(QFileInfo(path).absolutePath(), QFileInfo(p.given).absolutePath());
    EXPECT_TRUE(p.window.isVisible());

    // Ctrl+S saves again, to a file of its own.
    QTest::keyClick(&p.window, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([&] { return clipboardText() != first; }));
    const QString second = clipboardText();
    ASSERT_TRUE(second.startsWith(QStringLiteral("PAINT3D_SAVE "))) << second.toStdString();
    EXPECT_NE(second, first);
    EXPECT_TRUE(QFileInfo::exists(path));
}

TEST(PaintWindow, ThePaintedObjectIsDrawnAsBeforeInAnotherWindow) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    QWidget other; // outlives the window put into it
    Painting p;
    const QImage unpainted = p.window.view()->grabFramebuffer();
    p.strokeAcrossTheMiddle();
    const QImage before = p.window.view()->grabFramebuffer();
    ASSERT_GT(vessa::testing::pixelsApart(unpainted, before), 20) << "the stroke shows";

    const QImage after = vessa::testing::frameInAnotherWindow(p.window, *p.window.view(), other);
    EXPECT_LT(vessa::testing::pixelsApart(before, after), before.width() * before.height() / 100);
}

TEST(PaintWindow, AStrokeOfTheMouseIsUndoneWithCtrlZ) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    Painting p;
    PaintSession& session = *p.window.session();
    EXPECT_FALSE(buttonOf(p.window, "PaintUndo")->isEnabled());
    p.strokeAcrossTheMiddle();
    EXPECT_TRUE(session.changedSinceSave());
    EXPECT_TRUE(buttonOf(p.window, "PaintUndo")->isEnabled());
    QTest::keyClick(&p.window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([&] { return !session.canUndo(); }));
    EXPECT_FALSE(buttonOf(p.window, "PaintUndo")->isEnabled());
}

TEST(PaintWindow, SaveAndExitAnswersAndTheToolStaysUntilTheAnswerIsTaken) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    Painting p;
    QSignalSpy finished(&p.window, &PaintWindow::finished);
    QTest::mouseClick(buttonOf(p.window, "PaintSaveAndExit"), Qt::LeftButton);
    const QString answer = clipboardText();
    ASSERT_TRUE(answer.startsWith(QStringLiteral("PAINT3D_SAVE_AND_EXIT ")))
        << answer.toStdString();
    EXPECT_TRUE(QFileInfo::exists(answer.mid(22)));
    EXPECT_FALSE(p.window.isVisible());
    EXPECT_EQ(finished.count(), 0);
    // The program reads the answer and clears the clipboard: now the tool may go.
    QApplication::clipboard()->clear();
    EXPECT_EQ(finished.count(), 1);
}

TEST(PaintWindow, DiscardAndClosingTheWindowAskFirstWhenPaintIsNotSaved) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    const QString discarded = QStringLiteral("PAINT3D_DISCARD_AND_EXIT");
    {
        Painting p;
        p.strokeAcrossTheMiddle();
        // No: the tool stays and tells the program nothing.
        const QString asked = answering(
            QMessageBox::No, [&] { QTest::keyClick(&p.window, Qt::Key_D, Qt::AltModifier); });
        EXPECT_EQ(asked, QStringLiteral("Discard your painting?"));
        EXPECT_TRUE(p.window.isVisible());
        EXPECT_EQ(clipboardText(), QStringLiteral("someone else's words"));
        // Closing the window asks too; Yes throws the paint away.
        EXPECT_EQ(answering(
                      QMessageBox::Yes, [&] { p.window.close(); },
                      [&] { return clipboardText() == discarded; }),
                  asked);
        EXPECT_EQ(clipboardText(), discarded);
        EXPECT_FALSE(p.window.isVisible());
        EXPECT_EQ(QDir(p.folder.path()).entryList(QDir::Files).size(), 1);
    }
    {
        // Paint that is saved is not lost: Discard answers at once.
        Painting p;
        p.strokeAcrossTheMiddle();
        QTest::mouseClick(buttonOf(p.window, "PaintSave"), Qt::LeftButton);
        EXPECT_EQ(
            answering(
                QMessageBox::No,
                [&] { QTest::mouseClick(buttonOf(p.window, "PaintDiscard"), Qt::LeftButton); },
                [&] { return clipboardText() == discarded; }),
            QString());
        EXPECT_EQ(clipboardText(), discarded);
    }
    {
        // Nothing painted: closing the window answers at once.
        Painting p;
        EXPECT_EQ(answering(
                      QMessageBox::No, [&] { p.window.close(); },
                      [&] { return clipboardText() == discarded; }),
                  QString());
        EXPECT_EQ(clipboardText(), discarded);
        EXPECT_EQ(QDir(p.folder.path()).entryList(QDir::Files).size(), 1);
    }
}

TEST(PaintWindow, PaintUndoneBackToTheLastSaveIsNotAskedAboutAndPastItIs) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    const QString discarded = QStringLiteral("PAINT3D_DISCARD_AND_EXIT");
    const auto undoUntil = [](Painting& p, const std::function<bool()>& done) {
        QTest::keyClick(&p.window, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_TRUE(waitFor(done));
    };
    const auto clickDiscard = [](Painting& p) {
        return [&p] {
            QTest::mouseClick(buttonOf(p.window, "PaintDiscard"), Qt::LeftButton);
        };
    };
    {
        // Every stroke undone: the object is as it came, and Discard answers at once.
        Painting p;
        PaintSession& session = *p.window.session();
        p.strokeAcrossTheMiddle();
        undoUntil(p, [&] { return !session.canUndo(); });
        EXPECT_EQ(answering(QMessageBox::No, clickDiscard(p),
                            [&] { return clipboardText() == discarded; }),
                  QString());
    }
    {
        // Saved between two strokes: undoing the second is back at the save,
        // undoing the first too is paint that was saved and is gone now.
        Painting p;
        PaintSession& session = *p.window.session();
        p.strokeAcrossTheMiddle();
        QTest::mouseClick(buttonOf(p.window, "PaintSave"), Qt::LeftButton);
        p.strokeAcrossTheMiddle();
        EXPECT_TRUE(session.changedSinceSave());
        undoUntil(p, [&] { return !session.changedSinceSave(); });
        undoUntil(p, [&] { return !session.canUndo(); });
        EXPECT_TRUE(session.changedSinceSave());
        EXPECT_EQ(answering(QMessageBox::No, clickDiscard(p)),
                  QStringLiteral("Discard your painting?"));
        EXPECT_TRUE(p.window.isVisible());
    }
}

TEST(PaintWindow, AFileThatCantBePaintedIsToldInTheWindowAndDiscardStillAnswers) {
    QTemporaryDir folder;
    QFile hostile(folder.filePath(QStringLiteral("Trap.mdl")));
    ASSERT_TRUE(hostile.open(QIODevice::WriteOnly));
    hostile.write(QByteArray(4096, '\xff'));
    hostile.close();
    PaintWindow window(hostile.fileName(), ReaderProcess::shared());
    window.show();
    auto* refusal = window.findChild<QLabel*>(QStringLiteral("PaintRefusal"));
    ASSERT_TRUE(refusal);
    EXPECT_TRUE(refusal->text().contains(QStringLiteral("Trap.mdl is damaged")))
        << refusal->text().toStdString();
    EXPECT_FALSE(buttonOf(window, "PaintSave")->isEnabled());
    EXPECT_FALSE(buttonOf(window, "PaintSaveAndExit")->isEnabled());
    QTest::mouseClick(buttonOf(window, "PaintDiscard"), Qt::LeftButton);
    EXPECT_EQ(clipboardText(), QStringLiteral("PAINT3D_DISCARD_AND_EXIT"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

TEST(PaintWindow, EveryControlHasANameAndTabReachesThemInOrder) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    Painting p;
    QStringList order;
    QWidget* start = QApplication::focusWidget();
    ASSERT_EQ(start, p.window.view());
    QWidget* at = start;
    do {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(at);
        ASSERT_TRUE(spoken);
        const QString name = spoken->text(QAccessible::Name);
        EXPECT_FALSE(name.isEmpty()) << at->objectName().toStdString();
        order << name;
        QTest::keyClick(at, Qt::Key_Tab);
        at = QApplication::focusWidget();
    } while (at != start && order.size() < 40);
    // The tools are one stop, as a group of choices is: the arrow keys go through them.
    EXPECT_EQ(order.join(", "), QStringLiteral("Object to paint, Brush, Brush size, Soft edge, "
                                               "Colours, Mix a colour, Choose a picture, Save, "
                                               "Save and Exit, Discard"));
    buttonOf(p.window, "PaintBrushTool")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), buttonOf(p.window, "PaintFillTool"));
}

TEST(PaintWindow, TheFillToolChosenByKeyFillsThePartInTheMiddleWithSpace) {
    if (!canDraw())
        GTEST_SKIP() << "the view needs a display";
    Painting p;
    p.window.view()->setFocus();
    QTest::keyClick(&p.window, Qt::Key_F, Qt::AltModifier);
    EXPECT_TRUE(waitFor([&] { return p.window.view()->tool() == PaintTool::Fill; }));
    p.window.view()->setFocus();
    QTest::keyClick(p.window.view(), Qt::Key_Space);
    EXPECT_TRUE(p.window.session()->canUndo());
    const Skin& skin = p.window.session()->object().parts.front().skin;
    const Rgba red{0xd6, 0x28, 0x28, 255}; // the palette's first colour
    EXPECT_EQ(skin.pixel(0, 0), red);
    EXPECT_EQ(skin.pixel(skin.width() - 1, skin.height() - 1), red);
}

} // namespace
