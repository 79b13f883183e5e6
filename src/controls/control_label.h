#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace vessa {

// A label shown beside control, named after it ("<control>Label"), in the same owner.
// Being its buddy, the label is what a screen reader says the control is: a list's own
// name, read aloud, is the value it shows.
QLabel* labelFor(QWidget* control, const QString& text);

} // namespace vessa
