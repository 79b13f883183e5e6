#pragma once

#include <QString>

namespace vessa {

// The program-wide values of the application core. One instance lives as long as
// the process; everything that needs them is handed a reference.
struct AppState {
    QString HomeDir;    // ends in "/"; world paths are appended directly
    int ErrorLine = 10; // the last start-up or loop step begun
    QString ErrorChain; // report blocks of an error on its way up
    QString VersionText = QStringLiteral("Interpreter Not running yet...");
    QString DirectXMessage;  // the display requirement, set early in start-up
    bool ExitOnFatal = true; // a failed engine call ends the process
    int ErrorLineOffset = 0; // first code-box line of the text the engine last ran
    int ScreenWidthTwips = 0;
    int ScreenHeightTwips = 0;
    bool RunEngineLoop = false; // false while an external tool runs: IdleTimer drives Loop()
    bool HelpFormWanted = false;
};

} // namespace vessa
