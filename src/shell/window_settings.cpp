#include "shell/window_settings.h"

#include "shell/settings_store.h"

#include <QtMath>

#include <algorithm>

namespace vessa {

namespace {

constexpr auto kRoot = RegistryRoot::LocalMachine;

// The layout of the stored values; a store with a higher number was written by a later
// version, whose values may mean something else.
constexpr int kSettingsVersion = 1;
const QString kVersionValue = QStringLiteral("SettingsVersion");

// No window is larger than this many twips a side (about ten metres of screen).
constexpr int kLargestTwips = 1 << 24;

// Reads the values of one key, each checked, and notes what it had to put right.
class Reader {
public:
    Reader(const RegKeys& keys, const QString& key, QStringList& notes)
        : keys_(keys), key_(key), notes_(notes) {}

    bool has(const QString& name) const { return !text(name).isEmpty(); }

    void twips(const QString& name, int& value) const {
        const QString stored = text(name);
        bool ok = false;
        const qlonglong number = stored.trimmed().toLongLong(&ok);
        if (stored.isEmpty())
            return;
        if (!ok || number < -kLargestTwips || number > kLargestTwips)
            return noteBad(name, stored);
        value = static_cast<int>(number);
    }

    void share(const QString& name, double& value, double low, double high) const {
        const QString stored = text(name);
        bool ok = false;
        const double number = stored.trimmed().toDouble(&ok);
        if (stored.isEmpty())
            return;
        if (!ok || !qIsFinite(number) || number < low || number > high)
            return noteBad(name, stored);
        value = number;
    }

    // Booleans are stored as "True" and "False"; "1" and "0" are read as well.
    void flag(const QString& name, bool& value) const {
        const QString stored = text(name).trimmed();
        if (stored.isEmpty())
            return;
        if (stored.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0 ||
            stored == QStringLiteral("1") || stored == QStringLiteral("-1"))
            value = true;
        else if (stored.compare(QStringLiteral("false"), Qt::CaseInsensitive) == 0 ||
                 stored == QStringLiteral("0"))
            value = false;
        else
            noteBad(name, stored);
    }

    QString text(const QString& name) const { return keys_.GetRegValue(kRoot, key_, name); }

private:
    void noteBad(const QString& name, const QString& stored) const {
        notes_ << QStringLiteral("The setting %1 (\"%2\") makes no sense; its default is used.")
                      .arg(name, stored.left(40));
    }

