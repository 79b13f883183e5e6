#include "text/command_history.h"

namespace vessa {

bool CommandHistory::remember(const QString& line) {
    endWalk();
    if (!lines_.isEmpty() && lines_.first().compare(line, Qt::CaseInsensitive) == 0)
        return false;
    lines_.prepend(line);
    return true;
}

std::optional<QString> CommandHistory::older(const QString& typed) {
    if (walk_ + 1 >= lines_.size())
        return std::nullopt;
    if (walk_ < 0)
        typed_ = typed;
    return lines_[++walk_];
}

std::optional<QString> CommandHistory::newer() {
    if (walk_ < 0)
        return std::nullopt;
    --walk_;
    return walk_ < 0 ? typed_ : lines_[walk_];
}

} // namespace vessa
