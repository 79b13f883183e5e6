#include "view/view_host.h"

#include "scene/scene_graph.h"
#include "view/offscreen_picture.h"
#include "view/view_widget.h"

#include <QApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScreen>

namespace vessa::core {

namespace {

constexpr const char* kHostIdProperty = "vessaHostId";
constexpr QSize kScreenWithout(1920, 1080);
constexpr QSize kPictureWithoutView(320, 240);

// A context made only to learn what OpenGL this machine offers.
struct ProbeContext {
    QOpenGLContext context;
    QOffscreenSurface surface;
    bool current = false;

    ProbeContext() {
        QSurfaceFormat format;
        format.setProfile(QSurfaceFormat::CompatibilityProfile);
        context.setFormat(format);
        surface.setFormat(format);
        surface.create();
        current = context.create() && surface.isValid() && context.makeCurrent(&surface);
    }
    ~ProbeContext() {
        if (current)
            context.doneCurrent();
    }
    std::string renderer() {
        const auto* name =
            reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
        return name ? name : "";
    }
};

} // namespace

ViewHost::ViewHost(SceneGraph& scene, InputQueue& input) : scene_(scene), input_(input) {
    scene_.setOnChange([this] { sceneChanged(); });
}

ViewHost::~ViewHost() {
    scene_.setOnChange({});
    close();
}

// Platforms that show no windows (offscreen, minimal: tests of the front
// end) cannot hold an OpenGL widget either; the program runs there without
// a picture, as a plain python3 does.
bool ViewHost::canDraw() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

QWidget* ViewHost::hostNamed(long long hostId) {
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        const QVariant id = widget->property(kHostIdProperty);
        if (id.isValid() && id.toLongLong() == hostId)
            return widget;
    }
    return nullptr;
}

std::string ViewHost::open(int width, int height, long long hostId) {
    if (!canDraw())
        return "";
    if (std::string failure = checkOpenGL(); !failure.empty())
        return failure;
    QWidget* host = hostNamed(hostId);
    if (!host)
        return "imagenavigator: there is no window " + std::to_string(hostId) +
               " to show the camera view in";
    if (!widget_)
        widget_ = new ViewWidget(scene_, input_, highQuality_, host);
    else
        widget_->setParent(host);
    widget_->setGeometry(0, 0, width, height);
    widget_->show();
    return "";
}

std::string ViewHost::moveTo(long long hostId) {
    if (!widget_)
        return "";
    QWidget* host = hostNamed(hostId);
    if (!host)
        return "setimagenavigatorparent: there is no window " + std::to_string(hostId);
    const QRect place = widget_->geometry();
    widget_->setParent(host);
    widget_->setGeometry(place);
    widget_->show();
    return "";
}

void ViewHost::resize(int width, int height) {
    if (widget_)
        widget_->setGeometry(0, 0, width, height);
}

void ViewHost::close() {
    delete widget_.data();
}

std::string ViewHost::focus() {
    if (widget_)
        widget_->setFocus(Qt::OtherFocusReason);
    return "";
}

// The paths differ in what the widget's context is made with, so a change
// makes the view anew in the same place.
std::string ViewHost::setHighQuality(bool high) {
    if (high == highQuality_)
        return "";
    highQuality_ = high;
    if (!widget_)
        return "";
    QWidget* host = widget_->parentWidget();
    const QRect place = widget_->geometry();
    const bool hadFocus = widget_->hasFocus();
    close();
    widget_ = new ViewWidget(scene_, input_, highQuality_, host);
    widget_->setGeometry(place);
    widget_->show();
    if (hadFocus)
        widget_->setFocus(Qt::OtherFocusReason);
    return "";
}

// Without a view (a world saved by a script, a test, the command line) the
// picture is drawn offscreen, as large as a view of a usual window would be;
// a picture of a given size is drawn offscreen at that size.
std::string ViewHost::savePicture(const std::string& path, int width, int height) {
    const bool sized = width > 0 && height > 0;
    QImage picture;
    if (widget_ && !sized) {
        picture = widget_->grabFramebuffer();
    } else {
        const QSize size = sized ? QSize(width, height) : kPictureWithoutView;
        OffscreenPicture drawn = drawOffscreen(scene_, size.width(), size.height(), highQuality_);
        if (drawn.image.isNull())
            return "The picture of the world could not be drawn: " + drawn.failure;
        picture = std::move(drawn.image);
    }
    if (picture.isNull() || !picture.save(QString::fromStdString(path), "BMP"))
        return "The picture of the world could not be written to " + path;
    return "";
}

// What a display offers does not change while the program runs: the probe
// is made once.
std::string ViewHost::checkOpenGL() {
    if (!canDraw())
        return "";
    static const std::string failure = [] {
        ProbeContext probe;
        return probe.current ? std::string()
                             : std::string("Vessa47 needs OpenGL to draw its camera view, and no "
                                           "OpenGL context could be made on this display.");
    }();
    return failure;
}

bool ViewHost::hardwareAccelerated() {
    if (!canDraw())
        return false;
    ProbeContext probe;
    if (!probe.current)
        return false;
    const QString renderer = QString::fromStdString(probe.renderer()).toLower();
    for (const char* software : {"llvmpipe", "softpipe", "swrast", "software"}) {
        if (renderer.contains(QLatin1String(software)))
            return false;
    }
    return true;
}

std::pair<int, int> ViewHost::screenSize() {
    const QScreen* screen = qobject_cast<QGuiApplication*>(QCoreApplication::instance())
                                ? QGuiApplication::primaryScreen()
                                : nullptr;
    if (!screen)
        return {kScreenWithout.width(), kScreenWithout.height()};
    return {screen->size().width(), screen->size().height()};
}

ViewWidget* ViewHost::widget() const {
    return widget_.data();
}

double ViewHost::framesPerSecond() const {
    return widget_ ? widget_->framesPerSecond() : 0.0;
}

void ViewHost::sceneChanged() {
    if (widget_)
        widget_->sceneChanged();
}

} // namespace vessa::core
