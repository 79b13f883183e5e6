#pragma once

#include <QString>
#include <QStringList>

namespace vessa {

class RegKeys;

inline const QString kTrustedWorldsKey =
    QStringLiteral("Software\\Halden Institute\\Vessa47\\1.00.000\\Trusted Worlds");

// The world folders whose code the user trusts: the engine runs their code without its
// policy. Kept in the settings store, one value a folder ("World1", "World2", ...), each
// the folder's full path with links followed, so that a world reached by another path is
// the same world. None is trusted unless the user said so.
class WorldTrust {
public:
    explicit WorldTrust(RegKeys& keys) : keys_(keys) {}

    bool isTrusted(const QString& folder) const;
    void setTrusted(const QString& folder, bool trusted);

private:
    QStringList folders() const;

    RegKeys& keys_; // Not owned.
};

} // namespace vessa
