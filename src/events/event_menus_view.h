#pragma once

#include "events/event_menus.h"

#include <QMenu>
#include <QObject>
#include <QPointer>

#include <functional>

namespace vessa {

class EventList;
class KeyCaptureForm;

// The windows of the event menus: the conditions, the animations and the list's own
// menu as pop-up menus, and the question for a key. It answers those requests of the
// script's request routing for as long as it exists.
class EventMenusView : public QObject {
    Q_OBJECT
public:
    // parent owns the windows.
    EventMenusView(EventList& list, QWidget* parent);
    ~EventMenusView() override;

    EventMenus& menus() { return menus_; }
    // The pop-up menu open, if any.
    QMenu* openMenu() const { return menu_; }
    KeyCaptureForm& keyCapture() const { return *keyCapture_; }

    // Shows what request asks for at its screen point.
    void show(const ScriptRequest& request);

private:
    void popUp(const ScriptRequest& request);
    void guarded(const std::function<void()>& work);

    EventList& list_; // Not owned.
    EventMenus menus_;
    KeyCaptureForm* keyCapture_; // Owned by Qt.
    QPointer<QMenu> menu_;
    QPoint lastPoint_; // where the last menu opened, for the question that follows it
};

} // namespace vessa
