#include "shell/edit_menu.h"

#include "base/run_time_error.h"
#include "script/script_host.h"
#include "script/script_model.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>

namespace vessa {

namespace {

// The mark of lines this program put on the clipboard: the process's own number, so that
// lines copied in another Vessa47 count as text from elsewhere.
constexpr char OwnLinesMimeType[] = "application/x-vessa47-script-lines";

QByteArray ownMark() {
    return QByteArray::number(QCoreApplication::applicationPid());
}

bool isOwnLines(const QMimeData* data) {
    return data->data(QString::fromLatin1(OwnLinesMimeType)) == ownMark();
}

constexpr int AnimationsTab = 1;

} // namespace

EditMenu::EditMenu(ScriptModel& script, EventList& events, std::function<int()> tab,
                   QWidget& dialogParent)
    : script_(script), dialogParent_(dialogParent), tab_(tab),
      commands_(script, events, std::move(tab), *this) {
    script_.requests().registerHandler(
        ScriptRequest::Kind::NodeCommand, [this](const ScriptRequest& request) {
            run([&](EditCommands& commands) { commands.mnuNodeRightB_Click(request.Number); });
        });
    // Only looked at, not read: another program's text may be long.
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, [this] {
        const QMimeData* data = QApplication::clipboard()->mimeData();
        if (tab_() == AnimationsTab && data && data->hasText() && !isOwnLines(data))
            offerPaste();
    });
}

EditMenu::~EditMenu() {
    script_.requests().registerHandler(ScriptRequest::Kind::NodeCommand, {});
}

void EditMenu::setCodeBox(QPlainTextEdit* box, std::function<bool()> hasFocus) {
    codeBox_ = box;
    codeBoxHasFocus_ = std::move(hasFocus);
}

void EditMenu::run(const std::function<void(EditCommands&)>& command) {
    try {
        command(commands_);
    } catch (const RunTimeError& error) {
        script_.Host().ReportError(error);
    }
}

bool EditMenu::codeBoxHasFocus() {
    return codeBox_ && codeBoxHasFocus_ && codeBoxHasFocus_();
}

void EditMenu::cutCodeBoxText() {
    if (codeBox_)
        codeBox_->cut();
}

void EditMenu::copyCodeBoxText() {
    if (codeBox_)
        codeBox_->copy();
}

void EditMenu::pasteCodeBoxText() {
    // The box's own paste, which takes clipboard text as the box takes any.
    if (codeBox_)
        codeBox_->paste();
}

void EditMenu::askDeleteAnimation(std::function<void()> agreed) {
    auto* question = new QMessageBox(
        QMessageBox::Warning, tr("Delete Animation"),
        QStringLiteral("This animation has been attached to a condition in the event builder.\r\n"
                       "If you delete this animation, any events to which it has been attached "
                       "\r\nwill be deleted as well."),
        QMessageBox::Ok | QMessageBox::Cancel, &dialogParent_);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this, [this, agreed = std::move(agreed)](int answer) {
        if (answer == QMessageBox::Ok)
            run([&](EditCommands&) { agreed(); });
    });
    question->open();
}

void EditMenu::putScriptLines(const QString& text) {
    auto* data = new QMimeData;
    data->setText(text);
    data->setData(QString::fromLatin1(OwnLinesMimeType), ownMark());
    QApplication::clipboard()->setMimeData(data);
}

QString EditMenu::foreignClipboardText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (!data || !data->hasText() || data->data(QString::fromLatin1(OwnLinesMimeType)) == ownMark())
        return {};
    return data->text();
}

void EditMenu::refusePaste(const QString& message) {
    auto* box = new QMessageBox(QMessageBox::Warning, tr("Vessa47 - Paste"), message,
                                QMessageBox::Ok, &dialogParent_);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace vessa
