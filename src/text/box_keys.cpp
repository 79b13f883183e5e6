#include "text/box_keys.h"

#include <QKeyEvent>
#include <QWidget>

namespace vessa {

BoxKeys::BoxKeys(QWidget* box) : QObject(box) {
    box->installEventFilter(this);
}

void BoxKeys::add(const QKeySequence& key, std::function<void()> command) {
    keys_.emplace_back(key[0], std::move(command));
}

const std::function<void()>* BoxKeys::commandOf(const QEvent& event) const {
    const auto& key = static_cast<const QKeyEvent&>(event);
    const QKeyCombination pressed(key.modifiers() & ~Qt::KeypadModifier, Qt::Key(key.key()));
    for (const auto& [combination, command] : keys_)
        if (combination == pressed)
            return &command;
    return nullptr;
}

bool BoxKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && commandOf(*event)) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        if (const std::function<void()>* command = commandOf(*event)) {
            // A copy: the command may change the keys of the box.
            const std::function<void()> run = *command;
            run();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vessa
