#include "shell/settings_store.h"

#include <QFileInfo>
#include <QSettings>

namespace vessa {

namespace {

// INI groups nest with "/"; registry keys with "\".
QString groupOf(const QString& key) {
    QString group = key;
    group.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return group;
}

QString asRegistryText(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QString::number(value.toLongLong());
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return value.toString();
    default:
        return {};
    }
}

// Where QSettings keeps the user's INI settings of the program (the folder a test may
// have set among them). QSettings reads its file as it is made, so the folder is asked of
// one for a file that nothing writes.
QString userSettingsPath() {
    const QSettings folderOnly(QSettings::IniFormat, QSettings::UserScope,
                               QStringLiteral("Halden Institute"),
                               QStringLiteral("Vessa47 settings folder"));
    return QFileInfo(folderOnly.fileName()).absolutePath() + QStringLiteral("/Vessa47.ini");
}

// Why a settings file can't be read safely, or "" when it can (or is not there yet).
QString refusal(const QString& path) {
    const QFileInfo file(path);
    if (!file.exists())
        return {};
    if (!file.isFile())
        return QStringLiteral("the settings file %1 is not a file").arg(path);
    if (file.size() > kLargestSettingsFile)
        return QStringLiteral("the settings file %1 is too large (%2 bytes) to be settings; "
                              "it is left as it is")
            .arg(path)
            .arg(file.size());
    return {};
}

} // namespace

RegKeys::RegKeys() : RegKeys(userSettingsPath()) {
}

RegKeys::RegKeys(const QString& iniPath) : path_(iniPath), refused_(refusal(iniPath)) {
    if (refused_.isEmpty())
        settings_ = std::make_unique<QSettings>(iniPath, QSettings::IniFormat);
}

RegKeys::~RegKeys() = default;

QString RegKeys::fileName() const {
    return path_;
}

QString RegKeys::problem() const {
    if (!settings_)
        return refused_;
    switch (settings_->status()) {
    case QSettings::NoError:
        return {};
    case QSettings::AccessError:
        return QStringLiteral("the settings file %1 can't be read or written").arg(fileName());
    case QSettings::FormatError:
        return QStringLiteral("the settings file %1 is damaged").arg(fileName());
    }
    return {};
}

QString RegKeys::storedName(const QString& group, const QString& name) const {
    settings_->beginGroup(group);
    const QStringList names = settings_->childKeys();
    settings_->endGroup();
    for (const QString& existing : names)
        if (existing.compare(name, Qt::CaseInsensitive) == 0)
            return existing;
    return name;
}

bool RegKeys::SetRegValue(RegistryRoot, const QString& key, const QString& name,
                          const QString& value) {
    if (!settings_)
        return false;
    const QString group = groupOf(key);
    const QString stored = storedName(group, name);
    settings_->setValue(group + QLatin1Char('/') + stored,
                        value.isEmpty() ? QStringLiteral(" ") : value);
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

QString RegKeys::GetRegValue(RegistryRoot, const QString& key, const QString& name) const {
    if (!settings_)
        return {};
    const QString group = groupOf(key);
    return asRegistryText(settings_->value(group + QLatin1Char('/') + storedName(group, name)));
}

bool RegKeys::DeleteRegKey(RegistryRoot, const QString& key) {
    if (!settings_)
        return false;
    settings_->remove(groupOf(key));
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

QList<QPair<QString, QString>> ReadRecentFile(const RegKeys& keys) {
    QList<QPair<QString, QString>> files;
    for (int i = 1;; ++i) {
        const QString name = QStringLiteral("RecentFile%1").arg(i);
        const QString path = keys.GetRegValue(RegistryRoot::LocalMachine, kRecentFilesKey, name);
        if (path.isEmpty())
            break;
        files.append({name, path});
    }
    return files;
}

} // namespace vessa
