#pragma once

#include <QString>

#include <array>

namespace vessa {

class ListRow;

// The copy of an event row that Paste makes rows from: its When, Happens To and Do
// Animation, as elements 1, 2 and 3; element 0 stays empty. A new world empties it.
class RowClipboard {
public:
    void Copy(const ListRow& row);
    void Clear() { values_.fill(QString()); }
    // Column 1, 2 or 3 of the row copied; empty while none was.
    const QString& Value(int column) const { return values_.at(static_cast<size_t>(column)); }

private:
    std::array<QString, 4> values_;
};

} // namespace vessa
