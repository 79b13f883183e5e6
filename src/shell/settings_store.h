#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QtGlobal>
#include <memory>

class QSettings;

// The largest settings file that is read: what the program writes is a few kilobytes.
constexpr qint64 kLargestSettingsFile = 1 << 20;

namespace vessa {

// The registry roots the program's keys live under.
enum class RegistryRoot { LocalMachine };

inline const QString kRecentFilesKey =
    QStringLiteral("Software\\Halden Institute\\Vessa47\\1.00.000\\Recent Files");
inline const QString kSettingsKey =
    QStringLiteral("Software\\Halden Institute\\Vessa47\\1.00.000\\Settings");
inline const QString kPreferencesKey =
    QStringLiteral("Software\\Halden Institute\\Vessa47\\1.00.000\\Preferences");

// What the program remembers between runs: keys of text values, kept in an INI
// file in the user's configuration folder (XDG_CONFIG_HOME moves it). Value names
// ignore case, as registry names do. An empty text is stored as one blank, so a
// value read back is never empty unless it is missing. A file far larger than settings
// ever are, or one that is not a plain file, is refused unread: the store then holds
// nothing, takes nothing, and says why.
class RegKeys {
public:
    // The user's store; `iniPath` names another file instead (tests).
    RegKeys();
    explicit RegKeys(const QString& iniPath);
    ~RegKeys();

    bool SetRegValue(RegistryRoot root, const QString& key, const QString& name,
                     const QString& value);
    // The empty text when the key or value is missing; whole numbers in decimal.
    QString GetRegValue(RegistryRoot root, const QString& key, const QString& name) const;
    // Removes the key with all its values.
    bool DeleteRegKey(RegistryRoot root, const QString& key);

    QString fileName() const;
    // Why the store could not be read or written last time, or "" when it could.
    QString problem() const;

private:
    QString storedName(const QString& group, const QString& name) const;
    QString path_;
    QString refused_;                     // why the file was not read; "" when it was
    std::unique_ptr<QSettings> settings_; // none when the file was refused
};

// (value name, path) of RecentFile1, RecentFile2, ... up to the first empty one.
QList<QPair<QString, QString>> ReadRecentFile(const RegKeys& keys);

} // namespace vessa
