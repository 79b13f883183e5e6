#pragma once

// Runs the built program as its own process, driven by the test driver plugin,
// headless unless it is to be on the display, and watches for the driver's reports:
// the main window up, the camera view's first frame drawn.

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

namespace vessa::bench {

class ProgramProcess {
public:
    enum class Screen { Offscreen, Display };

    explicit ProgramProcess(const QString& script, Screen screen = Screen::Offscreen) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), screen == Screen::Offscreen
                                                          ? QStringLiteral("offscreen")
                                                          : QStringLiteral("xcb"));
        env.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("vessatestdriver"));
        env.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VESSA_TEST_PLUGIN_DIR));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), config_.path());
        env.insert(QStringLiteral("VESSA47_DRIVER_SCRIPT"), script);
        process_.setProcessEnvironment(env);
    }

    ~ProgramProcess() {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished(5000);
        }
    }

    // Starts the program; answers the seconds until its main window was shown,
    // or a negative number when it never was.
    double startAndWaitForMainWindow() { return startAndWaitFor("driver: main window shown"); }

    // Starts the program; answers the seconds until the driver reported `marker`, or a
    // negative number when it never did.
    double startAndWaitFor(const char* marker) {
        QElapsedTimer clock;
        clock.start();
        process_.start(QStringLiteral(VESSA_PROGRAM), {});
        QByteArray seen;
        while (clock.elapsed() < 30000 && process_.state() != QProcess::NotRunning) {
            process_.waitForReadyRead(5);
            seen += process_.readAllStandardError();
            if (seen.contains(marker))
                return static_cast<double>(clock.nsecsElapsed()) / 1e9;
        }
        return -1;
    }

    bool waitForExit(int ms) { return process_.waitForFinished(ms); }
    qint64 pid() const { return process_.processId(); }

private:
    QTemporaryDir config_;
    QProcess process_;
};

} // namespace vessa::bench
