#pragma once

class QScreen;
class QWidget;

namespace vessa {

// Twips per logical pixel: 1440 twips to the inch, at the screen's logical resolution
// (15 at 96 dots an inch, 7.5 at 192). The one conversion between the twips that
// settings and layouts are kept in and the pixels of the windows.
double twipsPerPixel(const QScreen* screen);
// On the screen a widget is on; on the primary screen without one.
double twipsPerPixel(const QWidget* widget);

} // namespace vessa
