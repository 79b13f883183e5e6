#include "shell/help_links.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

namespace {

const QString kWorldHelpPage = QStringLiteral("World_VessaHelp.html");

QString resolved(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(path) : canonical;
}

} // namespace

bool isInFolder(const QString& path, const QString& folder) {
    const QString root = resolved(folder);
    const QString file = resolved(path);
    return !root.isEmpty() && (file == root || file.startsWith(root + u'/'));
}

HelpLink followHelpLink(const QUrl& link, const QString& current,
                        const QStringList& allowedFolders) {
    HelpLink result;
    if (link.isRelative() && link.path().isEmpty() && link.hasFragment()) {
        result.action = HelpLink::Action::Scroll;
        result.anchor = link.fragment();
        return result;
    }
    const QUrl absolute = QUrl::fromLocalFile(current).resolved(link);
    if (!absolute.isLocalFile())
        return result;
    const QString page = QDir::cleanPath(absolute.toLocalFile());
    const QFileInfo info(page);
    if (!info.isFile())
        return result;
    const bool allowed =
        std::any_of(allowedFolders.begin(), allowedFolders.end(),
                    [&](const QString& folder) { return isInFolder(page, folder); });
    if (!allowed)
        return result;
    result.page = page;
    result.anchor = absolute.fragment();
    // The name of a world's page, in any capitals, belongs to a world: it opens with it.
    if (info.fileName().compare(kWorldHelpPage, Qt::CaseInsensitive) == 0) {
        result.action = HelpLink::Action::ShowAndLoadWorld;
        result.world = info.absolutePath();
    } else {
        result.action = HelpLink::Action::Show;
    }
    return result;
}

} // namespace vessa
