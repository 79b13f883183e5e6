#pragma once

#include <QImage>

#include <string>

namespace vessa::core {

class SceneGraph;

// A picture of the world drawn without a window, for a world saved from a
// script, a test or the command line, where no camera view exists. Mesa's
// EGL without a display (its surfaceless platform) gives an OpenGL context
// that needs no window system at all, so this works with no X server, and
// under one; the picture is drawn into a framebuffer object of its own and
// read back. A Qt context current on the thread (GLX, under X) is put aside
// while drawing: EGL can't make its own current over it.
struct OffscreenPicture {
    QImage image;        // null when nothing could be drawn
    std::string failure; // and then why not
};

// The scene through its first camera, as WorldView draws it.
OffscreenPicture drawOffscreen(SceneGraph& scene, int width, int height, bool highQuality);

} // namespace vessa::core
