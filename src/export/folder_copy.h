#pragma once

#include <QString>

#include <functional>

namespace vessa {

struct FolderCopy {
    enum Outcome { Copied, Cancelled, Failed };
    Outcome outcome = Failed;
    QString failure; // which file could not be copied, for the user
};

// Copies the files of the folder from into to (made when missing), with
// their sub-folders; links are left out. going(fraction done) is asked after
// each file; false stops the copy there.
FolderCopy copyFolderFiles(const QString& from, const QString& to,
                           const std::function<bool(double fraction)>& going = {});

} // namespace vessa
