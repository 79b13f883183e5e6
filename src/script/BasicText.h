#pragma once

#include <QString>

// Text work in the terms the script's rules are written in: positions count from 1,
// comparisons ignore case, and a malformed request fails like the runtime does, with
// RuntimeError::InvalidArgument.
namespace vessa::text {

// Position of the first find at or after start, 0 when there is none. start < 1 fails.
int InStr(int start, const QString& text, const QString& find);
inline int InStr(const QString& text, const QString& find) {
    return InStr(1, text, find);
}
// Position of the last find, 0 when there is none.
int InStrRev(const QString& text, const QString& find);
// length characters from start; start < 1 or length < 0 fails, past the end gives less.
QString Mid(const QString& text, int start, int length);
QString Mid(const QString& text, int start);
// The first count characters; count < 0 fails.
QString Left(const QString& text, int count);
// File-style pattern: "*" any run of characters, "?" one character.
bool Like(const QString& text, const QString& pattern);
// Every occurrence of find replaced by with.
QString Replace(const QString& text, const QString& find, const QString& with);
bool Same(const QString& a, const QString& b);
// The text before the first separator; the whole text if there is none.
QString Before(const QString& text, const QString& separator);

} // namespace vessa::text
