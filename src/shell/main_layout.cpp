#include "shell/main_layout.h"

#include <algorithm>
#include <cmath>

namespace vessa {

namespace {

// Twips, at a window of 9000 twips or wider; the narrow arrangement halves the margins.
constexpr int kNarrowBelow = 9000;
constexpr int kOuterWide = 180;
constexpr int kOuterNarrow = 120;
constexpr int kGapWide = 60;
constexpr int kGapNarrow = 30;
constexpr int kButtonGapWide = 45;
constexpr int kButtonGapNarrow = 15;
constexpr int kPictureRow = 480;  // a row of picture buttons, the tabs, the command line
constexpr int kToolsRow = 960;    // pictures with captions under them: the mouse tools
constexpr int kBarThickness = 90; // a divider's bar: 6 pixels at 96 dots an inch
constexpr int kPaletteWidth = 3000;
constexpr double kEventListShare = 0.35;
constexpr double kScriptTextShare = 0.5;

struct Bounds {
    double low;
    double high;
};

// The bounds of each divider's stored share, in the order of Splitter.
constexpr Bounds kBounds[kSplitterCount] = {{0.1, 0.6}, {0.002, 0.5}, {0.002, 0.999}, {0.1, 0.9}};

enum Tabs : unsigned { Scene = 1, Animations = 2, Events = 4, Script = 6, All = 7 };

struct Control {
    const char* name;
    unsigned tabs;
};

const Control kControls[] = {
    {"ObjectTree", Scene | Animations},
    {"ObjectTree2", Events},
    {"SplitterH2", All},
    {"SoundTree", All},
    {"SplitterV", All},
    {"SwitchTab", All},
    {"HelpButton", All},
    {"TeachMe2Button", All},
    {"UndoButton", Scene},
    {"AddObjectButton", Scene},
    {"AddSoundsButton", Scene},
    {"AddTextButton", Scene},
    {"MakeObjectButton", Scene},
    {"OpeningSceneFrame", Scene},
    {"MouseControlsFrame", Scene},
    {"OpeningSceneOptions", Scene},
    {"ScriptUndoButton", Script},
    {"ScriptRedoButton", Script},
    {"PerformScriptButton", Script},
    {"TrafficLightImage", Script},
    {"MakeAnimation", Animations},
    {"MakeEvent", Events},
    {"TrashCanPicture", Script},
    {"ConstructTree", Animations},
    {"ListView1", Events},
    {"TreeView1", Script},
    {"SplitterH3", Script},
    {"FontNamesLabel", Script},
    {"FontNames", Script},
    {"FontSizesLabel", Script},
    {"FontSizes", Script},
    {"FontEffectLabel", Script},
    {"FontEffect", Script},
    {"LineLabel", Script},
    {"ArbitraryCodeBox", Script},
    {"ScriptText", Script},
    {"CommandLineBoxLabel", Script},
    {"CommandLineTreeview", Script},
    {"CommandLineBox", Script},
    {"GoButton", Script},
    {"SplitterH1", All},
    {"OutputText", All},
};

const char* const kSplitterNames[kSplitterCount] = {"SplitterV", "SplitterH1", "SplitterH2",
                                                    "SplitterH3"};

int index(Splitter splitter) {
    return static_cast<int>(splitter);
}

// A rectangle in twips; never of negative size.
QRect box(int left, int top, int width, int height) {
    return QRect(left, top, std::max(0, width), std::max(0, height));
}

// The work of one placing: what shows, and where each control went, in twips.
class Placer {
public:
    explicit Placer(const MainLayout::Input& input) : input_(input) {
        const double perPixel = input.twipsPerPixel > 0 ? input.twipsPerPixel : 15;
        width_ = qRound(input.innerPixels.width() * perPixel);
        height_ = qRound(input.innerPixels.height() * perPixel);
        narrow_ = width_ < kNarrowBelow;
        outer_ = narrow_ ? kOuterNarrow : kOuterWide;
        gap_ = narrow_ ? kGapNarrow : kGapWide;
        buttonGap_ = narrow_ ? kButtonGapNarrow : kButtonGapWide;
        shares_ = MainLayout::clamped(input.shares);
    }

