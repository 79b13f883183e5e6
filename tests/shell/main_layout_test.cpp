// The main window's layout worked out without a window: every control inside, none over
// another, the dividers' shares and bounds kept, at three window sizes on screens of 96
// and 192 dots an inch.
#include "shell/main_layout.h"

#include <gtest/gtest.h>

using namespace vessa;

namespace {

// What the window's controls ask for, in twips, as they do at 96 dots an inch; a few
// of them (the code box and its tools, the command line) come from panels made elsewhere
// and are placed by name all the same.
QHash<QString, QSize> hints() {
    return {{QStringLiteral("SwitchTab"), {4200, 480}},
            {QStringLiteral("PerformScriptButton"), {1600, 480}},
            {QStringLiteral("TrafficLightImage"), {1300, 480}},
            {QStringLiteral("MouseControlsFrame"), {5200, 900}},
            {QStringLiteral("OpeningSceneOptions"), {4100, 700}},
            {QStringLiteral("FontNames"), {2400, 360}},
            {QStringLiteral("FontSizes"), {900, 360}},
            {QStringLiteral("LineLabel"), {1200, 300}}};
}

MainLayout::Input input(QSize pixels, double perPixel, int tab, bool codeBox = true) {
    MainLayout::Input in;
    in.innerPixels = pixels;
    in.twipsPerPixel = perPixel;
    in.tab = tab;
    in.shares = {0.25, 0.15, 0.4, 0.3};
    in.hintTwips = hints();
    // The command line shows one face at a time; the world's Python shows when asked for.
    in.hidden = {QStringLiteral("CommandLineBox"), QStringLiteral("ScriptText")};
    if (!codeBox)
        in.hidden << QStringLiteral("ArbitraryCodeBox");
    return in;
}

struct Case {
    QSize pixels;
    double perPixel;
};

const Case kCases[] = {{{800, 600}, 15},  {{1280, 800}, 15},  {{2560, 1440}, 15},
                       {{800, 600}, 7.5}, {{1280, 800}, 7.5}, {{2560, 1440}, 7.5}};

std::string describe(const Case& c, int tab) {
    return std::to_string(c.pixels.width()) + "x" + std::to_string(c.pixels.height()) + " at " +
           std::to_string(qRound(1440 / c.perPixel)) + " dpi, tab " + std::to_string(tab);
}

double share(int first, int second) {
    return double(first) / (first + second);
}

} // namespace

TEST(MainLayout, EveryControlOfTheTabIsInsideTheWindowAndNoneOverlapsAnother) {
    for (const Case& c : kCases)
        for (int tab = 0; tab < 3; ++tab) {
            SCOPED_TRACE(describe(c, tab));
            const MainLayout::Input in = input(c.pixels, c.perPixel, tab);
            const auto placed = MainLayout::place(in).pixels;
            // In a window of under 9000 x 7200 twips the code box's tools may give way to it.
            const bool narrow =
                c.pixels.width() * c.perPixel < 9000 || c.pixels.height() * c.perPixel < 7200;
            const QStringList mayGiveWay = {
                QStringLiteral("FontNamesLabel"),  QStringLiteral("FontNames"),
                QStringLiteral("FontSizesLabel"),  QStringLiteral("FontSizes"),
                QStringLiteral("FontEffectLabel"), QStringLiteral("FontEffect"),
                QStringLiteral("LineLabel")};
            for (const QString& control : MainLayout::controls()) {
                const bool wanted = MainLayout::onTab(control, tab) && !in.hidden.contains(control);
                if (!(narrow && mayGiveWay.contains(control))) {
                    EXPECT_EQ(placed.contains(control), wanted) << control.toStdString();
                }
            }
            const QRect window(QPoint(0, 0), c.pixels);
            for (auto a = placed.cbegin(); a != placed.cend(); ++a) {
                EXPECT_TRUE(window.contains(a.value())) << a.key().toStdString();
                EXPECT_FALSE(a.value().isEmpty()) << a.key().toStdString();
                for (auto b = std::next(a); b != placed.cend(); ++b)
                    EXPECT_FALSE(a.value().intersects(b.value()))
                        << a.key().toStdString() << " over " << b.key().toStdString();
            }
            const QRect view = placed.value(tab == 0 ? QStringLiteral("OpeningSceneFrame")
                                                     : QStringLiteral("TreeView1"));
            if (!narrow) {
                EXPECT_GE(view.height(), c.pixels.height() / 8) << "the page's main pane has room";
            }
        }
}

