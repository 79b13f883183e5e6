#include "shell/splash_screen.h"

#include "controls/accessible_names.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>

namespace vessa {

SplashScreen::SplashScreen(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("SplashScreen"));
    setFixedSize(420, 240);
    if (QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
    applyAccessibleNames(this);
}

int SplashScreen::displayBitsPerPixel() const {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    return s ? s->depth() : 32;
}

void SplashScreen::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QLinearGradient sky(0, 0, 0, height());
    sky.setColorAt(0, QColor(70, 130, 200));
    sky.setColorAt(1, QColor(190, 220, 245));
    painter.fillRect(rect(), sky);
    painter.fillRect(QRect(0, height() * 3 / 4, width(), height() / 4), QColor(90, 160, 80));
    painter.setPen(Qt::white);
    QFont title = font();
    title.setPointSize(32);
    title.setBold(true);
    painter.setFont(title);
    painter.drawText(rect().adjusted(0, 0, 0, -height() / 4), Qt::AlignCenter,
                     QStringLiteral("Vessa47"));
    QFont small = font();
    small.setPointSize(10);
    painter.setFont(small);
    painter.drawText(rect().adjusted(0, 0, -10, -8), Qt::AlignRight | Qt::AlignBottom,
                     QStringLiteral("Starting..."));
}

} // namespace vessa
