#pragma once

#include <QVariant>
#include <QWidget>

namespace vessa {

// The engine draws its camera view into a widget the front end names by an
// integer id: the id is kept on the host widget as a property, where the
// engine's view finds it.
inline const char* const kViewHostProperty = "vessaHostId";

enum ViewHostId : qint64 {
    OpeningSceneHost = 1, // OpeningSceneFrame on the main window
    RenderFrameHost = 2,  // RenderFrame on the camera window
};

inline void markViewHost(QWidget* host, ViewHostId id) {
    host->setProperty(kViewHostProperty, static_cast<qint64>(id));
}

inline qint64 viewHostId(const QWidget* host) {
    return host->property(kViewHostProperty).toLongLong();
}

} // namespace vessa