TEST(MainLayout, EachDividerKeepsItsShareOfTheRoomBetweenItsNeighbours) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(describe(c, 1));
        const MainLayout::Input in = input(c.pixels, c.perPixel, 1);
        const auto placed = MainLayout::place(in).pixels;
        const auto at = [&](const char* name) {
            return placed.value(QString::fromLatin1(name));
        };
        // Within a pixel and a half of rounding of the room the two share.
        const auto expectShare = [](int first, int second, double wanted, const char* divider) {
            EXPECT_NEAR(share(first, second), wanted, 1.5 / (first + second)) << divider;
        };
        expectShare(at("ObjectTree").width(), at("OutputText").right() - at("SplitterV").right(),
                    in.shares.objectTree, "SplitterV");
        expectShare(at("OutputText").height(), at("SplitterH1").top() - at("SwitchTab").top(),
                    in.shares.outputText, "SplitterH1");
        expectShare(at("SoundTree").height(), at("ObjectTree").height(), in.shares.soundTree,
                    "SplitterH2");
        expectShare(at("ArbitraryCodeBox").bottom() - at("SplitterH3").bottom(),
                    at("TreeView1").height(), in.shares.codeBox, "SplitterH3");
    }
}

TEST(MainLayout, SharesOutsideTheirBoundsAndDragsBeyondThemStopAtTheBounds) {
    MainLayout::Input in = input({1280, 800}, 15, 1);
    in.shares = {0.0, 0.9, 1.0, std::nan("")};
    EXPECT_EQ(MainLayout::clamped(in.shares), (LayoutShares{0.1, 0.5, 0.999, 0.1}));
    const MainLayout::Result placed = MainLayout::place(in);
    // A drag that would shrink the code box to nothing stops at 0.1, one that would
    // leave the script nothing at 0.9.
    EXPECT_DOUBLE_EQ(MainLayout::dragged(placed, Splitter::H3, 10000, in.shares).codeBox, 0.1);
    EXPECT_DOUBLE_EQ(MainLayout::dragged(placed, Splitter::H3, 0, in.shares).codeBox, 0.9);
    EXPECT_DOUBLE_EQ(MainLayout::dragged(placed, Splitter::H1, 0, in.shares).outputText, 0.5);
    EXPECT_DOUBLE_EQ(MainLayout::dragged(placed, Splitter::V, 5000, in.shares).objectTree, 0.6);
    // A drag to where the bar is changes nothing.
    const MainLayout::Result middle = MainLayout::place(input({1280, 800}, 15, 1));
    const int bar = middle.pixels.value(QStringLiteral("SplitterH2")).top();
    EXPECT_NEAR(MainLayout::dragged(middle, Splitter::H2, bar, {0.25, 0.15, 0.4, 0.3}).soundTree,
                0.4, 0.005);
}

TEST(MainLayout, AHiddenCodeBoxGivesItsRoomToTheScriptAndItsDividerGoes) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(describe(c, 2));
        const auto with = MainLayout::place(input(c.pixels, c.perPixel, 2, true)).pixels;
        const auto without = MainLayout::place(input(c.pixels, c.perPixel, 2, false)).pixels;
        const QRect script = without.value(QStringLiteral("TreeView1"));
        EXPECT_EQ(script.top(), with.value(QStringLiteral("TreeView1")).top());
        EXPECT_EQ(script.bottom(), with.value(QStringLiteral("ArbitraryCodeBox")).bottom());
        for (const char* gone : {"ArbitraryCodeBox", "SplitterH3", "FontNames", "LineLabel"})
            EXPECT_FALSE(without.contains(QString::fromLatin1(gone))) << gone;
    }
}

TEST(MainLayout, UnderNineThousandTwipsTheOpeningScenesToolsStandOneAboveTheOther) {
    const auto wide = MainLayout::place(input({1280, 800}, 15, 0)).pixels;
    const auto narrow = MainLayout::place(input({800, 600}, 15, 0)).pixels;
    const QString tools = QStringLiteral("MouseControlsFrame");
    const QString options = QStringLiteral("OpeningSceneOptions");
    EXPECT_EQ(wide.value(options).top(), wide.value(tools).top());
    EXPECT_GT(wide.value(options).left(), wide.value(tools).right());
    EXPECT_GT(narrow.value(options).top(), narrow.value(tools).bottom());
    // Margins in twips: twice the pixels on a screen of twice the density.
    const auto dense = MainLayout::place(input({2560, 1600}, 7.5, 0)).pixels;
    EXPECT_EQ(dense.value(QStringLiteral("ObjectTree")).topLeft(),
              wide.value(QStringLiteral("ObjectTree")).topLeft() * 2);
}
