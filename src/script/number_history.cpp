#include "script/number_history.h"

namespace vessa {

void NumberHistory::add(const QString& number) {
    entries_.removeOne(number);
    entries_.prepend(number);
    if (entries_.size() > Size)
        entries_.removeLast();
}

} // namespace vessa