    const RegKeys& keys_;
    QString key_;
    QStringList& notes_;
};

void readRect(const Reader& reader, const QString& form, TwipsRect& rect) {
    reader.twips(form + QStringLiteral("Left"), rect.left);
    reader.twips(form + QStringLiteral("Top"), rect.top);
    reader.twips(form + QStringLiteral("Width"), rect.width);
    reader.twips(form + QStringLiteral("Height"), rect.height);
    // A window needs some room to be found again and grabbed.
    rect.width = std::max(rect.width, 1500);
    rect.height = std::max(rect.height, 1500);
}

void readPreferences(const Reader& reader, Preferences& preferences) {
    if (reader.has(QStringLiteral("AutoSaveEnabled"))) {
        reader.flag(QStringLiteral("AutoSaveEnabled"), preferences.gAutoSaveIsEnabled);
        reader.flag(QStringLiteral("ShowFPS"), preferences.gDisplayFPS);
        reader.flag(QStringLiteral("CameraWindowOnTop"), preferences.gCameraWindowOnTop);
        preferences.accelerationChosen = reader.has(QStringLiteral("UseHardwareAcceleration"));
        reader.flag(QStringLiteral("UseHardwareAcceleration"),
                    preferences.gUseHardwareAcceleration);
    }
    if (reader.has(QStringLiteral("FontName"))) {
        const QString name = reader.text(QStringLiteral("FontName")).trimmed();
        if (!name.isEmpty() && name.size() <= 64)
            preferences.fontName = name;
        double size = preferences.fontSize;
        reader.share(QStringLiteral("FontSize"), size, 4, 96);
        preferences.fontSize = qRound(size);
        reader.flag(QStringLiteral("FontBold"), preferences.fontBold);
    }
}

QList<QPair<QString, QString>> readRecentFiles(const RegKeys& keys) {
    QList<QPair<QString, QString>> files = ReadRecentFile(keys);
    if (files.size() > kRecentFilesShown)
        files.resize(kRecentFilesShown);
    return files;
}

QString boolText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

} // namespace

TwipsRect keptOnScreen(TwipsRect rect, QSize screenTwips) {
    rect.width = std::min(rect.width, screenTwips.width());
    rect.height = std::min(rect.height, screenTwips.height());
    rect.left = std::max(rect.left, 0);
    rect.top = std::max(rect.top, 0);
    if (rect.left + rect.width > screenTwips.width())
        rect.left = screenTwips.width() - rect.width;
    if (rect.top + rect.height > screenTwips.height())
        rect.top = screenTwips.height() - rect.height;
    return rect;
}

QString recentFileCaption(int index, const QString& path) {
    return QLatin1Char('&') + QString::number(index + 1) + QLatin1Char(' ') + path;
}

WindowSettings firstPlaces(QSize screenTwips) {
    constexpr int kMargin = 120;
    constexpr int kNarrowest = 9000;
    WindowSettings settings;
    TwipsRect& camera = settings.renderForm;
    TwipsRect& main = settings.mainForm;
    const int room = screenTwips.width() - camera.width - 3 * kMargin;
    main.width = std::max(kNarrowest, std::min(room, screenTwips.width() * 4 / 5));
    main.height = screenTwips.height() * 9 / 10;
    main.left = kMargin;
    main.top = (screenTwips.height() - main.height) / 2;
    camera.left = main.left + main.width + kMargin;
    camera.top = main.top;
    settings.renderForm = keptOnScreen(camera, screenTwips);
    settings.mainForm = keptOnScreen(main, screenTwips);
    return settings;
}

WindowSettings RestoreSettings(const RegKeys& keys, QSize screenTwips, QStringList& notes) {
    WindowSettings settings = firstPlaces(screenTwips);
    const Reader stored(keys, kSettingsKey, notes);
    const QString problem = keys.problem();
    if (!problem.isEmpty()) {
        notes << QStringLiteral("The windows are where they first were: %1.").arg(problem);
    } else if (stored.text(kVersionValue).toInt() > kSettingsVersion) {
        notes << QStringLiteral("The settings were written by a later version of Vessa47; "
                                "the windows are where they first were.");
    } else {
        settings.recentFiles = readRecentFiles(keys);
        readRect(stored, QStringLiteral("RenderForm"), settings.renderForm);
        stored.flag(QStringLiteral("HelpFormShow"), settings.helpFormWanted);
        stored.twips(QStringLiteral("HelpFormLeft"), settings.helpFormLeft);
        stored.twips(QStringLiteral("HelpFormTop"), settings.helpFormTop);
        readRect(stored, QStringLiteral("MainForm"), settings.mainForm);
        if (stored.has(QStringLiteral("ArbitraryCodeBoxPerc"))) {
            LayoutShares& shares = settings.shares;
            stored.share(QStringLiteral("ObjectTreePerc"), shares.objectTree, 0.0, 1.0);
            stored.share(QStringLiteral("OutputTextPerc"), shares.outputText, 0.002, 0.5);
            stored.share(QStringLiteral("SoundTreePerc"), shares.soundTree, 0.002, 0.999);
            stored.share(QStringLiteral("ArbitraryCodeBoxPerc"), shares.codeBox, 0.1, 0.9);
        }
        readPreferences(Reader(keys, kPreferencesKey, notes), settings.preferences);
    }
    settings.renderForm = keptOnScreen(settings.renderForm, screenTwips);
    // The help window keeps its size; only its corner is remembered.
    const TwipsRect help =
        keptOnScreen({settings.helpFormLeft, settings.helpFormTop, 1500, 1500}, screenTwips);
    settings.helpFormLeft = help.left;
    settings.helpFormTop = help.top;
    settings.mainForm = keptOnScreen(settings.mainForm, screenTwips);
    return settings;
}

bool StoreSettings(RegKeys& keys, const WindowSettings& settings, const WindowsAtExit& states,
                   QStringList& notes) {
    if (keys.GetRegValue(kRoot, kSettingsKey, kVersionValue).toInt() > kSettingsVersion) {
        notes << QStringLiteral("The settings were written by a later version of Vessa47 and "
                                "are left as they are.");
        return false;
    }
    bool written = keys.DeleteRegKey(kRoot, kRecentFilesKey);
    const auto set = [&](const QString& key, const QString& name, const QString& value) {
        written = keys.SetRegValue(kRoot, key, name, value) && written;
    };
    const auto setNumber = [&](const QString& name, double value) {
        set(kSettingsKey, name, QString::number(value));
    };
    for (const auto& [name, path] : settings.recentFiles)
        set(kRecentFilesKey, name, path);
    set(kSettingsKey, kVersionValue, QString::number(kSettingsVersion));
    const auto setRect = [&](const QString& form, const TwipsRect& rect) {
        setNumber(form + QStringLiteral("Left"), rect.left);
        setNumber(form + QStringLiteral("Top"), rect.top);
        setNumber(form + QStringLiteral("Width"), rect.width);
        setNumber(form + QStringLiteral("Height"), rect.height);
    };
    setRect(QStringLiteral("RenderForm"),
            states.renderFormNormal ? settings.renderForm : TwipsRect{9285, 15, 4620, 6570});
    set(kSettingsKey, QStringLiteral("HelpFormShow"), boolText(settings.helpFormWanted));
    setNumber(QStringLiteral("HelpFormLeft"), states.helpFormNormal ? settings.helpFormLeft : 8925);
    setNumber(QStringLiteral("HelpFormTop"), states.helpFormNormal ? settings.helpFormTop : 6075);
    setRect(QStringLiteral("MainForm"),
            states.mainFormNormal ? settings.mainForm : TwipsRect{15, 15, 9000, 9360});
    const LayoutShares shares = states.mainFormNormal ? settings.shares : LayoutShares();
    setNumber(QStringLiteral("ObjectTreePerc"), shares.objectTree);
    setNumber(QStringLiteral("OutputTextPerc"), shares.outputText);
    setNumber(QStringLiteral("soundtreePerc"), shares.soundTree);
    setNumber(QStringLiteral("ArbitraryCodeBoxPerc"), shares.codeBox);
    const Preferences& preferences = settings.preferences;
    set(kPreferencesKey, QStringLiteral("ShowFPS"), boolText(preferences.gDisplayFPS));
    set(kPreferencesKey, QStringLiteral("CameraWindowOnTop"),
        boolText(preferences.gCameraWindowOnTop));
    set(kPreferencesKey, QStringLiteral("AutoSaveEnabled"),
        boolText(preferences.gAutoSaveIsEnabled));
    set(kPreferencesKey, QStringLiteral("UseHardwareAcceleration"),
        boolText(preferences.gUseHardwareAcceleration));
    set(kPreferencesKey, QStringLiteral("FontName"), preferences.fontName);
    set(kPreferencesKey, QStringLiteral("FontSize"), QString::number(preferences.fontSize));
    set(kPreferencesKey, QStringLiteral("FontBold"), boolText(preferences.fontBold));
    if (!written)
        notes << QStringLiteral("The windows' places could not be kept: %1.")
                     .arg(keys.problem().isEmpty() ? keys.fileName() : keys.problem());
    return written;
}

} // namespace vessa
