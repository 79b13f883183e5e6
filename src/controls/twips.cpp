#include "controls/twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace vessa {

namespace {

constexpr double kTwipsPerInch = 1440;
constexpr double kCommonDpi = 96;

} // namespace

double twipsPerPixel(const QScreen* screen) {
    const double dpi = screen ? screen->logicalDotsPerInch() : kCommonDpi;
    return kTwipsPerInch / (dpi > 0 ? dpi : kCommonDpi);
}

double twipsPerPixel(const QWidget* widget) {
    return twipsPerPixel(widget && widget->screen() ? widget->screen()
                                                    : QGuiApplication::primaryScreen());
}

} // namespace vessa
