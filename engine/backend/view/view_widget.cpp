#include "view/view_widget.h"

#include "input/input_event.h"
#include "input/key_codes.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSurfaceFormat>
#include <QWheelEvent>

namespace vessa::core {

namespace {

constexpr int kSamplesOfTheHighPath = 4;
constexpr double kDegreesPerWheelStep = 15.0;

// OpenSceneGraph draws with the fixed-function pipeline.
QSurfaceFormat viewFormat(bool highQuality) {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSamples(highQuality ? kSamplesOfTheHighPath : 0);
    return format;
}

} // namespace

ViewWidget::ViewWidget(SceneGraph& scene, InputQueue& input, bool highQuality, QWidget* parent)
    : QOpenGLWidget(parent), view_(std::make_unique<WorldView>(scene)),
      window_(*this, view_->viewer()), input_(input) {
    setObjectName(QStringLiteral("ImageNavigator"));
    setAccessibleName(QStringLiteral("Camera view"));
    setAccessibleDescription(QStringLiteral("The arrow keys and Page Up and Page Down move the "
                                            "camera; other keys go to the world."));
    setFormat(viewFormat(highQuality));
    // Keys belong to the world and drive the camera: a stop of Tab and of a click.
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
    view_->setHighQuality(highQuality);
    clock_.start();
}

double ViewWidget::seconds() const {
    return static_cast<double>(clock_.nsecsElapsed()) / 1e9;
}

void ViewWidget::sceneChanged() {
    if (frameAsked_)
        return;
    frameAsked_ = true;
    update();
}

double ViewWidget::framesPerSecond() {
    return frames_.perSecond(seconds());
}

void ViewWidget::initializeGL() {
    window_.contextMade();
}

void ViewWidget::resizeGL(int, int) {
    const QSize pixels = window_.resized();
    view_->setSize(pixels.width(), pixels.height());
}

void ViewWidget::paintGL() {
    frameAsked_ = false;
    view_->draw(defaultFramebufferObject());
    frames_.frameDrawn(seconds());
    ++framesDrawn_;
}

std::optional<ViewHit> ViewWidget::pick(double x, double y) const {
    const double ratio = devicePixelRatioF();
    return view_->pick(x * ratio, y * ratio);
}

InputEvent ViewWidget::pointerEvent(const char* kind, QPointF at) const {
    const double ratio = devicePixelRatioF();
    const ViewRay ray = view_->rayAt(at.x() * ratio, at.y() * ratio);
    InputEvent event;
    event.kind = kind;
    event.x = at.x();
    event.y = at.y();
    event.rayOrigin = ray.origin;
    event.rayDirection = ray.direction;
    return event;
}

void ViewWidget::sendButton(QMouseEvent* mouse, const char* upOrDown) {
    const char* button = mouse->button() == Qt::RightButton  ? "Right"
                         : mouse->button() == Qt::LeftButton ? "Left"
                                                             : nullptr;
    if (!button)
        return;
    InputEvent event = pointerEvent("", mouse->position());
    event.kind = std::string(button) + "Mouse" + upOrDown;
    event.shift = mouse->modifiers().testFlag(Qt::ShiftModifier);
    event.control = mouse->modifiers().testFlag(Qt::ControlModifier);
    if (const auto hit = pick(mouse->position().x(), mouse->position().y())) {
        event.node = hit->node;
        event.point = hit->point;
    }
    input_.push(std::move(event));
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    sendButton(event, "Down");
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    sendButton(event, "Up");
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    InputEvent move = pointerEvent("MouseMove", event->position());
    move.shift = event->modifiers().testFlag(Qt::ShiftModifier);
    move.control = event->modifiers().testFlag(Qt::ControlModifier);
    input_.push(std::move(move));
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    InputEvent wheel = pointerEvent("Wheel", event->position());
    wheel.wheelSteps = event->angleDelta().y() / 8.0 / kDegreesPerWheelStep;
    input_.push(std::move(wheel));
}

void ViewWidget::sendKey(QKeyEvent* key, const char* kind) {
    if (key->isAutoRepeat() && std::string_view(kind) == "KeyUp")
        return; // a held key is one press until it is let go
    const KeyName name = keyNameFor(key->key(), key->text());
    InputEvent event;
    event.kind = kind;
    event.key = name.key;
    event.rawkey = name.rawkey;
    event.shift = key->modifiers().testFlag(Qt::ShiftModifier);
    event.control = key->modifiers().testFlag(Qt::ControlModifier);
    input_.push(std::move(event));
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
    sendKey(event, "KeyDown");
}

void ViewWidget::keyReleaseEvent(QKeyEvent* event) {
    sendKey(event, "KeyUp");
}

} // namespace vessa::core
