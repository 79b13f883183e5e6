// Sound files through OpenAL: heard through a loopback device that mixes
// into memory, and silent but successful where there is no device. The
// device is open only while sounds are heard.
#include "sound/sound_player.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <fstream>
#include <numbers>
#include <thread>
#include <vector>

namespace vessa::core {
namespace {

void writeTone(const std::string& path, int channels, int frames = 22050) {
    SF_INFO info{};
    info.samplerate = 22050;
    info.channels = channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr);
    std::vector<short> samples(static_cast<size_t>(frames * channels));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<short>(
            12000 * std::sin(2 * std::numbers::pi * 440.0 *
                             static_cast<double>(i / static_cast<size_t>(channels)) / 22050));
    sf_writef_short(file, samples.data(), frames);
    sf_close(file);
}

double loudness(const std::vector<short>& mixed) {
    double sum = 0;
    for (short s : mixed)
        sum += std::abs(s);
    return sum / static_cast<double>(mixed.size());
}

class SoundPlayerTest : public ::testing::Test {
protected:
    std::string file(const char* name) const { return dir.filePath(name).toStdString(); }
    QTemporaryDir dir;
};

TEST_F(SoundPlayerTest, APlayedSoundIsHeardAtItsVolume) {
    SoundPlayer player(SoundPlayer::Output::Loopback);
    writeTone(file("tone.wav"), 1);
    EXPECT_LT(loudness(player.render(1024)), 1.0); // OpenAL dithers silence
    ASSERT_EQ(player.play(file("tone.wav"), 1.0), "");
    const double full = loudness(player.render(2048));
    EXPECT_GT(full, 2000.0);
    player.render(22050); // the sound ends
    EXPECT_LT(loudness(player.render(1024)), 1.0);
    ASSERT_EQ(player.play(file("tone.wav"), 0.25), "");
    const double quiet = loudness(player.render(2048));
    EXPECT_NEAR(quiet / full, 0.25, 0.08);
    EXPECT_NEAR(player.seconds(file("tone.wav")), 1.0, 1e-9);
}

// The closing thread closes the device once the quiet while has passed: the
// test waits for that to happen, however long the machine takes.
bool closesAfterAWhile(const SoundPlayer& player) {
    for (int waited = 0; waited < 3000 && player.deviceOpen(); ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return !player.deviceOpen();
}

TEST_F(SoundPlayerTest, TheDeviceIsOpenOnlyWhileSoundsAreHeardAndOpensAgainForTheNext) {
    SoundPlayer player(SoundPlayer::Output::Loopback, ReaderProcess::shared(),
                       std::chrono::milliseconds(20));
    writeTone(file("click.wav"), 1, 2205);
    ASSERT_EQ(player.check(file("click.wav")), "");
    EXPECT_FALSE(player.deviceOpen()); // reading a sound opens nothing
    for (int spell = 0; spell < 2; ++spell) {
        ASSERT_EQ(player.play(file("click.wav"), 1.0), "");
        EXPECT_TRUE(player.deviceOpen());
        EXPECT_GT(loudness(player.render(1024)), 2000.0) << "spell " << spell;
        player.render(4096); // the click ends
        EXPECT_TRUE(closesAfterAWhile(player)) << "spell " << spell;
        EXPECT_LT(loudness(player.render(1024)), 1.0);
    }
}

TEST_F(SoundPlayerTest, MissingAndBrokenFilesAreReportedAndStereoIsPlayed) {
    SoundPlayer player(SoundPlayer::Output::Loopback);
    std::ofstream(file("broken.wav")) << "RIFF but not really";
    EXPECT_NE(player.play(file("broken.wav"), 1.0).find("not a sound"), std::string::npos);
    EXPECT_NE(player.check(file("gone.wav")).find("There is no sound file"), std::string::npos);
    writeTone(file("stereo.wav"), 2);
    EXPECT_EQ(player.play(file("stereo.wav"), 1.0), "");
    EXPECT_GT(loudness(player.render(1024)), 1000.0);
}

TEST_F(SoundPlayerTest, WithoutASoundDeviceEveryCallSucceedsSilently) {
    // The tests run with ALSOFT_DRIVERS=null: a device that hears nothing.
    writeTone(file("tone.wav"), 1);
    SoundPlayer& shared = SoundPlayer::shared();
    EXPECT_EQ(shared.check(file("tone.wav")), "");
    EXPECT_EQ(shared.play(file("tone.wav"), 1.0), "");
}

} // namespace
} // namespace vessa::core
