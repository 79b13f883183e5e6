#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace vessa {

// The name a screen reader says for each window, panel and control, found by the
// control's object name. This table is the one list of them: a control that a
// user can reach gets an entry here. A window with a title is known by its title
// and a label by its text, so that the name never hides what they say; the
// engine names its own camera view.
QString accessibleNameOf(const QString& control);
// The name of a control whose name says what it does now, in one of its other states
// ("running"); the list's entry is its name in the state it starts in.
QString accessibleNameOf(const QString& control, const QString& state);
// The object names of every control the list names, each of a control that exists.
QStringList namedControls();

// Gives every widget under `root` (and `root` itself) that has an entry its name.
void applyAccessibleNames(QWidget* root);

} // namespace vessa
