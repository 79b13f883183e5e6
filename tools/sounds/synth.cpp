#include "synth.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace sounds {

namespace {

constexpr float twoPi = 2 * std::numbers::pi_v<float>;
constexpr float squareHarmonicsBelowHz = 4500;
constexpr float release = 0.012f; // every voice fades out over this, so none ends in a click

// Repeatable white noise, so that every build makes the same files.
class Noise {
public:
    float next() {
        state_ = state_ * 1664525u + 1013904223u;
        return float(state_ >> 8) / float(1u << 23) - 1.0f;
    }

private:
    std::uint32_t state_ = 22222u;
};

// A state-variable band-pass filter, tuned afresh at every sample.
class BandPass {
public:
    float next(float input, float centerHz) {
        const float f = 2 * std::sin(std::numbers::pi_v<float> * centerHz / sampleRate);
        low_ += f * band_;
        const float high = input - low_ - damping * band_;
        band_ += f * high;
        return band_;
    }

private:
    static constexpr float damping = 1.2f;
    float low_ = 0, band_ = 0;
};

float squareWave(float phase, float hz) {
    float sum = 0;
    for (int k = 1; float(k) * hz < squareHarmonicsBelowHz; k += 2) {
        sum += std::sin(float(k) * phase) / float(k);
    }
    return sum * 4 / std::numbers::pi_v<float>;
}

float envelope(const Voice& voice, float t) {
    const float swell = voice.attack > 0 ? std::min(1.0f, t / voice.attack) : 1.0f;
    const float fade =
        voice.decay > 0 ? std::exp(-std::max(0.0f, t - voice.attack) / voice.decay) : 1.0f;
    const float tail = std::clamp((voice.length - t) / release, 0.0f, 1.0f);
    return swell * fade * tail;
}

void addVoice(const Voice& voice, std::vector<float>& mix) {
    Noise noise;
    BandPass band, outerBand;
    const auto first = std::size_t(voice.start * sampleRate);
    const auto count = std::size_t(voice.length * sampleRate);
    float phase = 0;
    for (std::size_t i = 0; i < count && first + i < mix.size(); ++i) {
        const float t = float(i) / sampleRate;
        const float glide = voice.fromHz * std::pow(voice.toHz / voice.fromHz, t / voice.length);
        const float hz = glide * (1 + voice.vibratoDepth * std::sin(twoPi * voice.vibratoHz * t));
        phase = std::fmod(phase + twoPi * hz / sampleRate, twoPi);
        float sample = 0;
        switch (voice.wave) {
        case Wave::Sine:
            sample = std::sin(phase);
            break;
        case Wave::Triangle:
            sample = 2 / std::numbers::pi_v<float> * std::asin(std::sin(phase));
            break;
        case Wave::Square:
            sample = squareWave(phase, hz);
            break;
        case Wave::Noise:
            // Two filters in a row keep the hiss out of the band.
            sample = outerBand.next(band.next(noise.next(), hz), hz);
            break;
        }
        mix[first + i] += voice.level * envelope(voice, t) * sample;
    }
}

} // namespace

Voice Voice::fading(float seconds) const {
    Voice v = *this;
    v.decay = seconds;
    return v;
}

Voice Voice::swelling(float seconds) const {
    Voice v = *this;
    v.attack = seconds;
    return v;
}

Voice Voice::atLevel(float newLevel) const {
    Voice v = *this;
    v.level = newLevel;
    return v;
}

Voice Voice::wobbling(float hz, float depth) const {
    Voice v = *this;
    v.vibratoHz = hz;
    v.vibratoDepth = depth;
    return v;
}

Voice tone(Wave wave, float start, float length, float fromHz, float toHz) {
    return {wave, start, length, fromHz, toHz};
}

std::vector<float> render(const std::vector<Voice>& voices, float peak) {
    float end = 0;
    for (const auto& voice : voices) {
        end = std::max(end, voice.start + voice.length);
    }
    std::vector<float> mix(std::size_t(std::ceil(end * sampleRate)), 0.0f);
    for (const auto& voice : voices) {
        addVoice(voice, mix);
    }
    float loudest = 0;
    for (float sample : mix) {
        loudest = std::max(loudest, std::abs(sample));
    }
    if (loudest > 0) {
        for (float& sample : mix) {
            sample *= peak / loudest;
        }
    }
    return mix;
}

} // namespace sounds
