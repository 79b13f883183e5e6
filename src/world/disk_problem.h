#pragma once

#include <QString>

namespace vessa {

// What the disk refused, for the user: which file or folder, what kind of refusal and the
// system's own words. Empty when nothing went wrong.
struct DiskProblem {
    enum class Kind { None, Full, ReadOnly, NotAllowed, Gone, Other };

    Kind kind = Kind::None;
    QString path;
    QString reason;

    bool isEmpty() const { return kind == Kind::None; }
    // From the system's error number (errno) of a call on path.
    static DiskProblem fromErrorNumber(int errorNumber, const QString& path);
};

// Whether the file at path can be opened to be read; a file that is no regular file
// (a pipe, a device) is refused as one that can't be read.
DiskProblem checkReadable(const QString& path);

// What happened and what the user can do about it, for a save that did not happen.
QString saveAdvice(const DiskProblem& problem);
// The same for a world that could not be read.
QString readAdvice(const DiskProblem& problem);

} // namespace vessa
