#include "text/code_editor.h"

#include "text/code_editing.h"
#include "text/python_highlighter.h"

#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>

namespace vessa {

// The numbers of the lines in view, beside them.
class LineNumberMargin : public QWidget {
public:
    explicit LineNumberMargin(CodeEditor* editor) : QWidget(editor), editor_(editor) {
        setObjectName(QStringLiteral("LineNumberMargin"));
    }
    QSize sizeHint() const override { return {editor_->marginWidth(), 0}; }

protected:
    void paintEvent(QPaintEvent* event) override { editor_->paintMargin(event); }

private:
    CodeEditor* editor_;
};

CodeEditor::CodeEditor(QWidget* parent)
    : QPlainTextEdit(parent), margin_(new LineNumberMargin(this)),
      highlighter_(new PythonHighlighter(document())) {
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::TypeWriter);
    setFont(font);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    fitTabStops();
    connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { fitMargin(); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy != 0)
            margin_->scroll(0, dy);
        else
            margin_->update(0, rect.y(), margin_->width(), rect.height());
    });
    // A mark tells where an error was in the text as it ran; an edit ends that.
    // (Colouring for new names tells of a change too, but leaves the text as it was.)
    connect(document(), &QTextDocument::contentsChanged, this, [this] {
        if (markedLine_ >= 0 && !highlighter_->recolouring()) {
            markedLine_ = -1;
            setExtraSelections({});
        }
    });
    fitMargin();
}

int CodeEditor::marginWidth() const {
    int digits = 1;
    for (int count = std::max(1, blockCount()); count >= 10; count /= 10)
        ++digits;
    return 8 + fontMetrics().horizontalAdvance(u'9') * std::max(digits, 2);
}

void CodeEditor::fitMargin() {
    setViewportMargins(marginWidth(), 0, 0, 0);
}

void CodeEditor::fitTabStops() {
    setTabStopDistance(fontMetrics().horizontalAdvance(QString(kIndentWidth, u' ')));
}

// A new size of the font widens the indents and the numbers with it.
void CodeEditor::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fitTabStops();
        fitMargin();
    }
}

void CodeEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    const QRect area = contentsRect();
    margin_->setGeometry(area.left(), area.top(), marginWidth(), area.height());
}

void CodeEditor::paintMargin(QPaintEvent* event) {
    QPainter painter(margin_);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.setFont(font());
    const int caretLine = textCursor().blockNumber();
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF shape = blockBoundingGeometry(block).translated(contentOffset());
        if (shape.top() > event->rect().bottom())
            break;
        if (!block.isVisible() || shape.bottom() < event->rect().top())
            continue;
        QFont number = font();
        number.setBold(block.blockNumber() == caretLine);
        painter.setFont(number);
        painter.drawText(QRectF(0, shape.top(), margin_->width() - 4, shape.height()),
                         Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(block.blockNumber() + 1));
    }
}

void CodeEditor::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    if (isReadOnly()) {
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    // (The text edit's own step of the focus stays put while Tab is the text's.)
    if (event->key() == Qt::Key_Escape && mods == Qt::NoModifier) {
        QWidget::focusNextPrevChild(true);
        return;
    }
    if (event->key() == Qt::Key_Escape && mods == Qt::ShiftModifier) {
        QWidget::focusNextPrevChild(false);
        return;
    }
    if (event->key() == Qt::Key_Tab && mods == Qt::NoModifier) {
        if (textCursor().hasSelection())
            indentSelection(false);
        else
            textCursor().insertText(blanksToNextStep(textCursor().positionInBlock()));
        return;
    }
    if (event->key() == Qt::Key_Backtab) {
        indentSelection(true);
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        (mods == Qt::NoModifier)) {
        newLine();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

// Every line the selection touches (the caret's line when nothing is selected) gets
// one step of indentation more, or less; one undo step takes it back.
void CodeEditor::indentSelection(bool unindent) {
    QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    int end = cursor.selectionEnd();
    QTextBlock first = document()->findBlock(start);
    // A selection that ends at the start of a line does not take that line along.
    QTextBlock last = document()->findBlock(end);
    if (cursor.hasSelection() && last.position() == end && last != first)
        last = last.previous();
    QTextCursor edit(document());
    edit.beginEditBlock();
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        edit.setPosition(block.position());
        if (unindent) {
            const int width = unindentWidth(block.text());
            edit.setPosition(block.position() + width, QTextCursor::KeepAnchor);
            edit.removeSelectedText();
        } else {
            edit.insertText(QString(kIndentWidth, u' '));
        }
        if (block == last)
            break;
    }
    edit.endEditBlock();
    if (cursor.hasSelection()) {
        // The selection covers the same whole lines afterwards.
        QTextCursor whole(document());
        whole.setPosition(first.position());
        whole.setPosition(last.position() + last.length() - 1, QTextCursor::KeepAnchor);
        setTextCursor(whole);
    }
}

void CodeEditor::newLine() {
    QTextCursor cursor = textCursor();
    const QString before = cursor.block().text().left(cursor.positionInBlock());
    cursor.beginEditBlock();
    cursor.insertText(QStringLiteral("\n") + indentationAfterEnter(before));
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
}

bool CodeEditor::canInsertFromMimeData(const QMimeData* source) const {
    return source->hasText() && QPlainTextEdit::canInsertFromMimeData(source);
}

void CodeEditor::insertFromMimeData(const QMimeData* source) {
    if (!source->hasText())
        return;
    const QString pasted = source->text();
    const QTextCursor cursor = textCursor();
    const PasteVerdict verdict = judgePaste(pasted, document()->characterCount() - 1,
                                            cursor.selectionEnd() - cursor.selectionStart());
    if (verdict == PasteVerdict::Take) {
        lastRefusal_.clear();
        QPlainTextEdit::insertFromMimeData(source);
        return;
    }
    lastRefusal_ = pasteRefusal(verdict, pasted.size());
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Vessa47 - Paste"),
                                lastRefusal_, QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("PasteRefusedBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

LineRange CodeEditor::selectedLines() const {
    const QTextCursor cursor = textCursor();
    LineRange lines;
    lines.first = document()->findBlock(cursor.selectionStart()).blockNumber();
    lines.selection = cursor.hasSelection();
    lines.last = lines.selection ? document()->findBlock(cursor.selectionEnd() - 1).blockNumber()
                                 : lines.first;
    return lines;
}

void CodeEditor::markLine(int line) {
    const QTextBlock block = document()->findBlockByNumber(line);
    if (!block.isValid())
        return;
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    centerCursor();
    markedLine_ = line;
    showMark();
}

void CodeEditor::showMark() {
    QTextEdit::ExtraSelection mark;
    mark.format.setBackground(QColor(255, 215, 215));
    mark.format.setProperty(QTextFormat::FullWidthSelection, true);
    mark.cursor = QTextCursor(document()->findBlockByNumber(markedLine_));
    setExtraSelections({mark});
}

} // namespace vessa
