#include "sound/sound_player.h"

#include <AL/al.h>
#include <AL/alext.h>

#include "reading/description.h"

#include <algorithm>
#include <mutex>

namespace vessa::core {

namespace {

constexpr int kSources = 16; // sounds heard at once; the oldest gives way

// OpenAL's current context belongs to the process: every player's calls, from
// whichever thread, take turns.
std::mutex& openAlTurn() {
    static std::mutex turn;
    return turn;
}

ALCdevice* openLoopback() {
    auto open = reinterpret_cast<LPALCLOOPBACKOPENDEVICESOFT>(
        alcGetProcAddress(nullptr, "alcLoopbackOpenDeviceSOFT"));
    return open ? open(nullptr) : nullptr;
}

} // namespace

SoundPlayer::SoundPlayer(Output output, ReaderProcess& reader, std::chrono::milliseconds quietWhile)
    : output_(output), reader_(reader), quietWhile_(quietWhile),
      closer_([this] { closeWhenQuiet(); }) {
}

SoundPlayer::~SoundPlayer() {
    {
        std::lock_guard turn(openAlTurn());
        ending_ = true;
    }
    wake_.notify_all();
    closer_.join();
    std::lock_guard turn(openAlTurn());
    close();
}

SoundPlayer& SoundPlayer::shared() {
    static SoundPlayer player(Output::Device);
    return player;
}

bool SoundPlayer::deviceOpen() const {
    std::lock_guard turn(openAlTurn());
    return device_ != nullptr;
}

bool SoundPlayer::open() {
    if (context_)
        return true;
    if (noDevice_)
        return false;
    device_ = output_ == Output::Loopback ? openLoopback() : alcOpenDevice(nullptr);
    noDevice_ = !device_;
    if (!device_)
        return false;
    const ALCint loopbackFormat[] = {ALC_FORMAT_CHANNELS_SOFT,
                                     ALC_STEREO_SOFT,
                                     ALC_FORMAT_TYPE_SOFT,
                                     ALC_SHORT_SOFT,
                                     ALC_FREQUENCY,
                                     kLoopbackRate,
                                     0};
    context_ = alcCreateContext(device_, output_ == Output::Loopback ? loopbackFormat : nullptr);
    if (!context_ || !alcMakeContextCurrent(context_)) {
        if (context_)
            alcDestroyContext(context_);
        alcCloseDevice(device_);
        context_ = nullptr;
        device_ = nullptr;
        noDevice_ = true;
        return false;
    }
    sources_.resize(kSources);
    alGenSources(kSources, sources_.data());
    return true;
}

// The buffers go with the device; the samples stay for the next time.
void SoundPlayer::close() {
    if (!context_)
        return;
    alcMakeContextCurrent(context_);
    alDeleteSources(static_cast<ALsizei>(sources_.size()), sources_.data());
    sources_.clear();
    for (auto& [path, clip] : clips_) {
        if (clip.buffer)
            alDeleteBuffers(1, &clip.buffer);
        clip.buffer = 0;
    }
    alcMakeContextCurrent(nullptr);
    alcDestroyContext(context_);
    alcCloseDevice(device_);
    context_ = nullptr;
    device_ = nullptr;
    closeAt_.reset();
}

bool SoundPlayer::anyPlaying() const {
    alcMakeContextCurrent(context_);
    return std::any_of(sources_.begin(), sources_.end(), [](unsigned int source) {
        ALint state = AL_STOPPED;
        alGetSourcei(source, AL_SOURCE_STATE, &state);
        return state == AL_PLAYING;
    });
}

// The closing thread: asleep while the device is closed, and until the
// quiet while after the last sound has passed.
void SoundPlayer::closeWhenQuiet() {
    std::unique_lock turn(openAlTurn());
    while (!ending_) {
        if (!closeAt_)
            wake_.wait(turn);
        else if (Clock::now() < *closeAt_)
            wake_.wait_until(turn, *closeAt_);
        else if (anyPlaying())
            closeAt_ = Clock::now() + quietWhile_;
        else
            close();
    }
}

SoundPlayer::Clip SoundPlayer::read(const std::string& path) {
    Clip clip;
    clip.stamp = stampOf(path);
    if (!clip.stamp) {
        clip.failure = "There is no sound file " + path;
        return clip;
    }
    const ReaderProcess::Reply reply = reader_.read(FileKind::Sound, path);
    auto sound = reply.outcome == Outcome::Answered ? decodeSound(reply.answer) : std::nullopt;
    if (!sound) {
        clip.failure = refusal(path, reply);
        return clip;
    }
    clip.channels = sound->channels;
    clip.rate = sound->rate;
    clip.seconds = static_cast<double>(sound->samples.size() / sound->channels) / sound->rate;
    clip.samples = std::move(sound->samples);
    return clip;
}

std::string SoundPlayer::refusal(const std::string& path, const ReaderProcess::Reply& reply) const {
    const auto answer = answerKind(reply.answer);
    if (reply.outcome == Outcome::Lost)
        return "Vessa47 can't play sounds: its file reader is missing or could not start";
    if (reply.outcome == Outcome::TookTooLong)
        return path + " took too long to read: it is damaged, or is not a sound Vessa47 can play";
    if (reply.outcome == Outcome::TooBig || answer == Answer::TooBig)
        return path + " is too long for Vessa47 to play";
    if (answer == Answer::TooManyChannels)
        return path + " has more than two channels: Vessa47 plays sounds of one or two channels";
    return path + " is damaged, or is not a sound Vessa47 can play";
}

// A sound that was refused is read again once its file has changed.
SoundPlayer::Clip& SoundPlayer::clip(const std::string& path) {
    auto found = clips_.find(path);
    if (found == clips_.end() || (!found->second.failure.empty() &&
                                  (!found->second.stamp || found->second.stamp != stampOf(path))))
        found = clips_.insert_or_assign(path, read(path)).first;
    return found->second;
}

std::string SoundPlayer::check(const std::string& path) {
    std::lock_guard turn(openAlTurn());
    return clip(path).failure;
}

double SoundPlayer::seconds(const std::string& path) {
    std::lock_guard turn(openAlTurn());
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
    {
        std::lock_guard turn(openAlTurn());
        Clip& sound = clip(path);
        if (!sound.failure.empty() || !open())
            return sound.failure;
        alcMakeContextCurrent(context_);
        if (!sound.buffer) {
            alGenBuffers(1, &sound.buffer);
            alBufferData(sound.buffer, sound.channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16,
                         sound.samples.data(),
                         static_cast<ALsizei>(sound.samples.size() * sizeof(std::int16_t)),
                         static_cast<ALsizei>(sound.rate));
        }
        const unsigned int source = freeSource();
        alSourcei(source, AL_BUFFER, static_cast<ALint>(sound.buffer));
        alSourcef(source, AL_GAIN, static_cast<float>(std::max(volume, 0.0)));
        alSourcePlay(source);
        const auto quietFrom = Clock::now() +
                               std::chrono::duration_cast<Clock::duration>(
                                   std::chrono::duration<double>(sound.seconds)) +
                               quietWhile_;
        closeAt_ = std::max(closeAt_.value_or(quietFrom), quietFrom);
    }
    wake_.notify_all();
    return "";
}

std::vector<short> SoundPlayer::render(int frames) {
    std::vector<short> mixed(static_cast<size_t>(frames) * 2);
    std::lock_guard turn(openAlTurn());
    if (!context_)
        return mixed;
    auto mix = reinterpret_cast<LPALCRENDERSAMPLESSOFT>(
        alcGetProcAddress(device_, "alcRenderSamplesSOFT"));
    if (mix)
        mix(device_, mixed.data(), frames);
    return mixed;
}

} // namespace vessa::core