    void placeAll() {
        const QRect inner = box(outer_, outer_, width_ - 2 * outer_, height_ - 2 * outer_);
        const auto [left, right] = divide(Splitter::V, inner, false, true, true);
        placeSceneColumn(left);
        const auto [page, output] = divide(Splitter::H1, right, true, true, shows("OutputText"));
        put("OutputText", output);
        placePage(page);
    }

    std::array<MainLayout::Division, kSplitterCount> divisions;
    QHash<QString, QRect> twips;

private:
    bool shows(const char* name) const {
        const QString control = QString::fromLatin1(name);
        return MainLayout::onTab(control, input_.tab) && !input_.hidden.contains(control);
    }

    QSize hint(const char* name, QSize otherwise) const {
        const QSize hinted = input_.hintTwips.value(QString::fromLatin1(name));
        return hinted.isValid() ? hinted : otherwise;
    }

    void put(const char* name, const QRect& rect) {
        if (shows(name))
            twips.insert(QString::fromLatin1(name), rect);
    }

    // Parts `area` in two across the bar of `splitter` (one above the other when
    // `vertical`); a side that does not show gives the whole area to the other.
    std::pair<QRect, QRect> divide(Splitter splitter, const QRect& area, bool vertical,
                                   bool firstShown, bool secondShown) {
        if (!firstShown || !secondShown)
            return {firstShown ? area : QRect(), secondShown ? area : QRect()};
        const int length = vertical ? area.height() : area.width();
        const int span = std::max(0, length - kBarThickness);
        const int first = qRound(MainLayout::firstShare(shares_, splitter) * span);
        const int start = vertical ? area.top() : area.left();
        divisions[index(splitter)] = {true, vertical, start, span};
        const char* bar = kSplitterNames[index(splitter)];
        if (vertical) {
            put(bar, box(area.left(), start + first, area.width(), kBarThickness));
            return {box(area.left(), start, area.width(), first),
                    box(area.left(), start + first + kBarThickness, area.width(), span - first)};
        }
        put(bar, box(start + first, area.top(), kBarThickness, area.height()));
        return {box(start, area.top(), first, area.height()),
                box(start + first + kBarThickness, area.top(), span - first, area.height())};
    }

    void placeSceneColumn(const QRect& column) {
        const char* objects = input_.tab == 2 ? "ObjectTree2" : "ObjectTree";
        const auto [top, bottom] =
            divide(Splitter::H2, column, true, shows(objects), shows("SoundTree"));
        put(objects, top);
        put("SoundTree", bottom);
    }

    // Places the buttons that show left to right from the area's corner, in rows of at
    // least a picture's height, going on in a new row when one is full; answers the
    // height taken.
    int flow(std::initializer_list<const char*> names, const QRect& area) {
        int x = area.left();
        int y = area.top();
        int rowHeight = 0;
        for (const char* name : names) {
            if (!shows(name))
                continue;
            const QSize size = hint(name, {kPictureRow, kPictureRow});
            const int width = std::min(std::max(size.width(), kPictureRow), area.width());
            if (x > area.left() && x + width > area.right() + 1) {
                x = area.left();
                y += rowHeight + buttonGap_;
                rowHeight = 0;
            }
            const int height = std::max(size.height(), kPictureRow);
            put(name, box(x, y, width, height));
            x += width + buttonGap_;
            rowHeight = std::max(rowHeight, height);
        }
        return rowHeight > 0 ? y + rowHeight - area.top() : 0;
    }

    void placePage(const QRect& page) {
        // The tabs, with help at the row's far end on every tab.
        const QRect helpRow = box(page.left(), page.top(), page.width(), kPictureRow);
        int helpLeft = page.right() + 1;
        for (const char* name : {"TeachMe2Button", "HelpButton"}) {
            if (!shows(name))
                continue;
            helpLeft -= kPictureRow;
            put(name, box(helpLeft, page.top(), kPictureRow, kPictureRow));
            helpLeft -= buttonGap_;
        }
        const int tabsWidth = std::min(hint("SwitchTab", {6000, kPictureRow}).width(),
                                       helpLeft - page.left() - buttonGap_);
        put("SwitchTab", box(page.left(), page.top(), tabsWidth, helpRow.height()));
        const int top = page.top() + helpRow.height() + gap_;
        const QRect below = box(page.left(), top, page.width(), page.bottom() + 1 - top);
        if (input_.tab == 0)
            placeOpeningScene(below);
        else
            placeScript(below);
    }

