#pragma once

#include "export/tool_sessions.h"

#include <QProcess>

namespace vessa {

// A tool program run as a QProcess. Its end is heard through finished; a tool still
// running when this goes is left to run, so that its user's work is not lost.
class QtToolProcess : public ToolProcess {
public:
    // Forwarded: the tool's output goes where the program's goes. Piped: it is kept for
    // whoever holds process() to read, and what is written to it reaches the tool.
    enum class Channels { Forwarded, Piped };
    explicit QtToolProcess(Channels channels = Channels::Forwarded);
    ~QtToolProcess() override;

    bool start(const QString& program, const QStringList& arguments,
               const QString& workingFolder) override;
    QProcess& process() { return *process_; }

private:
    QProcess* process_; // Owned, unless it outlives this.
};

} // namespace vessa
