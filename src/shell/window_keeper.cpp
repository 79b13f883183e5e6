#include "shell/window_keeper.h"

#include "base/run_time_error.h"
#include "gateway/engine_link.h"
#include "shell/main_form_area.h"
#include "shell/render_form.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QWidget>

namespace vessa {

namespace {

constexpr int kStatsIntervalMs = 1000;

} // namespace

WindowKeeper::WindowKeeper(RegKeys& keys, EngineLink& engine, Windows windows,
                           std::function<void(const QString&)> note)
    : keys_(keys), engine_(engine), windows_(windows), note_(std::move(note)) {
    StatsTimer.setObjectName(QStringLiteral("StatsTimer"));
    connect(&StatsTimer, &QTimer::timeout, this, &WindowKeeper::StatsTimer_Timer);
}

QSize WindowKeeper::screenTwips() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect pixels = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    const double perPixel = twipsPerPixel(&windows_.mainForm);
    return {qRound(pixels.right() * perPixel), qRound(pixels.bottom() * perPixel)};
}

void WindowKeeper::place(QWidget& window, const TwipsRect& rect) const {
    const double perPixel = twipsPerPixel(&window);
    window.setGeometry(qRound(rect.left / perPixel), qRound(rect.top / perPixel),
                       qRound(rect.width / perPixel), qRound(rect.height / perPixel));
}

TwipsRect WindowKeeper::placeOf(const QWidget& window) const {
    const double perPixel = twipsPerPixel(&window);
    const QRect pixels = window.geometry();
    return {qRound(pixels.x() * perPixel), qRound(pixels.y() * perPixel),
            qRound(pixels.width() * perPixel), qRound(pixels.height() * perPixel)};
}

const WindowSettings& WindowKeeper::RestoreSettings() {
    QStringList notes;
    settings_ = vessa::RestoreSettings(keys_, screenTwips(), notes);
    for (const QString& line : notes)
        note_(line);
    place(windows_.renderForm, settings_.renderForm);
    place(windows_.mainForm, settings_.mainForm);
    windows_.area.setShares(settings_.shares);
    const Preferences& preferences = settings_.preferences;
    if (preferences.gDisplayFPS) {
        StatsTimer.start(kStatsIntervalMs);
    } else {
        StatsTimer.stop();
        windows_.renderForm.FPSLabel()->clear();
    }
    windows_.renderForm.setCheck1Value(preferences.gCameraWindowOnTop);
    windows_.renderForm.AlwaysOnTop(preferences.gCameraWindowOnTop);
    QFont font(preferences.fontName, preferences.fontSize);
    font.setBold(preferences.fontBold);
    for (QWidget* view : windows_.textViews)
        view->setFont(font);
    restored_ = true;
    return settings_;
}

void WindowKeeper::StoreSettings(const QList<QPair<QString, QString>>& recentFiles) {
    settings_.recentFiles = recentFiles;
    const WindowsAtExit states{!windows_.renderForm.isMinimized() &&
                                   !windows_.renderForm.isMaximized(),
                               true, windows_.mainForm.windowState() == Qt::WindowNoState};
    if (states.renderFormNormal)
        settings_.renderForm = placeOf(windows_.renderForm);
    if (states.mainFormNormal)
        settings_.mainForm = placeOf(windows_.mainForm);
    if (helpForm_ && helpForm_->isVisible())
        keepHelpFormCorner();
    settings_.shares = windows_.area.shares();
    settings_.preferences.gCameraWindowOnTop = windows_.renderForm.Check1Value();
    QStringList notes;
    vessa::StoreSettings(keys_, settings_, states, notes);
    for (const QString& line : notes)
        note_(line);
}

void WindowKeeper::keepHelpForm(QWidget& helpForm) {
    helpForm_ = &helpForm;
    helpForm.installEventFilter(this);
}

// The corner with the window's frame, as move() takes it.
void WindowKeeper::keepHelpFormCorner() {
    const double perPixel = twipsPerPixel(helpForm_);
    settings_.helpFormLeft = qRound(helpForm_->x() * perPixel);
    settings_.helpFormTop = qRound(helpForm_->y() * perPixel);
}

bool WindowKeeper::eventFilter(QObject* watched, QEvent* event) {
    if (watched == helpForm_ && !helpForm_->isMinimized()) {
        if (event->type() == QEvent::Hide) {
            keepHelpFormCorner();
        } else if (event->type() == QEvent::Show) {
            // The remembered corner, moved in as far as the whole window needs to be seen.
            const double perPixel = twipsPerPixel(helpForm_);
            const QRect screen = helpForm_->screen()->availableGeometry();
            const QSize size = helpForm_->frameGeometry().size();
            const auto within = [](int at, int first, int room) {
                return std::max(first, std::min(at, first + room));
            };
            helpForm_->move(within(qRound(settings_.helpFormLeft / perPixel), screen.left(),
                                   screen.width() - size.width()),
                            within(qRound(settings_.helpFormTop / perPixel), screen.top(),
                                   screen.height() - size.height()));
        }
    }
    return QObject::eventFilter(watched, event);
}

void WindowKeeper::StatsTimer_Timer() {
    if (!settings_.preferences.gDisplayFPS || !engine_.isSet())
        return;
    try {
        const QString fps = engine_.call(QStringLiteral("GetFPS")).toString();
        windows_.renderForm.setWindowTitle(QStringLiteral("Vessa - Camera (") + fps.left(5) +
                                           QStringLiteral(" Frames/Second)"));
    } catch (const RunTimeError&) {
        // The frame rate is a courtesy: a failure to read it changes nothing.
    }
    StatsTimer.setInterval(kStatsIntervalMs);
}

} // namespace vessa
