#include "core/difference_handler.h"

#include "fakes.h"

#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

class RecordingView : public DifferenceView {
public:
    void appendOutput(const QString& text, const QColor& color) override {
        output << text;
        colors << color;
    }
    void PrintOutput(const QString& text) override { printed << text; }
    void showUndoAvailable(bool available) override { undo << available; }
    void showWorldActive(bool active) override { active_ << active; }
    bool cameraWindowOnTop() const override { return onTop; }
    void setRenderFormAlwaysOnTop(bool value) override { onTopCalls << value; }
    void pumpEvents() override { ++pumps; }
    void showUserError(const ErrorFormContent& content) override { errors << content; }

    QStringList output, printed;
    QList<QColor> colors;
    QList<bool> undo, active_, onTopCalls;
    QList<ErrorFormContent> errors;
    bool onTop = false;
    int pumps = 0;
};

QVariant batch(std::initializer_list<QVariantList> records) {
    QVariantList list;
    for (const QVariantList& r : records)
        list.append(QVariant(r));
    return list;
}

struct Harness {
    AppState state;
    EngineLink engine;
    ScriptedInterpreter::Log log;
    RecordingErrorDisplay display;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, display, process};
    RecordingView view;
    DifferenceHandler handler{state, engine, reporter, view};

    Harness() {
        state.ExitOnFatal = false;
        engine.attach(std::make_unique<ScriptedInterpreter>(log));
    }
};

} // namespace

TEST(HandleDifferences, OutputAndErrorsAppendInTheirColoursWithoutLineEnds) {
    Harness h;
    h.handler.HandleDifferences(batch({{QStringLiteral("output"), QStringLiteral("hello")},
                                       {QStringLiteral("ERROR"), QStringLiteral("oops\n")}}));
    EXPECT_EQ(h.view.output, (QStringList{QStringLiteral("hello"), QStringLiteral("oops\n")}));
    EXPECT_EQ(h.view.colors, (QList<QColor>{QColor(0, 0, 0), QColor(255, 0, 0)}));
    EXPECT_FALSE(h.handler.gUpdateObjectTree2);
}

TEST(HandleDifferences, UndoAndTrafficLightFollowTheirFlags) {
    Harness h;
    h.handler.HandleDifferences(batch({{QStringLiteral("undoemptychange"), QVariant(), false},
                                       {QStringLiteral("ActiveChanged"), QVariant(), true}}));
    EXPECT_TRUE(h.handler.UndoAvailable);
    EXPECT_TRUE(h.handler.WorldActive);
    h.handler.HandleDifferences(batch({{QStringLiteral("undoemptychange"), QVariant(), true},
                                       {QStringLiteral("activechanged"), QVariant(), false}}));
    EXPECT_FALSE(h.handler.UndoAvailable);
    EXPECT_EQ(h.view.active_, (QList<bool>{true, false}));
}

TEST(HandleDifferences, UnknownTagPrintsOneLineAndTheBatchGoesOn) {
    Harness h;
    h.handler.HandleDifferences(batch({{QStringLiteral("somethingnew")},
                                       {QStringLiteral("hidenavigator")},
                                       {QStringLiteral("output"), QStringLiteral("after")}}));
    EXPECT_EQ(h.view.printed, QStringList{QStringLiteral(
                                  "MainForm:HandleDifferences got an unknown tag: somethingnew")});
    EXPECT_EQ(h.view.output, QStringList{QStringLiteral("after")});
}

TEST(HandleDifferences, AFailingRecordDropsTheRestAndClimbsWithItsReport) {
    Harness h;
    try {
        h.handler.HandleDifferences(batch({{QStringLiteral("output")}, // too short
                                           {QStringLiteral("output"), QStringLiteral("lost")}}));
        FAIL() << "expected the failure to climb";
    } catch (const RunTimeError& e) {
        EXPECT_EQ(e.number(), RunTimeError::SubscriptOutOfRange);
        EXPECT_TRUE(e.description().startsWith(QStringLiteral("VB: HandleDifferences -Error\n")));
    }
    EXPECT_TRUE(h.view.output.isEmpty());
    EXPECT_THROW(h.handler.HandleDifferences(QStringLiteral("not a list")), RunTimeError);
    // An empty poll changes nothing.
    h.handler.HandleDifferences(QVariantList());
    EXPECT_TRUE(h.view.printed.isEmpty());
}

TEST(HandleDifferences, ErrorInUserCodeShowsTheDialogWithTheMappedLine) {
    Harness h;
    h.state.ErrorLineOffset = 4;
    h.view.onTop = true;
    h.handler.HandleDifferences(
        batch({{QStringLiteral("popuperrordialog"),
                QStringLiteral("NameError: name 'Bunyy' is not defined"), QStringLiteral("2")}}));
    ASSERT_EQ(h.view.errors.size(), 1);
    EXPECT_EQ(h.view.errors[0].typeCaption,
              QStringLiteral("NameError: name 'Bunyy' is not defined on line 6"));
    EXPECT_EQ(h.view.errors[0].heightTwips, 1845);
    // The camera window steps down while the dialog is up, and the error sound plays.
    EXPECT_EQ(h.view.onTopCalls, (QList<bool>{false, true}));
    ASSERT_EQ(h.log.calls, QStringList{QStringLiteral("ExecuteCode")});
    EXPECT_EQ(h.log.arguments[0][0].toString(), QStringLiteral("PlaySystemSound ('Error')"));
    EXPECT_TRUE(h.display.shown.isEmpty());
}
