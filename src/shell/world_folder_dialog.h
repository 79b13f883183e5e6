#pragma once

#include <QString>

class QWidget;

namespace vessa {

// A world folder chosen in a plain folder dialog, titled caption, beginning in startIn;
// "" when the user chose none. It stands in for the world dialog, whose pictures of
// worlds are still to come.
QString chooseWorldFolder(QWidget* parent, const QString& caption, const QString& startIn);

} // namespace vessa
