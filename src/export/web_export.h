#pragma once

#include <QString>

#include <functional>

namespace vessa {

class EngineLink;

// What the user chose for a web page: the saved world, the page file (.html
// or .htm, in an existing folder), the view's size in pixels, its place in
// the browser's window ("Left", "Center" or "Right") and whether the page
// shows the camera controls.
struct WebPageRequest {
    QString worldFolder;
    QString pageFile;
    int width = 320;
    int height = 240;
    QString position = QStringLiteral("Center");
    bool navigator = false;
};

struct WebExportResult {
    enum Outcome { Written, Cancelled, Failed };
    Outcome outcome = Failed;
    QString message; // why it failed, for the user
};

// The folder beside every page that holds the player's files.
inline const QString kWebPlayerFolder = QStringLiteral("vessa47_player");

// Writes a world as a web page: <name>.html and <name>.models.json (the
// engine's SaveForPlugin), <name>.ves (the world's archive) and the player
// (a copy of the program's player folder), one folder that plays the world
// when a web server serves it as it is. Everything is written into a work
// folder beside the page first and moved into place at the end, so a
// cancelled or failed export leaves the page's folder as it was.
class WebExport {
public:
    // going(fraction done, what is being done) is asked as the work goes
    // on; false cancels.
    using Going = std::function<bool(double fraction, const QString& step)>;

    WebExport(EngineLink& engine, QString playerFolder);

    WebExportResult run(const WebPageRequest& request, const Going& going = {});

    // What the export writes beside the page named pageFile.
    static QStringList writtenNames(const QString& pageFile);

private:
    EngineLink& engine_;
    QString playerFolder_;
};

} // namespace vessa