    void placeOpeningScene(const QRect& area) {
        const int buttons = flow({"UndoButton", "AddObjectButton", "AddSoundsButton",
                                  "AddTextButton", "MakeObjectButton"},
                                 area);
        const QSize tools = hint("MouseControlsFrame", {5400, kToolsRow});
        const QSize options = hint("OpeningSceneOptions", {3600, kToolsRow});
        const int toolsHeight = std::max(tools.height(), kToolsRow);
        const int optionsHeight = std::max(options.height(), kToolsRow);
        const bool besides = !narrow_ && tools.width() + gap_ + options.width() <= area.width();
        const int shelf =
            besides ? std::max(toolsHeight, optionsHeight) : toolsHeight + gap_ + optionsHeight;
        const int bottom = area.bottom() + 1;
        const int frameTop = area.top() + (buttons > 0 ? buttons + gap_ : 0);
        put("OpeningSceneFrame",
            box(area.left(), frameTop, area.width(), bottom - shelf - gap_ - frameTop));
        const int shelfTop = bottom - shelf;
        const int toolsWidth = std::min(tools.width(), area.width());
        put("MouseControlsFrame", box(area.left(), shelfTop, toolsWidth, toolsHeight));
        if (besides)
            put("OpeningSceneOptions",
                box(area.left() + toolsWidth + gap_, shelfTop,
                    area.right() + 1 - area.left() - toolsWidth - gap_, optionsHeight));
        else
            put("OpeningSceneOptions",
                box(area.left(), shelfTop + toolsHeight + gap_, area.width(), optionsHeight));
    }

    void placeScript(const QRect& area) {
        const int buttons =
            flow({"ScriptUndoButton", "ScriptRedoButton", "PerformScriptButton",
                  "TrafficLightImage", "MakeAnimation", "MakeEvent", "TrashCanPicture"},
                 area);
        int top = area.top() + (buttons > 0 ? buttons + gap_ : 0);
        int bottom = area.bottom() + 1;
        // The command line across the foot of the page: one of its two faces and Go.
        const bool lineShown = shows("CommandLineTreeview") || shows("CommandLineBox");
        if (lineShown || shows("GoButton")) {
            const int rowTop = bottom - kPictureRow;
            const int goWidth = shows("GoButton") ? kPictureRow + buttonGap_ : 0;
            const int labelWidth =
                shows("CommandLineBoxLabel")
                    ? std::min(std::max(hint("CommandLineBoxLabel", {0, 0}).width(), kPictureRow),
                               area.width() / 4)
                    : 0;
            if (labelWidth > 0)
                put("CommandLineBoxLabel", box(area.left(), rowTop, labelWidth, kPictureRow));
            const int lineLeft = area.left() + (labelWidth > 0 ? labelWidth + buttonGap_ : 0);
            const QRect line =
                box(lineLeft, rowTop, area.right() + 1 - lineLeft - goWidth, kPictureRow);
            put("CommandLineTreeview", line);
            put("CommandLineBox", line);
            put("GoButton", box(area.right() + 1 - kPictureRow, rowTop, kPictureRow, kPictureRow));
            bottom = rowTop - gap_;
        }
        QRect script = box(area.left(), top, area.width(), bottom - top);
        if (shows("ConstructTree")) {
            const int palette = std::min(kPaletteWidth, script.width() / 3);
            put("ConstructTree", box(script.left(), script.top(), palette, script.height()));
            script.setLeft(script.left() + palette + gap_);
        }
        if (shows("ListView1")) {
            const int list = qRound(script.height() * kEventListShare);
            put("ListView1", box(script.left(), script.top(), script.width(), list));
            script.setTop(script.top() + list + gap_);
        }
        if (shows("ScriptText")) {
            const int text = qRound(script.height() * kScriptTextShare);
            put("ScriptText", box(script.left(), script.bottom() + 1 - text, script.width(), text));
            script.setBottom(script.bottom() - text - gap_);
        }
        const auto [tree, code] =
            divide(Splitter::H3, script, true, shows("TreeView1"), shows("ArbitraryCodeBox"));
        put("TreeView1", tree);
        if (!shows("ArbitraryCodeBox") || code.isNull())
            return;
        // The code box's font tools and line number over it, while there is room for
        // them and a line of code; in a window too small for that the box has it all.
        const int toolsRow = std::max(
            {hint("FontNames", {0, 0}).height(), hint("FontSizes", {0, 0}).height(), kPictureRow});
        const bool toolsFit = code.height() >= toolsRow + gap_ + kPictureRow;
        const int tools = toolsFit
                              ? flow({"FontNamesLabel", "FontNames", "FontSizesLabel", "FontSizes",
                                      "FontEffectLabel", "FontEffect", "LineLabel"},
                                     code)
                              : 0;
        const int codeTop = code.top() + (tools > 0 ? tools + gap_ : 0);
        put("ArbitraryCodeBox",
            box(code.left(), codeTop, code.width(), code.bottom() + 1 - codeTop));
    }

