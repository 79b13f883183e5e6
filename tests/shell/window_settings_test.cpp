#include "shell/settings_store.h"
#include "shell/window_settings.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

constexpr auto kRoot = RegistryRoot::LocalMachine;
const QSize kScreen(19200, 14400); // 1280 x 960 pixels at 96 dots an inch

struct Store {
    QTemporaryDir dir;
    QString file = dir.path() + QStringLiteral("/store.ini");
    QStringList notes;

    WindowSettings restore(QSize screen = kScreen) {
        RegKeys keys(file);
        return RestoreSettings(keys, screen, notes);
    }
    bool store(const WindowSettings& settings, const WindowsAtExit& states = {}) {
        RegKeys keys(file);
        return StoreSettings(keys, settings, states, notes);
    }
    void set(const QString& key, const QString& name, const QString& value) {
        RegKeys(file).SetRegValue(kRoot, key, name, value);
    }
};

WindowSettings chosen() {
    WindowSettings settings;
    settings.renderForm = {12000, 300, 5000, 6000};
    settings.helpFormWanted = true;
    settings.helpFormLeft = 700;
    settings.helpFormTop = 900;
    settings.mainForm = {150, 150, 11000, 9000};
    settings.shares = {0.31, 0.12, 0.4, 0.25};
    settings.preferences.gDisplayFPS = false;
    settings.preferences.gCameraWindowOnTop = false;
    settings.preferences.gUseHardwareAcceleration = true;
    settings.preferences.accelerationChosen = true;
    settings.preferences.fontName = QStringLiteral("DejaVu Sans");
    settings.preferences.fontSize = 14;
    settings.preferences.fontBold = true;
    settings.recentFiles = {{QStringLiteral("RecentFile1"), QStringLiteral("/w/Park")},
                            {QStringLiteral("RecentFile2"), QStringLiteral("/w/Zoo")}};
    return settings;
}

} // namespace

TEST(WindowSettings, WhatIsStoredComesBackAndAFreshStoreGivesTheFirstLayout) {
    Store fresh;
    const WindowSettings first = fresh.restore();
    EXPECT_EQ(first.mainForm, (TwipsRect{0, 0, 9000, 9360}));
    EXPECT_EQ(first.renderForm, (TwipsRect{9285, 0, 4620, 6570}));
    EXPECT_EQ(first.preferences, Preferences());
    EXPECT_TRUE(fresh.notes.isEmpty());

    Store store;
    ASSERT_TRUE(store.store(chosen()));
    const WindowSettings back = store.restore();
    EXPECT_EQ(back.renderForm, chosen().renderForm);
    EXPECT_EQ(back.mainForm, chosen().mainForm);
    EXPECT_EQ(back.shares, chosen().shares);
    EXPECT_EQ(back.preferences, chosen().preferences);
    EXPECT_EQ(back.recentFiles, chosen().recentFiles);
    EXPECT_EQ(back.helpFormLeft, 700);
    EXPECT_TRUE(back.helpFormWanted);
    EXPECT_TRUE(store.notes.isEmpty()) << store.notes.join('\n').toStdString();
}

TEST(WindowSettings, MinimisedWindowsLeaveTheFixedPlacesAndTenRecentWorldsComeBackAsNine) {
    Store store;
    WindowSettings settings = chosen();
    for (int i = 3; i <= 10; ++i)
        settings.recentFiles.append({QStringLiteral("RecentFile%1").arg(i), QStringLiteral("/w")});
    ASSERT_TRUE(store.store(settings, {false, false, false}));
    const WindowSettings back = store.restore();
    EXPECT_EQ(back.renderForm, (TwipsRect{9285, 15, 4620, 6570}));
    EXPECT_EQ(back.mainForm, (TwipsRect{15, 15, 9000, 9360}));
    EXPECT_EQ(back.shares, LayoutShares());
    EXPECT_EQ(back.recentFiles.size(), kRecentFilesShown);
}

TEST(WindowSettings, AWindowFromALargerOrAGoneScreenComesBackOntoThisOne) {
    Store store;
    WindowSettings settings = chosen();
    settings.renderForm = {40000, -300, 30000, 5000}; // a second screen, now unplugged
    settings.mainForm = {-9000, 2000, 9000, 20000};
    ASSERT_TRUE(store.store(settings));
    const WindowSettings back = store.restore();
    EXPECT_EQ(back.renderForm, (TwipsRect{0, 0, 19200, 5000}));
    EXPECT_EQ(back.mainForm, (TwipsRect{0, 0, 9000, 14400}));
}

TEST(WindowSettings, DamagedValuesGiveTheirDefaultsWithANoteAndTheRestIsKept) {
    Store store;
    ASSERT_TRUE(store.store(chosen()));
    store.set(kSettingsKey, QStringLiteral("MainFormWidth"), QStringLiteral("wide"));
    store.set(kSettingsKey, QStringLiteral("MainFormLeft"), QStringLiteral("99999999999999"));
    store.set(kSettingsKey, QStringLiteral("ObjectTreePerc"), QStringLiteral("nan"));
    store.set(kSettingsKey, QStringLiteral("OutputTextPerc"), QStringLiteral("7"));
    store.set(kPreferencesKey, QStringLiteral("ShowFPS"), QStringLiteral("perhaps"));
    store.set(kPreferencesKey, QStringLiteral("FontSize"), QStringLiteral("100000"));
    const WindowSettings back = store.restore();
    EXPECT_EQ(back.mainForm, (TwipsRect{0, 150, 9000, 9000}));
    EXPECT_EQ(back.shares, (LayoutShares{0.2, 0.08, 0.4, 0.25}));
    EXPECT_TRUE(back.preferences.gDisplayFPS);
    EXPECT_EQ(back.preferences.fontSize, 12);
    EXPECT_FALSE(back.preferences.gCameraWindowOnTop); // undamaged, kept
    EXPECT_EQ(store.notes.size(), 6) << store.notes.join('\n').toStdString();
}

TEST(WindowSettings, AStoreOfALaterVersionOrNotAStoreGivesDefaultsAndIsNotOverwritten) {
    Store later;
    ASSERT_TRUE(later.store(chosen()));
    later.set(kSettingsKey, QStringLiteral("SettingsVersion"), QStringLiteral("7"));
    EXPECT_EQ(later.restore().mainForm, (TwipsRect{0, 0, 9000, 9360}));
    EXPECT_FALSE(later.store(WindowSettings()));
    later.set(kSettingsKey, QStringLiteral("SettingsVersion"), QStringLiteral("1"));
    EXPECT_EQ(later.restore().mainForm, chosen().mainForm);
    EXPECT_EQ(later.notes.size(), 2);

    Store garbage;
    QFile file(garbage.file);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\x00\xff[Settings\n=\n\x01\x02MainFormLeft=-=-\n", 32));
    file.close();
    const WindowSettings back = garbage.restore();
    EXPECT_EQ(back.mainForm, (TwipsRect{0, 0, 9000, 9360}));
}

TEST(WindowSettings, AStoreThatCannotBeWrittenIsToldAndNothingBreaks) {
    Store store;
    // A folder that is a file can't hold the store, whoever the user is.
    QFile blocker(store.dir.path() + QStringLiteral("/config"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    store.file = blocker.fileName() + QStringLiteral("/store.ini");
    EXPECT_FALSE(store.store(chosen()));
    ASSERT_EQ(store.notes.size(), 1);
    EXPECT_TRUE(store.notes[0].startsWith(QStringLiteral("The windows' places could not be kept")));
    EXPECT_EQ(store.restore().mainForm, (TwipsRect{0, 0, 9000, 9360}));
}
