#include "export/tool_process.h"

namespace vessa {

QtToolProcess::QtToolProcess(Channels channels) : process_(new QProcess) {
    process_->setProcessChannelMode(channels == Channels::Forwarded ? QProcess::ForwardedChannels
                                                                    : QProcess::SeparateChannels);
    QObject::connect(process_, &QProcess::finished, process_,
                     [this](int exitCode, QProcess::ExitStatus status) {
                         if (finished)
                             finished(status == QProcess::NormalExit ? exitCode : -1);
                     });
}

QtToolProcess::~QtToolProcess() {
    QObject::disconnect(process_, nullptr, nullptr, nullptr);
    if (process_->state() == QProcess::NotRunning) {
        delete process_;
        return;
    }
    // Deleting a QProcess ends its program; the tool and its user's work stay, and the
    // process object goes with the program.
}

bool QtToolProcess::start(const QString& program, const QStringList& arguments,
                          const QString& workingFolder) {
    process_->setWorkingDirectory(workingFolder);
    process_->start(program, arguments);
    return process_->waitForStarted();
}

} // namespace vessa