    const MainLayout::Input& input_;
    LayoutShares shares_;
    int width_ = 0;
    int height_ = 0;
    bool narrow_ = false;
    int outer_ = kOuterWide;
    int gap_ = kGapWide;
    int buttonGap_ = kButtonGapWide;
};

// Twips to pixels, by edges, so that neighbours stay neighbours after rounding.
QRect toPixels(const QRect& twips, double perPixel) {
    const int left = qRound(twips.left() / perPixel);
    const int top = qRound(twips.top() / perPixel);
    const int right = qRound((twips.left() + twips.width()) / perPixel);
    const int bottom = qRound((twips.top() + twips.height()) / perPixel);
    return QRect(left, top, right - left, bottom - top);
}

} // namespace

const QStringList& MainLayout::controls() {
    static const QStringList names = [] {
        QStringList all;
        for (const Control& control : kControls)
            all << QString::fromLatin1(control.name);
        return all;
    }();
    return names;
}

bool MainLayout::onTab(const QString& control, int tab) {
    for (const Control& entry : kControls)
        if (control == QLatin1String(entry.name))
            return (entry.tabs & (1u << std::clamp(tab, 0, 2))) != 0;
    return false;
}

const char* MainLayout::splitterName(Splitter splitter) {
    return kSplitterNames[index(splitter)];
}

MainLayout::Result MainLayout::place(const Input& input) {
    Placer placer(input);
    placer.placeAll();
    Result result;
    result.twipsPerPixel = input.twipsPerPixel > 0 ? input.twipsPerPixel : 15;
    result.divisions = placer.divisions;
    for (auto at = placer.twips.cbegin(); at != placer.twips.cend(); ++at)
        result.pixels.insert(at.key(), toPixels(at.value(), result.twipsPerPixel));
    return result;
}

double MainLayout::firstShare(const LayoutShares& shares, Splitter splitter) {
    switch (splitter) {
    case Splitter::V:
        return shares.objectTree;
    case Splitter::H1:
        return 1 - shares.outputText;
    case Splitter::H2:
        return 1 - shares.soundTree;
    case Splitter::H3:
        return 1 - shares.codeBox;
    }
    return 0.5;
}

LayoutShares MainLayout::withFirstShare(LayoutShares shares, Splitter splitter, double first) {
    switch (splitter) {
    case Splitter::V:
        shares.objectTree = first;
        break;
    case Splitter::H1:
        shares.outputText = 1 - first;
        break;
    case Splitter::H2:
        shares.soundTree = 1 - first;
        break;
    case Splitter::H3:
        shares.codeBox = 1 - first;
        break;
    }
    return clamped(shares);
}

LayoutShares MainLayout::clamped(LayoutShares shares) {
    const auto keep = [](double& share, Splitter splitter) {
        const Bounds bounds = kBounds[index(splitter)];
        share = std::isfinite(share) ? std::clamp(share, bounds.low, bounds.high) : bounds.low;
    };
    keep(shares.objectTree, Splitter::V);
    keep(shares.outputText, Splitter::H1);
    keep(shares.soundTree, Splitter::H2);
    keep(shares.codeBox, Splitter::H3);
    return shares;
}

LayoutShares MainLayout::dragged(const Result& placed, Splitter splitter, int barPixel,
                                 LayoutShares shares) {
    const Division& division = placed.divisions[index(splitter)];
    if (!division.shown || division.span <= 0)
        return shares;
    const double twips = barPixel * placed.twipsPerPixel;
    return withFirstShare(shares, splitter, (twips - division.start) / division.span);
}

} // namespace vessa
