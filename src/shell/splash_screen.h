#pragma once

#include <QWidget>

namespace vessa {

// The picture shown while the program starts.
class SplashScreen : public QWidget {
    Q_OBJECT
public:
    explicit SplashScreen(QWidget* parent = nullptr);
    // Bits per pixel of the display the splash stands on.
    int displayBitsPerPixel() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vessa
