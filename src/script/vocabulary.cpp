#include "script/vocabulary.h"

#include "base/run_time_error.h"

namespace vessa {

namespace {

struct Tables {
    std::array<QString, VocabularySize> names;
    std::array<ParameterKind, VocabularySize> kinds;
    std::array<CommandParameterLists, VocabularySize> commands;
};

void FillCommandNames(Tables& t) {
    const char* names[] = {"Nothing",
                           "Move",
                           "Turn",
                           "Roll",
                           "Resize",
                           "PointAt",
                           "Destroy",
                           "SetColor",
                           "Hide",
                           "Show",
                           "PlaySound",
                           "Wait",
                           "CastShadow",
                           "StopCastingShadow",
                           "Flatten",
                           "Nudge",
                           "Pan",
                           "StandUp",
                           "BecomeFirstClass",
                           "Place",
                           "AlignWith",
                           "BecomeChildOf"};
    int number = 0;
    for (const char* name : names)
        t.names[static_cast<size_t>(number++)] = QString::fromLatin1(name);
}

void FillParameterKinds(Tables& t) {
    auto kind = [&](int number, const char* name, int kindClass, QStringList values) {
        t.kinds[static_cast<size_t>(number)] = {QString::fromLatin1(name), kindClass,
                                                std::move(values)};
    };
    kind(1, "Object", ObjectClass, {});
    kind(2, "Action", KeywordClass,
         {"Move", "Turn", "Roll", "Resize", "Destroy", "PointAt", "SetColor", "Show", "Hide",
          "PlaySound", "Place", "AlignWith", "BecomeChildOf", "Wait"});
    kind(3, "more...", NoClass, {});
    kind(4, "Direction", KeywordClass,
         {"InAllDirections", "TopToBottom", "LeftToRight", "FrontToBack"});
    kind(5, "Direction", KeywordClass, {"Forward", "back", "left", "right", "up", "down"});
    kind(6, "Direction", KeywordClass, {"Left", "right", "up", "down"});
    kind(7, "Direction", KeywordClass, {"Left", "Right"});
    kind(8, "Distance", NumberClass, {"1", "1/4", "1/2", "3/4", "2", "3"});
    kind(9, "Amount", NumberClass, {"1/4", "1/8", "1/2", "3/4", "1", "2"});
    kind(10, "ScaleFactor", NumberClass, {"1/2", "1", "1.5"});
    kind(11, "AsSeenBy", ObjectClass, {"Scene"});
    kind(12, "Color", KeywordClass, {"Black", "White", "Red", "Blue", "Yellow"});
    kind(13, "TargetSurface", KeywordClass,
         {"OnTopOf", "OnBottomOf", "InFrontOf", "InBackOf", "Above", "Below", "Behind", "OnFloorOf",
          "OnCeilingOf", "ToLeftOf", "ToRightOf", "Beneath"});
    kind(14, "OtherObject", ObjectClass, {"Scene"});
    kind(15, "HowMuch", KeywordClass, {"ObjectAndParts", "ObjectOnly", "ObjectAndChildren"});
    kind(16, "LikeRubber", FlagClass, {"LikeRubber"});
    kind(17, "Duration", NumberClass, {"1/4", "1/2", "1", "2"});
    kind(18, "Speed", NumberClass, {"1", "1/4", "1/2", "3/4", "2", "3"});
    kind(19, "Style", KeywordClass, {"Gently", "abruptly", "beginAbruptly", "endAbruptly"});
    // A sound is an essential value and never written with a keyword: it has no name.
    kind(20, "", SoundClass, {"\"c:\\pickme.wav\""});
    kind(21, "Volume", NumberClass, {"1", "0", "1/4", "1/2", "3/4"});
    kind(22, "Light", FlagClass, {"Light"});
    kind(23, "Value", KeywordClass, {"Yes", "No", "Toggle"});
}

void FillCommandParameters(Tables& t) {
    auto command = [&](int number, KindList essential, KindList optional, KindList reserved = {}) {
        t.commands[static_cast<size_t>(number)] = {essential, optional, reserved};
    };
    command(1, {5, 8}, {11, 17, 19}, {1, 2});
    command(2, {6, 9}, {11, 17, 19}, {1, 2});
    command(3, {7, 9}, {11, 17, 19}, {1, 2});
    command(4, {4, 10}, {16, 17, 19});
    command(5, {11}, {17, 19}, {0, 1});
    command(6, {}, {15, 17, 19});
    command(7, {12}, {15, 17, 19});
    command(8, {}, {23});
    command(9, {}, {23});
    command(10, {20}, {21});
    command(11, {17}, {});
    command(17, {}, {11, 17, 19}, {1, 2});
    command(19, {13, 11}, {8, 17, 19});
    command(20, {14}, {17, 19});
    command(21, {14}, {});
}

const Tables& Vocabulary() {
    static const Tables tables = [] {
        Tables t;
        FillParameterKinds(t);
        FillCommandNames(t);
        FillCommandParameters(t);
        return t;
    }();
    return tables;
}

size_t Checked(int number, const char* table) {
    if (number < 0 || number >= VocabularySize)
        throw RunTimeError::Bounds(QString::fromLatin1(table));
    return static_cast<size_t>(number);
}

} // namespace

const QString& ParameterKind::DefaultValue() const {
    if (Values.isEmpty())
        throw RunTimeError::Bounds("ParameterKinds");
    return Values.front();
}

KindList::KindList(std::initializer_list<int> kinds) : KindList() {
    size_t slot = 0;
    for (int kind : kinds)
        items_[slot++] = kind;
}

int KindList::operator[](int slot) const {
    return items_[Checked(slot, "CommandParameters")];
}

int KindList::Count() const {
    int count = 0;
    while (count < VocabularySize && items_[static_cast<size_t>(count)] != NoEntry)
        ++count;
    return count;
}

int KindList::SlotOf(int kind) const {
    for (int slot = 0; slot < Count(); ++slot)
        if (items_[static_cast<size_t>(slot)] == kind)
            return slot;
    return -1;
}

const QString& CommandNames(int command) {
    return Vocabulary().names[Checked(command, "CommandNames")];
}

const ParameterKind& ParameterKinds(int kind) {
    return Vocabulary().kinds[Checked(kind, "ParameterKinds")];
}

const CommandParameterLists& CommandParameters(int command) {
    return Vocabulary().commands[Checked(command, "CommandParameters")];
}

int CommandIndex(const QString& name) {
    const auto& names = Vocabulary().names;
    int command = 0;
    while (command < VocabularySize &&
           names[static_cast<size_t>(command)].compare(name, Qt::CaseInsensitive) != 0)
        ++command;
    return command == VocabularySize - 1 ? -1 : command;
}

} // namespace vessa
