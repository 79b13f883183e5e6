#pragma once

#include "shell/window_settings.h"

#include <QObject>
#include <QTimer>

#include <functional>

class QSplitter;
class QWidget;

namespace vessa {

class EngineLink;
class RegKeys;
class RenderForm;

// Twips per pixel on the screen a widget is on (on the primary screen without one).
double twipsPerPixel(const QWidget* widget);

// Puts the windows where the settings say when the program starts, and keeps where the
// user left them when it ends. It also shows the camera window's frame rate, a
// preference kept here.
class WindowKeeper : public QObject {
    Q_OBJECT
public:
    struct Windows {
        QWidget& mainForm;
        RenderForm& renderForm;
        QSplitter& columns;        // the scene's column | the rest
        QSplitter& output;         // the tabs over the output pane
        QSplitter& sounds;         // the objects over the sounds
        QList<QWidget*> textViews; // the views that take the chosen font
    };

    WindowKeeper(RegKeys& keys, EngineLink& engine, Windows windows,
                 std::function<void(const QString&)> note);

    // Reads and applies; what was wrong with the store is noted.
    const WindowSettings& RestoreSettings();
    void StoreSettings(const QList<QPair<QString, QString>>& recentFiles);

    Preferences& preferences() { return settings_.preferences; }
    const WindowSettings& settings() const { return settings_; }
    bool restored() const { return restored_; }

private:
    void StatsTimer_Timer();
    void place(QWidget& window, const TwipsRect& rect) const;
    TwipsRect placeOf(const QWidget& window) const;
    QSize screenTwips() const;

    RegKeys& keys_;
    EngineLink& engine_;
    Windows windows_;
    std::function<void(const QString&)> note_;
    WindowSettings settings_;
    bool restored_ = false;
    QTimer StatsTimer;
};

} // namespace vessa
