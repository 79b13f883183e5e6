#pragma once

#include <QSize>
#include <QString>

namespace vessa {

// The windows and the event pump as start-up and the main loop see them. The
// program's own implementation drives Qt widgets; tests script it.
class Shell {
public:
    virtual ~Shell() = default;

    virtual int displayBitsPerPixel() = 0;
    virtual void createSplash() = 0;
    virtual void showSplash() = 0;
    virtual void refreshSplash() = 0;
    virtual void unloadSplash() = 0;

    // Runs the events that are waiting, once.
    virtual void pumpEvents() = 0;
    // One pump that first sleeps until an event comes or `maxWaitMs` passes; 0 does
    // not sleep.
    virtual void pumpEventsWaiting(int maxWaitMs) = 0;

    virtual void createMainForm() = 0;
    virtual void createRenderForm() = 0;
    virtual double twipsPerPixelX() const = 0;
    virtual double twipsPerPixelY() const = 0;

    virtual void showMainForm() = 0;
    virtual void setMainFormCaption(const QString& caption) = 0;
    // The host of the engine's camera view on the opening-scene panel.
    virtual qint64 openingSceneHostId() const = 0;
    virtual QSize openingSceneSizeTwips() const = 0;
    // Shows the help window on `page` and keeps the camera window above it if
    // the user asked for that.
    virtual void showHelpPage(const QString& page) = 0;
    virtual void setIdleTimerInterval(int ms) = 0;
    virtual bool HelpFormWanted() const = 0;

    // The object tree's records are polled only while it shows.
    virtual bool objectTreeVisible() const = 0;

    // A diagnostic line; switched off in normal builds.
    virtual void LogMessage(const QString& text) = 0;

    // Offers back the unsaved work that programs killed before their end left behind.
    virtual void offerRecoveredWork() = 0;
};

} // namespace vessa
