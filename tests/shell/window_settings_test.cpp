#include "shell/settings_store.h"
#include "shell/window_settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
    EXPECT_EQ(first.mainForm, firstPlaces(kScreen).mainForm);
    EXPECT_EQ(first.renderForm, firstPlaces(kScreen).renderForm);
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
    const TwipsRect first = firstPlaces(kScreen).mainForm;
    EXPECT_EQ(back.mainForm, (TwipsRect{first.left, 150, first.width, 9000}));
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
    EXPECT_EQ(later.restore().mainForm, firstPlaces(kScreen).mainForm);
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
    EXPECT_EQ(back.mainForm, firstPlaces(kScreen).mainForm);
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
    EXPECT_EQ(store.restore().mainForm, firstPlaces(kScreen).mainForm);
}

TEST(WindowSettings, OnAFreshStartTheWindowsFillTheScreenSideBySideOnLaptopAndLargeScreens) {
    // 1024 x 768, 1600 x 1000 and 2560 x 1440 pixels at 96 dots an inch.
    for (const QSize screen : {QSize(15360, 11520), QSize(24000, 15000), QSize(38400, 21600)}) {
        const WindowSettings first = firstPlaces(screen);
        const TwipsRect& main = first.mainForm;
        const TwipsRect& camera = first.renderForm;
        SCOPED_TRACE(screen.width());
        EXPECT_GE(main.width, std::min(9000, screen.width()));
        EXPECT_GE(main.width, screen.width() / 2) << "the main window takes most of the screen";
        EXPECT_GE(main.height, screen.height() * 8 / 10);
        EXPECT_LE(main.left + main.width, screen.width());
        EXPECT_LE(main.top + main.height, screen.height());
        EXPECT_EQ(camera, keptOnScreen(camera, screen)) << "the camera window is on the screen";
        EXPECT_GE(camera.left, main.left + main.width) << "beside the main window, not over it";
    }
}

TEST(WindowSettings, AHugeSettingsFileIsRefusedUnreadWithANoteAndLeftAsItIs) {
    Store huge;
    QFile file(huge.file);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Software]\n");
    ASSERT_TRUE(file.resize(kLargestSettingsFile * 64)); // a sparse file, quick to make
    file.close();
    const WindowSettings back = huge.restore();
    EXPECT_EQ(back.mainForm, firstPlaces(kScreen).mainForm);
    ASSERT_EQ(huge.notes.size(), 1);
    EXPECT_TRUE(huge.notes[0].contains(QStringLiteral("too large"))) << huge.notes[0].toStdString();
    EXPECT_FALSE(huge.store(chosen()));
    EXPECT_EQ(QFileInfo(huge.file).size(), kLargestSettingsFile * 64);

    // A settings "file" that is a folder is refused the same way.
    Store folder;
    ASSERT_TRUE(QDir().mkpath(folder.file));
    folder.restore();
    ASSERT_EQ(folder.notes.size(), 1);
    EXPECT_TRUE(folder.notes[0].contains(QStringLiteral("is not a file")));
}
