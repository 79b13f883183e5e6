#pragma once

#include "world/difference_handler.h"
#include "world/world_status.h"

#include <QColor>
#include <QStringList>

namespace vessa::testing {

// The main window as the open world sees it: remembers what it was asked to show.
class RecordingView : public DifferenceView, public WorldStatusObserver {
public:
    void appendOutput(const QString& text, const QColor& color) override {
        output << text;
        colors << color;
    }
    void PrintOutput(const QString& text) override { printed << text; }
    void showUndoAvailable(bool available) override { undo << available; }
    void showWorldActive(bool running) override { active << running; }
    bool cameraWindowOnTop() const override { return onTop; }
    void setRenderFormAlwaysOnTop(bool value) override { onTopCalls << value; }
    void pumpEvents() override { ++pumps; }
    void showUserError(const ErrorFormContent& content) override { errors << content; }
    void worldNamed(const QString& folder) override { status << QStringLiteral("named ") + folder; }
    void worldModified() override { status << QStringLiteral("modified"); }

    QStringList output, printed, status;
    QList<QColor> colors;
    QList<bool> undo, active, onTopCalls;
    QList<ErrorFormContent> errors;
    bool onTop = false;
    int pumps = 0;
};

} // namespace vessa::testing
