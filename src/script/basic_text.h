#pragma once

#include <QString>
#include <QStringView>

// Text work in the terms the script's rules are written in: positions count from 1,
// comparisons ignore case, and a malformed request fails like the runtime does, with
// RunTimeError::InvalidArgument.
namespace vessa::text {

// Position of the first find at or after start, 0 when there is none. start < 1 fails.
int InStr(int start, QStringView text, QStringView find);
inline int InStr(QStringView text, QStringView find) {
    return InStr(1, text, find);
}
// length characters from start; start < 1 or length < 0 fails, past the end gives less.
QString Mid(const QString& text, int start, int length);
QString Mid(const QString& text, int start);
// The first count characters; count < 0 fails.
QString Left(const QString& text, int count);
// File-style pattern: "*" any run of characters, "?" one character.
bool Like(QStringView text, QStringView pattern);
// Every occurrence of find replaced by with.
QString Replace(const QString& text, QStringView find, QStringView with);
// The same for names: an occurrence counts only where it does not run on into a longer
// name, a name being a maximal run of Python identifier characters. With "Bunny.",
// "BigBunny.Move" stays; with "=Bunny", "=Bunny2" stays; "Bunny" alone changes neither.
QString ReplaceName(const QString& text, QStringView find, QStringView with);
bool Same(QStringView a, QStringView b);
// The text before the first separator; the whole text if there is none.
QString Before(const QString& text, QStringView separator);

} // namespace vessa::text
