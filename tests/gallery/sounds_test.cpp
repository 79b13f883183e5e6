// The sounds as the build leaves them in the home folder: each is a valid
// mono PCM file of the promised length that is heard, never clips and starts
// and ends without a click.
#include "readme_table.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <set>

using namespace gallery_test;

namespace {

const std::filesystem::path soundsFolder = std::filesystem::path(VESSA_HOME_DIR) / "Sounds";

struct PromisedSound {
    std::string name;
    bool forInterface;
};

void PrintTo(const PromisedSound& sound, std::ostream* out) {
    *out << sound.name;
}

std::vector<PromisedSound> promisedSounds() {
    std::vector<PromisedSound> sounds;
    for (const auto& cells : tableRows(SOUNDS_README, "Sound")) {
        if (cells.size() == 3) {
            sounds.push_back({cells[0], cells[1] == "Interface"});
        }
    }
    return sounds;
}

struct Recording {
    SF_INFO info{};
    std::vector<short> samples;
};

Recording readWav(const std::filesystem::path& file) {
    Recording recording;
    SNDFILE* sound = sf_open(file.c_str(), SFM_READ, &recording.info);
    if (!sound) {
        return recording;
    }
    recording.samples.resize(std::size_t(recording.info.frames * recording.info.channels));
    recording.samples.resize(std::size_t(
        sf_read_short(sound, recording.samples.data(), sf_count_t(recording.samples.size()))));
    sf_close(sound);
    return recording;
}

class Sound : public testing::TestWithParam<PromisedSound> {};

TEST_P(Sound, IsAShortMonoPcmFileThatIsHeardWithoutClippingOrClicks) {
    const auto file = soundsFolder / (GetParam().name + ".wav");
    const Recording recording = readWav(file);
    ASSERT_FALSE(recording.samples.empty()) << file << ": " << sf_strerror(nullptr);
    EXPECT_EQ(recording.info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(recording.info.channels, 1);
    EXPECT_EQ(recording.info.samplerate, 22050);
    EXPECT_EQ(recording.samples.size(), std::size_t(recording.info.frames));

    const double seconds = double(recording.info.frames) / recording.info.samplerate;
    EXPECT_GE(seconds, 0.03);
    EXPECT_LE(seconds, GetParam().forInterface ? 0.5 : 2.0);

    int loudest = 0;
    for (short sample : recording.samples) {
        loudest = std::max(loudest, std::abs(int(sample)));
    }
    EXPECT_LT(loudest, 32000) << "clips";
    EXPECT_GT(loudest, 32767 / 5) << "too quiet to hear";
    if (GetParam().forInterface) {
        EXPECT_LT(loudest, 32767 * 6 / 10) << "an interface sound must not be loud";
    }
    // A sound that jumps from or to silence clicks.
    const int edge =
        std::max(std::abs(int(recording.samples.front())), std::abs(int(recording.samples.back())));
    EXPECT_LT(edge, loudest / 10);
}

std::string testName(const testing::TestParamInfo<PromisedSound>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Sounds, Sound, testing::ValuesIn(promisedSounds()), testName);

TEST(Sounds, TheInterfaceHasEachOfItsSoundsAndTheFolderHoldsNoOthers) {
    std::set<std::string> interface, all;
    for (const auto& sound : promisedSounds()) {
        all.insert(sound.name + ".wav");
        if (sound.forInterface) {
            interface.insert(sound.name);
        }
    }
    const std::set<std::string> needed = {"Error",       "Undo",         "Copy",
                                          "RadioButton", "TreeCollapse", "TreeExpand",
                                          "TreeDrop",    "Selection",    "DoLine"};
    EXPECT_EQ(interface, needed);
    EXPECT_GE(all.size() - interface.size(), 12u) << "sounds for worlds";

    std::set<std::string> onDisk;
    for (const auto& entry : std::filesystem::directory_iterator(soundsFolder)) {
        onDisk.insert(entry.path().filename().string());
    }
    EXPECT_EQ(onDisk, all);
}

// Two sounds made from the same recipe by mistake would sound alike.
TEST(Sounds, AreAllDifferent) {
    std::set<std::vector<short>> seen;
    for (const auto& sound : promisedSounds()) {
        EXPECT_TRUE(seen.insert(readWav(soundsFolder / (sound.name + ".wav")).samples).second)
            << sound.name;
    }
}

} // namespace
