// One key typed into a code box of 10,000 lines of Python, from the key event to the
// box coloured and its text handed on as the world keeps it (CR LF), as the main window
// does at each change. The box is shown (offscreen) and drawn after each key.
#include "text/arbitrary_code_box.h"
#include "text/code_editor.h"
#include "text/python_highlighter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTextBlock>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

using namespace vessa;

namespace {

QString tenThousandLines() {
    QStringList lines;
    for (int i = 0; i < 2000; ++i) {
        lines << QStringLiteral("def hop_%1(times=3):").arg(i)
              << QStringLiteral("    '''Bunny hops %1 times.'''").arg(i)
              << QStringLiteral("    for n in range(times):  # each hop")
              << QStringLiteral("        Bunny.Move(Up, 0.5, Duration=0.25)")
              << QStringLiteral("    print(\"hopped\", n, 'times \\'again\\'')");
    }
    return lines.join(QStringLiteral("\r\n"));
}

struct BigBox {
    ArbitraryCodeBox box;
    QString worldText;

    BigBox() {
        box.resize(800, 600);
        box.editor().highlighter().setWorldNames({QStringLiteral("Move")},
                                                 {QStringLiteral("Bunny")});
        box.showText(tenThousandLines());
        QObject::connect(&box, &ArbitraryCodeBox::edited, [this] { worldText = box.Text(); });
        box.show();
        box.editor().setFocus();
        QApplication::processEvents();
    }
    void caretAt(int line, int column) {
        QTextCursor caret(box.editor().document()->findBlockByNumber(line));
        caret.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, column);
        box.editor().setTextCursor(caret);
    }
    // The key's press and release as the window system hands them to the box, then
    // the box drawn. (QTest's key clicks wait on the clock between events.)
    void press(Qt::Key key, char text) {
        const QString typed = text == '\b' ? QString() : QString(QChar::fromLatin1(text));
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, typed);
        QApplication::sendEvent(&box.editor(), &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, typed);
        QApplication::sendEvent(&box.editor(), &up);
        QApplication::processEvents();
    }
    // The turns that colour the lines a key left for later; the longest, in milliseconds.
    double colourTheRest() {
        double longest = 0;
        while (box.editor().highlighter().colouringLater()) {
            const auto start = std::chrono::steady_clock::now();
            QApplication::processEvents();
            const std::chrono::duration<double, std::milli> took =
                std::chrono::steady_clock::now() - start;
            longest = std::max(longest, took.count());
        }
        return longest;
    }
};

// A letter typed in the middle of a line in the middle of the box (taken away again
// outside the measure).
void BM_TypeAKeyIn10000Lines(benchmark::State& state) {
    BigBox big;
    big.caretAt(5003, 12);
    for (auto _ : state) {
        big.press(Qt::Key_X, 'x');
        state.PauseTiming();
        big.press(Qt::Key_Backspace, '\b');
        state.ResumeTiming();
    }
}
BENCHMARK(BM_TypeAKeyIn10000Lines)->Unit(benchmark::kMillisecond)->UseRealTime();

// The worst key: the third quote that opens a string in three quotes on the first line,
// so that every line after it changes colour. The key's turn is measured; the lines
// coloured in the turns after it are timed turn by turn, and the longest is counted.
void BM_OpenAStringOverAll10000Lines(benchmark::State& state) {
    BigBox big;
    big.caretAt(0, 0);
    double longestLaterTurn = 0;
    for (auto _ : state) {
        state.PauseTiming();
        big.press(Qt::Key_QuoteDbl, '"');
        big.press(Qt::Key_QuoteDbl, '"');
        big.colourTheRest();
        state.ResumeTiming();
        big.press(Qt::Key_QuoteDbl, '"');
        state.PauseTiming();
        longestLaterTurn = std::max(longestLaterTurn, big.colourTheRest());
        for (int i = 0; i < 3; ++i)
            big.press(Qt::Key_Backspace, '\b');
        big.colourTheRest();
        state.ResumeTiming();
    }
    state.counters["longest_later_turn_ms"] = longestLaterTurn;
}
BENCHMARK(BM_OpenAStringOverAll10000Lines)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
