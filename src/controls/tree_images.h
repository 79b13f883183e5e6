#pragma once

#include <QIcon>
#include <QList>

namespace vessa {

// The one image list that every tree of the program indexes with a node's Image:
// object kinds (1 to 8, odd for a part), the script's block and order marks (9 to
// 52) and sounds (53). 0 shows nothing.
inline constexpr int kTreeImageCount = 54;

QList<QIcon> TreeImages();

} // namespace vessa
