#pragma once

#include "scene/channels.h"

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <optional>

namespace vessa::core {

class SceneGraph;

// What the view shows at a point of its picture.
struct ViewHit {
    int node;           // the engine node whose shape is there
    ChannelValue point; // where, in the engine's world frame
};

// A line from the eye through a point of the picture, in the engine's frame.
struct ViewRay {
    ChannelValue origin;
    ChannelValue direction; // unit length
};

// Draws a scene graph through its first camera, with sky and light around
// it, into whatever OpenGL framebuffer is current. It owns an embedded OSG
// viewer and holds no window: the widget that hosts it makes its context
// current and says which framebuffer to draw into.
class WorldView {
public:
    explicit WorldView(SceneGraph& scene);
    ~WorldView();
    WorldView(const WorldView&) = delete;
    WorldView& operator=(const WorldView&) = delete;

    void setSize(int width, int height);
    // The high-quality path adds shadows; the light one draws less.
    void setHighQuality(bool high);
    bool highQuality() const { return highQuality_; }

    // Draws one frame into the framebuffer fbo of the current context.
    void draw(unsigned int fbo);
    // Frees the viewer's OpenGL objects; the context must be current.
    void releaseGL();
    // The viewer, for a widget that draws the view on screen.
    osgViewer::Viewer& viewer() { return *viewer_; }

    // The camera node the view looks through: the first in the world.
    std::optional<int> cameraNode() const;
    // x and y in pixels from the top left of the picture.
    ViewRay rayAt(double x, double y) const;
    std::optional<ViewHit> pick(double x, double y) const;

private:
    // The viewer's camera as the scene's camera node and the picture's size say.
    void placeCamera() const;
    void placeShadows();
    osg::Matrixd viewMatrix() const;

    SceneGraph& scene_;
    osg::ref_ptr<osgViewer::Viewer> viewer_;
    osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> window_;
    osg::ref_ptr<osg::Group> root_;
    osg::ref_ptr<osg::Group> world_; // the scene graph's world, as this view draws it
    osg::ref_ptr<osg::MatrixTransform> shadows_;
    int width_ = 1;
    int height_ = 1;
    bool highQuality_ = false;
    bool released_ = false;
};

} // namespace vessa::core
