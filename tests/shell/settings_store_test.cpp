#include "shell/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace vessa;

namespace {
constexpr auto kRoot = RegistryRoot::LocalMachine;
}

TEST(RegKeys, ValuesSurviveAReopenWithEmptyTextStoredAsOneBlank) {
    QTemporaryDir dir;
    const QString file = dir.path() + QStringLiteral("/store.ini");
    {
        RegKeys keys(file);
        EXPECT_TRUE(keys.SetRegValue(kRoot, kSettingsKey, QStringLiteral("MainFormLeft"),
                                     QStringLiteral("15")));
        EXPECT_TRUE(
            keys.SetRegValue(kRoot, kPreferencesKey, QStringLiteral("FontName"), QString()));
    }
    RegKeys keys(file);
    EXPECT_EQ(keys.GetRegValue(kRoot, kSettingsKey, QStringLiteral("MainFormLeft")),
              QStringLiteral("15"));
    EXPECT_EQ(keys.GetRegValue(kRoot, kPreferencesKey, QStringLiteral("FontName")),
              QStringLiteral(" "));
    EXPECT_EQ(keys.GetRegValue(kRoot, kSettingsKey, QStringLiteral("Missing")), QString());
    EXPECT_EQ(keys.GetRegValue(kRoot, kPreferencesKey, QStringLiteral("MainFormLeft")), QString());
}

TEST(RegKeys, ValueNamesIgnoreCaseLikeRegistryNames) {
    QTemporaryDir dir;
    RegKeys keys(dir.path() + QStringLiteral("/store.ini"));
    keys.SetRegValue(kRoot, kSettingsKey, QStringLiteral("SoundTreePerc"), QStringLiteral("0.3"));
    keys.SetRegValue(kRoot, kSettingsKey, QStringLiteral("soundtreePerc"), QStringLiteral("0.35"));
    EXPECT_EQ(keys.GetRegValue(kRoot, kSettingsKey, QStringLiteral("SOUNDTREEPERC")),
              QStringLiteral("0.35"));
}

TEST(RegKeys, RecentFilesReadUpToTheFirstGapAndGoWithTheirKey) {
    QTemporaryDir dir;
    RegKeys keys(dir.path() + QStringLiteral("/store.ini"));
    keys.SetRegValue(kRoot, kRecentFilesKey, QStringLiteral("RecentFile1"), QStringLiteral("/w/a"));
    keys.SetRegValue(kRoot, kRecentFilesKey, QStringLiteral("RecentFile2"), QStringLiteral("/w/b"));
    keys.SetRegValue(kRoot, kRecentFilesKey, QStringLiteral("RecentFile4"), QStringLiteral("/w/d"));
    const auto files = ReadRecentFile(keys);
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[1], qMakePair(QStringLiteral("RecentFile2"), QStringLiteral("/w/b")));

    keys.SetRegValue(kRoot, kSettingsKey, QStringLiteral("MainFormTop"), QStringLiteral("0"));
    EXPECT_TRUE(keys.DeleteRegKey(kRoot, kRecentFilesKey));
    EXPECT_TRUE(ReadRecentFile(keys).isEmpty());
    EXPECT_EQ(keys.GetRegValue(kRoot, kSettingsKey, QStringLiteral("MainFormTop")),
              QStringLiteral("0"));
}

TEST(RegKeys, TheUserStoreFollowsXdgConfigHome) {
    QTemporaryDir dir;
    qputenv("XDG_CONFIG_HOME", dir.path().toLocal8Bit());
    RegKeys keys;
    EXPECT_TRUE(keys.fileName().startsWith(dir.path()));
}
