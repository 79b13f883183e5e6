#include "controls/tree_images.h"

namespace vessa {

QList<QIcon> TreeImages() {
    QList<QIcon> list;
    for (int image = 0; image < kTreeImageCount; ++image)
        list << QIcon(
            QStringLiteral(":/tree-images/icon_%1.png").arg(image, 2, 10, QLatin1Char('0')));
    return list;
}

} // namespace vessa
