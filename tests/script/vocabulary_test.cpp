#include "base/run_time_error.h"
#include "script/vocabulary.h"

#include <gtest/gtest.h>

using namespace vessa;

TEST(Vocabulary, CommandIndexIgnoresCaseAndKeepsItsTwoOddities) {
    EXPECT_EQ(CommandIndex("move"), 1);
    EXPECT_EQ(CommandIndex("MOVE"), 1);
    EXPECT_EQ(CommandIndex("BecomeChildOf"), 21);
    EXPECT_EQ(CommandIndex("Nothing"), 0);
    // An unknown name yields 33, and the caller's next table read fails on it.
    EXPECT_EQ(CommandIndex("Fly"), 33);
    try {
        CommandParameters(CommandIndex("Fly"));
        FAIL() << "command 33 was read";
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.number(), RunTimeError::SubscriptOutOfRange);
    }
    // An empty name finds the first empty slot.
    EXPECT_EQ(CommandIndex(""), 22);
}

TEST(Vocabulary, EveryTableIsCheckedAgainstItsBounds) {
    EXPECT_THROW(CommandNames(-1), RunTimeError);
    EXPECT_THROW(ParameterKinds(33), RunTimeError);
    EXPECT_THROW(CommandParameters(1).Optional[33], RunTimeError);
    EXPECT_EQ(CommandNames(32), "");
    EXPECT_EQ(CommandParameters(32).Essential.Count(), 0);
}

TEST(Vocabulary, ListsEndAtTheirFirstEmptyEntry) {
    const CommandParameterLists& wait = CommandParameters(WaitCommand);
    EXPECT_EQ(wait.Essential.Count(), 1);
    EXPECT_EQ(wait.Essential[0], 17);
    EXPECT_EQ(wait.Optional.Count(), 0);
    EXPECT_EQ(wait.Optional[0], NoEntry);
    EXPECT_EQ(CommandParameters(19).Optional.SlotOf(17), 1);
    EXPECT_EQ(CommandParameters(19).Optional.SlotOf(11), -1);
    EXPECT_EQ(CommandParameters(17).Reserved.Count(), 2);
}

TEST(Vocabulary, TheFirstValueOfAKindIsItsDefault) {
    EXPECT_EQ(ParameterKinds(8).Name, "Distance");
    EXPECT_EQ(ParameterKinds(8).DefaultValue(), "1");
    EXPECT_EQ(ParameterKinds(9).DefaultValue(), "1/4");
    EXPECT_EQ(ParameterKinds(20).Name, "");
    EXPECT_EQ(ParameterKinds(20).DefaultValue(), "\"c:\\pickme.wav\"");
    EXPECT_EQ(ParameterKinds(MarkerKind).Name, "more...");
    EXPECT_EQ(ParameterKinds(MarkerKind).Class, NoClass);
    EXPECT_EQ(ParameterKinds(11).Class, ObjectClass);
}
