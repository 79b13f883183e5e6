// The synthesiser: voices sound at their pitch, glide the way they say, come
// in at their time, fade, and end in silence.
#include "sounds/synth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

using namespace sounds;

namespace {

// Zero crossings per second over a stretch of the sound: twice the pitch of a tone.
double crossingsPerSecond(const std::vector<float>& samples, double from, double to) {
    const auto first = std::size_t(from * sampleRate), last = std::size_t(to * sampleRate);
    int crossings = 0;
    for (std::size_t i = first + 1; i < last; ++i) {
        crossings += (samples[i - 1] < 0) != (samples[i] < 0) ? 1 : 0;
    }
    return crossings / (to - from);
}

double loudness(const std::vector<float>& samples, double from, double to) {
    double sum = 0;
    const auto first = std::size_t(from * sampleRate), last = std::size_t(to * sampleRate);
    for (std::size_t i = first; i < last; ++i) {
        sum += samples[i] * samples[i];
    }
    return std::sqrt(sum / double(last - first));
}

float peakOf(const std::vector<float>& samples) {
    float peak = 0;
    for (float s : samples) {
        peak = std::max(peak, std::abs(s));
    }
    return peak;
}

TEST(Synth, AToneSoundsAtItsPitchAndIsScaledToThePeak) {
    const auto samples = render({tone(Wave::Sine, 0, 1, 440)}, 0.5f);
    EXPECT_EQ(samples.size(), std::size_t(sampleRate));
    EXPECT_NEAR(crossingsPerSecond(samples, 0.1, 0.9), 880, 5);
    EXPECT_NEAR(peakOf(samples), 0.5f, 1e-4f);
}

// A glide is even in musical steps, so from 200 to 800 Hz the last eighth is
// about 2.8 times as high as the first.
TEST(Synth, AGlideMovesThePitchTheWayItSays) {
    const auto rising = render({tone(Wave::Triangle, 0, 1, 200, 800)}, 0.5f);
    EXPECT_GT(crossingsPerSecond(rising, 0.8, 0.95), 2.5 * crossingsPerSecond(rising, 0.05, 0.2));
    const auto falling = render({tone(Wave::Square, 0, 1, 800, 200)}, 0.5f);
    EXPECT_LT(crossingsPerSecond(falling, 0.8, 0.95), crossingsPerSecond(falling, 0.05, 0.2) / 2.5);
}

TEST(Synth, AVoiceComesInAtItsTimeFadesAndEndsInSilence) {
    const auto samples = render({tone(Wave::Sine, 0.2f, 0.6f, 300).fading(0.1f)}, 0.8f);
    EXPECT_EQ(samples.size(), std::size_t(0.8 * sampleRate));
    EXPECT_EQ(loudness(samples, 0, 0.19), 0);
    EXPECT_GT(loudness(samples, 0.2, 0.3), 5 * loudness(samples, 0.6, 0.7));
    EXPECT_LT(std::abs(samples.back()), 1e-3f);
}

TEST(Synth, NoiseStaysInItsBand) {
    const auto low = render({tone(Wave::Noise, 0, 0.5f, 300)}, 0.5f);
    const auto high = render({tone(Wave::Noise, 0, 0.5f, 3000)}, 0.5f);
    EXPECT_GT(crossingsPerSecond(high, 0.1, 0.4), 4 * crossingsPerSecond(low, 0.1, 0.4));
}

// The tree's sounds say which way it went: up as a branch opens, down as it closes.
TEST(Synth, ExpandingRisesAndCollapsingFalls) {
    std::map<std::string, std::vector<float>> byName;
    for (const auto& recipe : interfaceSounds()) {
        byName[recipe.name] = render(recipe.voices, recipe.peak);
    }
    const auto& expand = byName.at("TreeExpand");
    const auto& collapse = byName.at("TreeCollapse");
    EXPECT_GT(crossingsPerSecond(expand, 0.06, 0.09), crossingsPerSecond(expand, 0.0, 0.03));
    EXPECT_LT(crossingsPerSecond(collapse, 0.06, 0.09), crossingsPerSecond(collapse, 0.0, 0.03));
}

} // namespace
