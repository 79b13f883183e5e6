#pragma once

#include <string>
#include <vector>

namespace sounds {

constexpr int sampleRate = 22050;

enum class Wave {
    Sine,
    Triangle,
    Square, // soft: only the harmonics below a few kilohertz
    Noise,  // a band of noise around the voice's pitch
};

// One note or noise burst within a sound: it starts, glides from one pitch to
// another, swells in over its attack, fades away with its decay and always
// ends in silence.
struct Voice {
    Wave wave;
    float start;  // seconds into the sound
    float length; // seconds
    float fromHz;
    float toHz;
    float level = 1;
    float attack = 0.004f;  // seconds to full level
    float decay = 0;        // seconds for the level to fall to about a third; 0 holds it
    float vibratoHz = 0;    // a wobble of the pitch...
    float vibratoDepth = 0; // ...by this fraction of it

    Voice fading(float seconds) const;
    Voice swelling(float seconds) const;
    Voice atLevel(float newLevel) const;
    Voice wobbling(float hz, float depth) const;
};

Voice tone(Wave wave, float start, float length, float fromHz, float toHz);
inline Voice tone(Wave wave, float start, float length, float hz) {
    return tone(wave, start, length, hz, hz);
}

// A named sound and how loud its loudest moment is, as a fraction of full scale.
struct SoundRecipe {
    std::string name;
    float peak;
    std::vector<Voice> voices;
};

std::vector<SoundRecipe> interfaceSounds();
std::vector<SoundRecipe> sceneSounds();

// Mixes the voices and scales the result so that its loudest sample is
// `peak` of full scale.
std::vector<float> render(const std::vector<Voice>& voices, float peak);

} // namespace sounds
