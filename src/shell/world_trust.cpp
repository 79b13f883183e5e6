#include "shell/world_trust.h"

#include "shell/settings_store.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

namespace {

QString valueName(qsizetype index) {
    return QStringLiteral("World%1").arg(index + 1);
}

// The same folder whatever path leads to it.
QString canonical(const QString& folder) {
    const QString resolved = QFileInfo(folder).canonicalFilePath();
    return resolved.isEmpty() ? QDir::cleanPath(QFileInfo(folder).absoluteFilePath()) : resolved;
}

} // namespace

QStringList WorldTrust::folders() const {
    QStringList found;
    for (qsizetype i = 0;; ++i) {
        const QString folder =
            keys_.GetRegValue(RegistryRoot::LocalMachine, kTrustedWorldsKey, valueName(i));
        if (folder.trimmed().isEmpty())
            return found;
        found << folder;
    }
}

bool WorldTrust::isTrusted(const QString& folder) const {
    return !folder.isEmpty() && folders().contains(canonical(folder));
}

void WorldTrust::setTrusted(const QString& folder, bool trusted) {
    QStringList kept = folders();
    kept.removeAll(canonical(folder));
    if (trusted)
        kept << canonical(folder);
    keys_.DeleteRegKey(RegistryRoot::LocalMachine, kTrustedWorldsKey);
    for (qsizetype i = 0; i < kept.size(); ++i)
        keys_.SetRegValue(RegistryRoot::LocalMachine, kTrustedWorldsKey, valueName(i), kept[i]);
}

} // namespace vessa
