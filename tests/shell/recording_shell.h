#pragma once

#include "shell/shell.h"

#include <QStringList>
#include <functional>

namespace vessa::testing {

// Windows that only remember what was asked of them.
class RecordingShell : public Shell {
public:
    int displayBitsPerPixel() override { return bitsPerPixel; }
    void createSplash() override { events << QStringLiteral("createSplash"); }
    void showSplash() override { events << QStringLiteral("showSplash"); }
    void refreshSplash() override {}
    void unloadSplash() override { events << QStringLiteral("unloadSplash"); }
    void pumpEvents() override { ++pumps; }
    void pumpEventsWaiting(int maxWaitMs) override {
        waits << maxWaitMs;
        if (onPump)
            onPump();
    }
    void createMainForm() override { events << QStringLiteral("createMainForm"); }
    void createRenderForm() override { events << QStringLiteral("createRenderForm"); }
    double twipsPerPixelX() const override { return 15; }
    double twipsPerPixelY() const override { return 15; }
    void showMainForm() override { events << QStringLiteral("showMainForm"); }
    void setMainFormCaption(const QString& text) override { caption = text; }
    qint64 openingSceneHostId() const override { return 7; }
    QSize openingSceneSizeTwips() const override { return {6000, 4500}; }
    void showHelpPage(const QString& page) override { helpPages << page; }
    void setIdleTimerInterval(int ms) override { idleInterval = ms; }
    bool HelpFormWanted() const override { return helpWanted; }
    bool objectTreeVisible() const override { return treeVisible; }
    void LogMessage(const QString& text) override { logLines << text; }
    void offerRecoveredWork() override { events << QStringLiteral("offerRecoveredWork"); }

    int bitsPerPixel = 32;
    bool helpWanted = false;
    bool treeVisible = false;
    int pumps = 0;
    int idleInterval = 0;
    QStringList events, helpPages, logLines;
    QString caption;
    QList<int> waits;
    std::function<void()> onPump;
};

} // namespace vessa::testing
