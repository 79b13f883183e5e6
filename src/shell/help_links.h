#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace vessa {

// Where a link of a help page leads. The help window shows pages of the home folder's
// guide and of worlds; a link to a world's help page opens that world; a link that
// leaves those folders or goes to the network is not followed, so that a page from a
// world someone sent can't open other files or reach out.
struct HelpLink {
    enum class Action { Refuse, Show, ShowAndLoadWorld, Scroll };
    Action action = Action::Refuse;
    QString page;   // the file to show, for Show and ShowAndLoadWorld
    QString world;  // the world's folder, for ShowAndLoadWorld
    QString anchor; // the place in the page, for Scroll
};

// link as written in the page shown at current, with the folders whose files may be
// shown.
HelpLink followHelpLink(const QUrl& link, const QString& current,
                        const QStringList& allowedFolders);

// Whether path lies in folder or below it, every link and ".." resolved.
bool isInFolder(const QString& path, const QString& folder);

} // namespace vessa
