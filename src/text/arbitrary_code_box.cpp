#include "text/arbitrary_code_box.h"

#include "text/box_keys.h"
#include "text/code_editor.h"

#include <QKeyEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QVBoxLayout>

namespace vessa {

ArbitraryCodeBox::ArbitraryCodeBox(QWidget* parent)
    : QWidget(parent), editor_(new CodeEditor(this)), lineLabel_(new QLabel(this)) {
    setObjectName(QStringLiteral("ArbitraryCodeBoxPanel"));
    editor_->setObjectName(QStringLiteral("ArbitraryCodeBox"));
    editor_->setToolTip(QStringLiteral("Your own Python, run after the script. Ctrl+P runs it, "
                                       "F5 the selected lines; Esc moves on."));
    lineLabel_->setObjectName(QStringLiteral("LineLabel"));
    // Hidden while the box has no focus, without the box jumping.
    QSizePolicy keepPlace = lineLabel_->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    lineLabel_->setSizePolicy(keepPlace);
    lineLabel_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    layout->addWidget(editor_, 1);
    layout->addWidget(lineLabel_);
    editor_->installEventFilter(this);
    auto* keys = new BoxKeys(editor_);
    for (const QKeyCombination run :
         {Qt::CTRL | Qt::Key_P, Qt::ALT | Qt::Key_P, Qt::CTRL | Qt::ALT | Qt::Key_P})
        keys->add(run, [this] { Q_EMIT runWanted(); });
    keys->add(Qt::Key_F5, [this] { Q_EMIT runSelectionWanted(); });
    keys->add(Qt::Key_F4, [this] { Q_EMIT undoWanted(); });
    editor_->viewport()->installEventFilter(this);
    // The document tells of colouring as of a change: only a change of the text counts.
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        QString now = editor_->toPlainText();
        if (now == shown_)
            return;
        shown_ = std::move(now);
        Q_EMIT edited();
        refreshLineLabel();
    });
    refreshLineLabel();
}

QString ArbitraryCodeBox::Text() const {
    QString text = shown_;
    text.replace(u'\n', QStringLiteral("\r\n"));
    return text;
}

void ArbitraryCodeBox::showText(const QString& text) {
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    shown.replace(u'\r', u'\n');
    if (shown == shown_)
        return;
    const QSignalBlocker quiet(editor_);
    editor_->setPlainText(shown);
    shown_ = std::move(shown);
    refreshLineLabel();
}

LineRange ArbitraryCodeBox::selectedLines() const {
    return editor_->selectedLines();
}

void ArbitraryCodeBox::markErrorLine(int line) {
    editor_->markLine(line);
    editor_->setFocus(Qt::OtherFocusReason);
    refreshLineLabel();
}

void ArbitraryCodeBox::refreshLineLabel() {
    lineLabel_->setText(QStringLiteral("Line: ") +
                        QString::number(editor_->textCursor().blockNumber() + 1));
}

bool ArbitraryCodeBox::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::FocusIn:
        tag_ = QStringLiteral("1");
        lineLabel_->show();
        refreshLineLabel();
        break;
    case QEvent::FocusOut:
        // A menu opening over the box leaves it the box the Edit menu works on.
        if (static_cast<QFocusEvent*>(event)->reason() == Qt::PopupFocusReason)
            break;
        tag_ = QStringLiteral("0");
        lineLabel_->hide();
        break;
    case QEvent::KeyRelease: {
        // Only Up and Down tell the caret's new line; the other keys that move it do not.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down)
            refreshLineLabel();
        break;
    }
    case QEvent::MouseButtonRelease:
        if (watched == editor_->viewport())
            refreshLineLabel();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace vessa
