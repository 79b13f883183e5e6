#include "sound/sound_player.h"

#include <AL/al.h>
#include <AL/alext.h>
#include <sndfile.h>

#include <algorithm>
#include <filesystem>

namespace vessa::core {

namespace {

constexpr int kSources = 16; // sounds heard at once; the oldest gives way

ALCdevice* openLoopback() {
    auto open = reinterpret_cast<LPALCLOOPBACKOPENDEVICESOFT>(
        alcGetProcAddress(nullptr, "alcLoopbackOpenDeviceSOFT"));
    return open ? open(nullptr) : nullptr;
}

} // namespace

SoundPlayer::SoundPlayer(Output output) {
    device_ = output == Output::Loopback ? openLoopback() : alcOpenDevice(nullptr);
    if (!device_)
        return;
    const ALCint loopbackFormat[] = {ALC_FORMAT_CHANNELS_SOFT,
                                     ALC_STEREO_SOFT,
                                     ALC_FORMAT_TYPE_SOFT,
                                     ALC_SHORT_SOFT,
                                     ALC_FREQUENCY,
                                     kLoopbackRate,
                                     0};
    context_ = alcCreateContext(device_, output == Output::Loopback ? loopbackFormat : nullptr);
    if (!context_ || !alcMakeContextCurrent(context_)) {
        if (context_)
            alcDestroyContext(context_);
        alcCloseDevice(device_);
        context_ = nullptr;
        device_ = nullptr;
        return;
    }
    sources_.resize(kSources);
    alGenSources(kSources, sources_.data());
}

SoundPlayer::~SoundPlayer() {
    if (!context_)
        return;
    alcMakeContextCurrent(context_);
    alDeleteSources(static_cast<ALsizei>(sources_.size()), sources_.data());
    for (auto& [path, clip] : clips_) {
        if (clip.buffer)
            alDeleteBuffers(1, &clip.buffer);
    }
    alcMakeContextCurrent(nullptr);
    alcDestroyContext(context_);
    alcCloseDevice(device_);
}

SoundPlayer& SoundPlayer::shared() {
    static SoundPlayer player(Output::Device);
    return player;
}

SoundPlayer::Clip SoundPlayer::read(const std::string& path) {
    Clip clip;
    if (!std::filesystem::is_regular_file(path)) {
        clip.failure = "There is no sound file " + path;
        return clip;
    }
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file || info.channels < 1 || info.channels > 2) {
        if (file)
            sf_close(file);
        clip.failure = path + " is not a sound Vessa47 can play: the file is broken, of another "
                              "kind, or has more than two channels";
        return clip;
    }
    std::vector<short> samples(static_cast<size_t>(info.frames * info.channels));
    const sf_count_t frames = sf_readf_short(file, samples.data(), info.frames);
    sf_close(file);
    clip.seconds = static_cast<double>(frames) / info.samplerate;
    if (context_) {
        alcMakeContextCurrent(context_);
        alGenBuffers(1, &clip.buffer);
        alBufferData(
            clip.buffer, info.channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16, samples.data(),
            static_cast<ALsizei>(frames * info.channels * static_cast<sf_count_t>(sizeof(short))),
            info.samplerate);
    }
    return clip;
}

const SoundPlayer::Clip& SoundPlayer::clip(const std::string& path) {
    auto found = clips_.find(path);
    if (found == clips_.end() || !found->second.failure.empty())
        found = clips_.insert_or_assign(path, read(path)).first;
    return found->second;
}

std::string SoundPlayer::check(const std::string& path) {
    return clip(path).failure;
}

double SoundPlayer::seconds(const std::string& path) {
    return clip(path).seconds;
}

unsigned int SoundPlayer::freeSource() {
    for (unsigned int source : sources_) {
        ALint state = AL_STOPPED;
        alGetSourcei(source, AL_SOURCE_STATE, &state);
        if (state != AL_PLAYING)
            return source;
    }
    nextSource_ = (nextSource_ + 1) % sources_.size();
    alSourceStop(sources_[nextSource_]);
    return sources_[nextSource_];
}

std::string SoundPlayer::play(const std::string& path, double volume) {
    const Clip& sound = clip(path);
    if (!sound.failure.empty() || !context_)
        return sound.failure;
    alcMakeContextCurrent(context_);
    const unsigned int source = freeSource();
    alSourcei(source, AL_BUFFER, static_cast<ALint>(sound.buffer));
    alSourcef(source, AL_GAIN, static_cast<float>(std::max(volume, 0.0)));
    alSourcePlay(source);
    return "";
}

std::vector<short> SoundPlayer::render(int frames) {
    std::vector<short> mixed(static_cast<size_t>(frames) * 2);
    auto mix = reinterpret_cast<LPALCRENDERSAMPLESSOFT>(
        alcGetProcAddress(device_, "alcRenderSamplesSOFT"));
    if (context_ && mix)
        mix(device_, mixed.data(), frames);
    return mixed;
}

} // namespace vessa::core
