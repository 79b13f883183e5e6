#include "controls/control_label.h"

#include <QLabel>

namespace vessa {

QLabel* labelFor(QWidget* control, const QString& text) {
    auto* label = new QLabel(text, control->parentWidget());
    label->setObjectName(control->objectName() + QStringLiteral("Label"));
    label->setBuddy(control);
    return label;
}

} // namespace vessa
