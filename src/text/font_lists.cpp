#include "text/font_lists.h"

#include "controls/control_label.h"
#include "text/box_keys.h"
#include "text/script_font.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLineEdit>
#include <QSignalBlocker>

#include <optional>

namespace vessa {

namespace {

QComboBox* makeList(const char* name, const QString& label, const QStringList& entries,
                    QWidget* parent) {
    auto* list = new QComboBox(parent);
    list->setObjectName(QString::fromLatin1(name));
    list->addItems(entries);
    labelFor(list, label);
    return list;
}

} // namespace

FontLists::FontLists(std::function<QFont()> current, QWidget* parent)
    : QObject(parent), current_(std::move(current)),
      names_(makeList("FontNames", tr("Font:"), QFontDatabase::families(), parent)),
      sizes_(makeList("FontSizes", tr("Size:"), script_font::sizes(), parent)),
      effect_(makeList("FontEffect", tr("Effect:"), script_font::effects(), parent)) {
    sizes_->setEditable(true);
    sizes_->setInsertPolicy(QComboBox::NoInsert);
    sizes_->setCompleter(nullptr); // the size is what the user typed
    const auto offer = [this](const std::optional<QFont>& font) {
        if (font)
            Q_EMIT fontChosen(*font);
        else
            showFont(current_()); // what was typed goes, as it changed nothing
    };
    connect(names_, &QComboBox::textActivated, this,
            [this, offer](const QString& name) { offer(script_font::withName(current_(), name)); });
    connect(sizes_, &QComboBox::textActivated, this,
            [this, offer](const QString& size) { offer(script_font::withSize(current_(), size)); });
    // Enter takes what was typed, one of the list's or not. The list hands its keys to
    // its line, so both are watched; the one that has the key takes it.
    const auto typed = [this, offer] {
        offer(script_font::withSize(current_(), sizes_->currentText()));
    };
    for (QWidget* box :
         {static_cast<QWidget*>(sizes_), static_cast<QWidget*>(sizes_->lineEdit())}) {
        auto* keys = new BoxKeys(box);
        keys->add(Qt::Key_Return, typed);
        keys->add(Qt::Key_Enter, typed);
    }
    // Leaving the list takes a size typed without Enter, unless it is the size already.
    connect(sizes_->lineEdit(), &QLineEdit::editingFinished, this, [this, typed] {
        if (sizes_->currentText() != QString::number(current_().pointSizeF()))
            typed();
    });
    connect(effect_, &QComboBox::activated, this,
            [this, offer](int index) { offer(script_font::withEffect(current_(), index)); });
}

void FontLists::showFont(const QFont& font) {
    const QSignalBlocker quietNames(names_);
    const QSignalBlocker quietSizes(sizes_);
    const QSignalBlocker quietEffect(effect_);
    // A family the system lacks is shown as the one that stands in for it.
    names_->setCurrentIndex(names_->findText(QFontInfo(font).family()));
    sizes_->setCurrentText(QString::number(font.pointSizeF()));
    effect_->setCurrentIndex(font.bold() ? 1 : 0);
}

} // namespace vessa
