#pragma once

#include "controls/twips.h"
#include "shell/window_settings.h"

#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace vessa {

class EngineLink;
class MainFormArea;
class RegKeys;
class RenderForm;

// Puts the windows where the settings say when the program starts, and keeps where the
// user left them when it ends. It also shows the camera window's frame rate, a
// preference kept here.
class WindowKeeper : public QObject {
    Q_OBJECT
public:
    struct Windows {
        QWidget& mainForm;
        RenderForm& renderForm;
        MainFormArea& area;        // its dividers' shares
        QList<QWidget*> textViews; // the views that take the chosen font
    };

    WindowKeeper(RegKeys& keys, EngineLink& engine, Windows windows,
                 std::function<void(const QString&)> note);

    // Reads and applies; what was wrong with the store is noted.
    const WindowSettings& RestoreSettings();
    void StoreSettings(const QList<QPair<QString, QString>>& recentFiles);

    // The help window comes up where it was last, or where the settings say the first
    // time; where it is when it goes is kept.
    void keepHelpForm(QWidget& helpForm);

    Preferences& preferences() { return settings_.preferences; }
    const WindowSettings& settings() const { return settings_; }
    bool restored() const { return restored_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void StatsTimer_Timer();
    void place(QWidget& window, const TwipsRect& rect) const;
    void keepHelpFormCorner();
    TwipsRect placeOf(const QWidget& window) const;
    QSize screenTwips() const;

    RegKeys& keys_;
    EngineLink& engine_;
    Windows windows_;
    std::function<void(const QString&)> note_;
    WindowSettings settings_;
    bool restored_ = false;
    QWidget* helpForm_ = nullptr; // Not owned.
    QTimer StatsTimer;
};

} // namespace vessa
