#pragma once

#include <QStringList>

namespace vessa {

// The last five numbers typed into a value editor, newest first, offered again as rows
// of the number menus. One list serves every number of the program: distances, turns,
// seconds and scales alike.
class NumberHistory {
public:
    static constexpr int Size = 5;

    // A number typed again moves to the top without a second copy; a sixth distinct one
    // pushes out the oldest.
    void add(const QString& number);
    // Newest first; fewer than five until five were typed.
    const QStringList& entries() const { return entries_; }

private:
    QStringList entries_;
};

} // namespace vessa
