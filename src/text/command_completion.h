#pragma once

#include <QString>
#include <QStringList>

namespace vessa {

// What Tab makes of a command line: the word before the caret completed as far as all
// its choices agree, from the words the script's menus offer at that place: an
// object's name at the start, after "Bunny." one of Bunny's parts or a command, inside
// "Bunny.Move(" the values the command takes in that place, or the names of its
// optional values, and after "Duration=" the values of that kind. Choices are the
// words still possible, when more than one is.
struct CommandCompletion {
    QString Text;
    int Caret = 0;
    QStringList Choices;
};

// Where the word that ends at caret begins: the word a completion replaces.
int completionWordStart(const QString& line, int caret);

// objectNames are the scene's objects by their full names ("Bunny", "Bunny.Head").
CommandCompletion completeCommandLine(const QString& line, int caret,
                                      const QStringList& objectNames);

} // namespace vessa
