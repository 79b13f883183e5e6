// What each sound is made of. Interface sounds are quiet and short; sounds
// for worlds may be longer and louder.
#include "synth.h"

namespace sounds {

namespace {

using enum Wave;

constexpr float interfacePeak = 0.45f;
constexpr float scenePeak = 0.8f;

// Notes of the scale, in hertz.
constexpr float C5 = 523.25f, E5 = 659.26f, G5 = 783.99f, C6 = 1046.5f, E6 = 1318.5f, G6 = 1568.0f,
                C7 = 2093.0f;

// Evenly spaced repeats of the same few voices, as steps or knocks.
std::vector<Voice> repeated(const std::vector<Voice>& once, int times, float every) {
    std::vector<Voice> all;
    for (int i = 0; i < times; ++i) {
        for (Voice voice : once) {
            voice.start += every * float(i);
            all.push_back(voice);
        }
    }
    return all;
}

// A struck bell: a tone with two higher, quicker partials, leaving out any
// too high to be played at this sample rate.
std::vector<Voice> bell(float start, float hz, float length) {
    struct Partial {
        float ratio, level, lengthShare, decayShare;
    };
    std::vector<Voice> voices;
    for (const Partial& p : {Partial{1, 1, 1, 1.0f / 3}, Partial{2.76f, 0.25f, 0.6f, 1.0f / 8},
                             Partial{5.4f, 0.1f, 0.4f, 1.0f / 16}}) {
        if (hz * p.ratio < 9000) {
            voices.push_back(tone(Sine, start, length * p.lengthShare, hz * p.ratio)
                                 .fading(length * p.decayShare)
                                 .atLevel(p.level));
        }
    }
    return voices;
}

std::vector<Voice> joined(std::vector<std::vector<Voice>> parts) {
    std::vector<Voice> all;
    for (const auto& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

} // namespace

std::vector<SoundRecipe> interfaceSounds() {
    return {
        {"Error",
         interfacePeak,
         {tone(Triangle, 0, 0.14f, 392, 370).fading(0.1f),
          tone(Triangle, 0.16f, 0.22f, 311, 294).fading(0.12f)}},
        {"Undo", interfacePeak, {tone(Sine, 0, 0.14f, 880, 523).fading(0.07f)}},
        {"Copy",
         interfacePeak,
         {tone(Sine, 0, 0.06f, 784).fading(0.04f), tone(Sine, 0.07f, 0.09f, 1175).fading(0.05f)}},
        {"RadioButton",
         interfacePeak,
         {tone(Sine, 0, 0.05f, 1400).fading(0.015f),
          tone(Triangle, 0, 0.05f, 700).fading(0.015f).atLevel(0.3f)}},
        {"TreeCollapse", interfacePeak, {tone(Sine, 0, 0.1f, 660, 440).fading(0.05f)}},
        {"TreeExpand", interfacePeak, {tone(Sine, 0, 0.1f, 440, 660).fading(0.05f)}},
        {"TreeDrop",
         interfacePeak,
         {tone(Sine, 0, 0.16f, 220, 110).fading(0.05f),
          tone(Triangle, 0, 0.08f, 440).fading(0.02f).atLevel(0.3f)}},
        {"Selection", interfacePeak, {tone(Triangle, 0, 0.035f, 1760).fading(0.01f)}},
        {"DoLine",
         interfacePeak,
         {tone(Sine, 0, 0.32f, C6).fading(0.1f),
          tone(Sine, 0, 0.2f, C7).fading(0.05f).atLevel(0.3f)}},
    };
}

std::vector<SoundRecipe> sceneSounds() {
    return {
        {"Boing", scenePeak, {tone(Sine, 0, 0.75f, 120, 260).fading(0.3f).wobbling(9, 0.25f)}},
        {"Pop",
         scenePeak,
         {tone(Sine, 0, 0.08f, 900, 250).fading(0.025f),
          tone(Noise, 0, 0.025f, 2000).fading(0.008f).atLevel(2)}},
        {"Whoosh",
         scenePeak,
         {tone(Noise, 0, 0.35f, 400, 2000).swelling(0.3f),
          tone(Noise, 0.3f, 0.4f, 2000, 500).fading(0.12f)}},
        {"Ding", scenePeak, bell(0, E6, 1.5f)},
        {"Drum",
         scenePeak,
         {tone(Sine, 0, 0.5f, 150, 55).fading(0.15f),
          tone(Noise, 0, 0.08f, 1200).fading(0.03f).atLevel(1.5f)}},
        {"Laser", scenePeak, {tone(Square, 0, 0.3f, 1800, 250).fading(0.2f)}},
        {"Splash", scenePeak,
         joined({{tone(Noise, 0, 0.6f, 2500, 700).fading(0.2f)},
                 repeated({tone(Sine, 0.15f, 0.05f, 900, 1600).fading(0.02f).atLevel(0.3f)}, 3,
                          0.13f)})},
        {"Footsteps", scenePeak,
         repeated({tone(Noise, 0, 0.09f, 350).fading(0.03f).atLevel(2),
                   tone(Sine, 0, 0.08f, 90).fading(0.03f).atLevel(0.6f)},
                  4, 0.35f)},
        {"Honk", scenePeak,
         repeated({tone(Square, 0, 0.25f, 415).swelling(0.02f),
                   tone(Square, 0, 0.25f, 523).swelling(0.02f).atLevel(0.7f)},
                  2, 0.35f)},
        {"Chime", scenePeak,
         joined({bell(0, C6, 1.0f), bell(0.12f, E6, 1.0f), bell(0.24f, G6, 1.0f),
                 bell(0.36f, C7, 1.0f)})},
        {"Buzz",
         scenePeak,
         {tone(Square, 0, 1.2f, 180).swelling(0.1f).wobbling(7, 0.04f),
          tone(Square, 0, 1.2f, 183).swelling(0.1f).wobbling(6, 0.04f).atLevel(0.6f)}},
        {"Tada", scenePeak,
         joined({{tone(Triangle, 0, 0.15f, C5).fading(0.08f),
                  tone(Triangle, 0, 0.15f, E5).fading(0.08f),
                  tone(Triangle, 0, 0.15f, G5).fading(0.08f)},
                 {tone(Triangle, 0.2f, 1.0f, C5).fading(0.5f).wobbling(5, 0.005f),
                  tone(Triangle, 0.2f, 1.0f, E5).fading(0.5f).wobbling(5, 0.005f),
                  tone(Triangle, 0.2f, 1.0f, G5).fading(0.5f).wobbling(5, 0.005f),
                  tone(Triangle, 0.2f, 1.0f, C6).fading(0.5f).wobbling(5, 0.005f)}})},
        {"Tweet", scenePeak,
         joined({repeated({tone(Sine, 0, 0.07f, 2500, 4200).fading(0.04f)}, 3, 0.1f),
                 {tone(Sine, 0.35f, 0.15f, 3000, 2200).fading(0.08f)}})},
        {"Knock", scenePeak,
         repeated({tone(Sine, 0, 0.07f, 180, 120).fading(0.02f),
                   tone(Noise, 0, 0.03f, 900).fading(0.01f).atLevel(1.5f)},
                  3, 0.18f)},
    };
}

} // namespace sounds
