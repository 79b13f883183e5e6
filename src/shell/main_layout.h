#pragma once

#include "shell/window_settings.h"

#include <QHash>
#include <QRect>
#include <QSet>
#include <QSize>
#include <QString>
#include <QStringList>

#include <array>

namespace vessa {

// The four dividers of the main window, in the order of LayoutShares.
enum class Splitter { V, H1, H2, H3 };
constexpr int kSplitterCount = 4;

// Where the main window's controls stand, worked out in twips from the window's inner
// size, the dividers' shares and the tab shown, and handed back in pixels. No window is
// needed: the controls are known by their names, and whatever a control's contents make
// it want (the width of a button with a caption, the height of the mouse tools) comes in
// as a hint.
//
// The arrangement: the scene's column on the left (ObjectTree or ObjectTree2 over
// SoundTree, divided by SplitterH2), SplitterV, and on the right the output pane at the
// foot under SplitterH1 and above it the tabs, the page's row of picture buttons and the
// page: the camera view over the mouse tools, or the script with the block
// palette or the event list, the code box under TreeView1 (divided by SplitterH3) and
// the command line. A pane that does not show gives its room to its neighbour; an inner
// width under 9000 twips takes narrower margins and puts the opening scene's tools one
// above the other.
class MainLayout {
public:
    struct Input {
        QSize innerPixels;
        double twipsPerPixel = 15;
        LayoutShares shares;
        int tab = 0; // 0 opening scene, 1 animations, 2 events
        // Controls whose owners hide them, wherever the tab would show them.
        QSet<QString> hidden;
        // What a control's contents ask for, in twips, for those sized by them.
        QHash<QString, QSize> hintTwips;
    };

    // How a divider's bar turns into a share: the bar moves along `vertical` (up and
    // down) or across, over the `span` twips that its two neighbours share from `start`.
    struct Division {
        bool shown = false;
        bool vertical = false;
        int start = 0;
        int span = 0;
    };

    struct Result {
        QHash<QString, QRect> pixels; // the controls that show, each in its place
        std::array<Division, kSplitterCount> divisions;
        double twipsPerPixel = 15;
    };

    // Every control the layout places, by name.
    static const QStringList& controls();
    // Whether a control belongs to the page of `tab` (before its owner's say).
    static bool onTab(const QString& control, int tab);
    static const char* splitterName(Splitter splitter);

    static Result place(const Input& input);

    // The shares after the bar of `splitter` was dragged so that its near edge stands at
    // `barPixel` (in the window's inner pixels, along the bar's axis): the share of its
    // neighbours, clamped to the divider's bounds.
    static LayoutShares dragged(const Result& placed, Splitter splitter, int barPixel,
                                LayoutShares shares);
    // A divider's share as its first (upper or left) neighbour's share of their room.
    static double firstShare(const LayoutShares& shares, Splitter splitter);
    static LayoutShares withFirstShare(LayoutShares shares, Splitter splitter, double first);
    // The share made to keep to the divider's bounds.
    static LayoutShares clamped(LayoutShares shares);
};

} // namespace vessa
