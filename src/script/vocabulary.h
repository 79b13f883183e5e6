#pragma once

#include <QString>
#include <QStringList>

#include <array>

// The closed vocabulary of script lines: the commands a line can name and the kinds of
// value each of them takes. The tables are built once and never change; every access
// by number is checked and a number outside 0 to 32 fails as an error of the caller
// (RunTimeError::SubscriptOutOfRange).
namespace vessa {

constexpr int VocabularySize = 33; // entries 0 to 32 in every table
constexpr int NoEntry = -1;

// Classes of parameter kind: how a click on such a value is served.
enum KindClass : int {
    NoClass = -1,
    NumberClass = 0,
    KeywordClass = 1,
    ObjectClass = 3,
    SoundClass = 4,
    FlagClass = 6,
};

// Command numbers that rules name.
constexpr int MoveCommand = 1;
constexpr int WaitCommand = 11; // the one command whose line has no "more..." marker

// Parameter kinds that rules name.
constexpr int ObjectKind = 1;
constexpr int MarkerKind = 3; // "more..."

// One parameter kind: item 0 of its table entry is Name, item 1 Class, items 2 and on
// the Values, of which the first is the default of a new line.
struct ParameterKind {
    QString Name;
    int Class = NoClass;
    QStringList Values;

    const QString& DefaultValue() const;
};

// Kinds written as a bare value, without "Name=", when optional: HowMuch, LikeRubber and
// Value. Each stands first in the Optional list of the commands that take it.
inline bool Keywordless(int kind) {
    return kind == 15 || kind == 16 || kind == 23;
}

// 33 kind numbers, -1 where unused; a list ends at its first -1.
class KindList {
public:
    KindList() { items_.fill(NoEntry); }
    KindList(std::initializer_list<int> kinds);

    int operator[](int slot) const;
    int Count() const;
    // The first slot holding kind, -1 if none before the end of the list.
    int SlotOf(int kind) const;

private:
    std::array<int, VocabularySize> items_;
};

struct CommandParameterLists {
    KindList Essential; // in the order the values stand in a line, without keywords
    KindList Optional;  // in canonical order
    KindList Reserved;  // kept with the table, read by nothing
};

const QString& CommandNames(int command);
const ParameterKind& ParameterKinds(int kind);
const CommandParameterLists& CommandParameters(int command);

// The number of a command by name, case ignored. A name that matches nothing gives 33,
// so that the caller's next table access fails; a match on the last slot gives -1.
int CommandIndex(const QString& name);

} // namespace vessa
