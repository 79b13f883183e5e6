#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace vessa {

// The lines run on the command line, newest first, and the walk through them that Up
// and Down take. A line run goes to the front unless it is the newest already (case
// ignored): a line further down comes again at the front. The walk starts from what is
// being typed, which it gives back when it comes down past the newest line.
class CommandHistory {
public:
    const QStringList& lines() const { return lines_; }
    // A line that ran, trimmed. Answers whether it went to the front.
    bool remember(const QString& line);
    // The next older line, or none at the oldest; typed is what the box holds when the
    // walk begins.
    std::optional<QString> older(const QString& typed);
    // The next newer line, then what was typed; none when no walk is under way.
    std::optional<QString> newer();
    // Typing ends a walk: the next Up starts from the newest line again.
    void endWalk() { walk_ = -1; }

private:
    QStringList lines_;
    int walk_ = -1; // the line shown, -1 for what was typed
    QString typed_;
};

} // namespace vessa
