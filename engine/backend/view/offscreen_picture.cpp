#include "view/offscreen_picture.h"

#include "view/world_view.h"

#include <QOpenGLContext>
#include <QSurface>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <string_view>

namespace vessa::core {

namespace {

constexpr std::string_view kSurfaceless = "EGL_MESA_platform_surfaceless";

// The display of EGL's surfaceless platform, started once: it lives as long
// as the program.
struct OffscreenDisplay {
    EGLDisplay display = EGL_NO_DISPLAY;
    std::string failure;
};

OffscreenDisplay startDisplay() {
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!extensions || std::string_view(extensions).find(kSurfaceless) == std::string_view::npos)
        return {EGL_NO_DISPLAY, "this system's OpenGL can't draw without a window"};
    const auto platformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        eglGetProcAddress("eglGetPlatformDisplayEXT"));
    const EGLDisplay display = platformDisplay ? platformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                                 EGL_DEFAULT_DISPLAY, nullptr)
                                               : EGL_NO_DISPLAY;
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
        return {EGL_NO_DISPLAY, "OpenGL without a window could not be started"};
    return {display, ""};
}

const OffscreenDisplay& offscreenDisplay() {
    static const OffscreenDisplay display = startDisplay();
    return display;
}

// An OpenGL context of EGL's without any surface, current on this thread
// while it lives. A Qt context that was current is made current again after.
class OffscreenContext {
public:
    explicit OffscreenContext(EGLDisplay display) : display_(display) {
        if ((qtContext_ = QOpenGLContext::currentContext())) {
            qtSurface_ = qtContext_->surface();
            qtContext_->doneCurrent();
        }
        // Mesa offers no configurations without surfaces; a context needs none.
        if (eglBindAPI(EGL_OPENGL_API))
            context_ = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
        current_ = context_ != EGL_NO_CONTEXT &&
                   eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context_);
    }
    ~OffscreenContext() {
        if (current_)
            eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (context_ != EGL_NO_CONTEXT)
            eglDestroyContext(display_, context_);
        if (qtContext_ && qtSurface_)
            qtContext_->makeCurrent(qtSurface_);
    }
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    bool current() const { return current_; }

private:
    EGLDisplay display_;
    EGLContext context_ = EGL_NO_CONTEXT;
    bool current_ = false;
    QOpenGLContext* qtContext_ = nullptr;
    QSurface* qtSurface_ = nullptr;
};

template <typename Function> Function glFunction(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

// A framebuffer object with color, depth and stencil (the high-quality
// path marks the world in the stencil), in the current context.
class Framebuffer {
public:
    Framebuffer(int width, int height)
        : genFramebuffers_(glFunction<PFNGLGENFRAMEBUFFERSPROC>("glGenFramebuffers")),
          bindFramebuffer_(glFunction<PFNGLBINDFRAMEBUFFERPROC>("glBindFramebuffer")),
          deleteFramebuffers_(glFunction<PFNGLDELETEFRAMEBUFFERSPROC>("glDeleteFramebuffers")),
          genRenderbuffers_(glFunction<PFNGLGENRENDERBUFFERSPROC>("glGenRenderbuffers")),
          bindRenderbuffer_(glFunction<PFNGLBINDRENDERBUFFERPROC>("glBindRenderbuffer")),
          deleteRenderbuffers_(glFunction<PFNGLDELETERENDERBUFFERSPROC>("glDeleteRenderbuffers")) {
        const auto storage = glFunction<PFNGLRENDERBUFFERSTORAGEPROC>("glRenderbufferStorage");
        const auto attach =
            glFunction<PFNGLFRAMEBUFFERRENDERBUFFERPROC>("glFramebufferRenderbuffer");
        const auto status = glFunction<PFNGLCHECKFRAMEBUFFERSTATUSPROC>("glCheckFramebufferStatus");
        if (!genFramebuffers_ || !bindFramebuffer_ || !deleteFramebuffers_ || !genRenderbuffers_ ||
            !bindRenderbuffer_ || !deleteRenderbuffers_ || !storage || !attach || !status)
            return;
        genFramebuffers_(1, &framebuffer_);
        bindFramebuffer_(GL_FRAMEBUFFER, framebuffer_);
        genRenderbuffers_(2, renderbuffers_);
        const GLenum formats[] = {GL_RGBA8, GL_DEPTH24_STENCIL8};
        const GLenum attachments[] = {GL_COLOR_ATTACHMENT0, GL_DEPTH_STENCIL_ATTACHMENT};
        for (int i = 0; i < 2; ++i) {
            bindRenderbuffer_(GL_RENDERBUFFER, renderbuffers_[i]);
            storage(GL_RENDERBUFFER, formats[i], width, height);
            attach(GL_FRAMEBUFFER, attachments[i], GL_RENDERBUFFER, renderbuffers_[i]);
        }
        complete_ = status(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    }
    ~Framebuffer() {
        if (!framebuffer_)
            return;
        bindFramebuffer_(GL_FRAMEBUFFER, 0);
        deleteRenderbuffers_(2, renderbuffers_);
        deleteFramebuffers_(1, &framebuffer_);
    }
    Framebuffer(const Framebuffer&) = delete;
    Framebuffer& operator=(const Framebuffer&) = delete;

    bool complete() const { return complete_; }
    GLuint id() const { return framebuffer_; }
    void bind() const { bindFramebuffer_(GL_FRAMEBUFFER, framebuffer_); }

private:
    PFNGLGENFRAMEBUFFERSPROC genFramebuffers_;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer_;
    PFNGLDELETEFRAMEBUFFERSPROC deleteFramebuffers_;
    PFNGLGENRENDERBUFFERSPROC genRenderbuffers_;
    PFNGLBINDRENDERBUFFERPROC bindRenderbuffer_;
    PFNGLDELETERENDERBUFFERSPROC deleteRenderbuffers_;
    GLuint framebuffer_ = 0;
    GLuint renderbuffers_[2] = {0, 0};
    bool complete_ = false;
};

} // namespace

OffscreenPicture drawOffscreen(SceneGraph& scene, int width, int height, bool highQuality) {
    const OffscreenDisplay& display = offscreenDisplay();
    if (display.display == EGL_NO_DISPLAY)
        return {QImage(), display.failure};
    const OffscreenContext context(display.display);
    if (!context.current())
        return {QImage(), "no OpenGL context could be made to draw without a window"};
    const Framebuffer framebuffer(width, height);
    if (!framebuffer.complete())
        return {QImage(), "OpenGL could not make a picture to draw into"};

    QImage image(width, height, QImage::Format_RGBA8888);
    {
        WorldView view(scene);
        view.setHighQuality(highQuality);
        view.setSize(width, height);
        view.draw(framebuffer.id());
        framebuffer.bind();
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
        view.releaseGL();
    }
    // OpenGL counts rows from the bottom.
    return {image.mirrored(false, true).convertToFormat(QImage::Format_RGB32), ""};
}

} // namespace vessa::core
