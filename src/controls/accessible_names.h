#pragma once

#include <QString>

class QWidget;

namespace vessa {

// The name a screen reader says for each window, panel and control, found by the
// control's object name. This table is the one list of them: a control that a
// user can reach gets an entry here.
QString accessibleNameOf(const QString& control);

// Gives every widget under `root` (and `root` itself) that has an entry its name.
void applyAccessibleNames(QWidget* root);

} // namespace vessa
