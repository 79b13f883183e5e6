#pragma once

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>
#include <QStringList>

namespace vessa {

class RegKeys;

// A window's place on the screen, in twips.
struct TwipsRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool operator==(const TwipsRect&) const = default;
};

// The shares of the main window that its four dividers set.
struct LayoutShares {
    double objectTree = 0.2;
    double outputText = 0.08;
    double soundTree = 0.35;
    double codeBox = 0.3;
    bool operator==(const LayoutShares&) const = default;
};

struct Preferences {
    bool gAutoSaveIsEnabled = true;
    bool gDisplayFPS = true;
    bool gCameraWindowOnTop = true;
    bool gUseHardwareAcceleration = false;
    // Acceleration is set in the engine only when the user's choice was stored.
    bool accelerationChosen = false;
    QString fontName = QStringLiteral("Arial");
    int fontSize = 12;
    bool fontBold = false;
    bool operator==(const Preferences&) const = default;
};

// Everything the windows remember between runs, without the windows.
struct WindowSettings {
    TwipsRect renderForm{9285, 0, 4620, 6570};
    bool helpFormWanted = false;
    int helpFormLeft = 8925;
    int helpFormTop = 6075;
    TwipsRect mainForm{0, 0, 9000, 9360};
    LayoutShares shares;
    Preferences preferences;
    // (value name, path), newest first, at most nine.
    QList<QPair<QString, QString>> recentFiles;
};

// The states a window can be in when the program ends; a window that is not in its
// normal state leaves fixed places behind.
struct WindowsAtExit {
    bool renderFormNormal = true;
    bool helpFormNormal = true;
    bool mainFormNormal = true;
};

// The most recent worlds the File menu shows.
constexpr int kRecentFilesShown = 9;

// What the settings store holds, each value checked: one that is missing, damaged or out
// of range gives its default. A store that can't be read, or that a newer version wrote,
// gives the defaults throughout. Every such finding is a line in `notes`. Windows come
// back inside a screen of screenTwips.
WindowSettings RestoreSettings(const RegKeys& keys, QSize screenTwips, QStringList& notes);

// Writes the settings; a store that can't be written (a read-only file) leaves a line in
// `notes` and answers false.
bool StoreSettings(RegKeys& keys, const WindowSettings& settings, const WindowsAtExit& states,
                   QStringList& notes);

// Where the windows first stand on a screen of screenTwips: the main window as wide as
// leaves room for the camera window beside it (four fifths of the screen at most, and
// at least 9000 twips), nine tenths of the screen high; the camera window at its right.
WindowSettings firstPlaces(QSize screenTwips);

// The rectangle made to fit the screen, width and height first, then its place.
TwipsRect keptOnScreen(TwipsRect rect, QSize screenTwips);

// The caption of the recent-files menu item at index: "&1 C:/Worlds/Park".
QString recentFileCaption(int index, const QString& path);

} // namespace vessa
