#pragma once

#include "reading/reader_process.h"

#include <AL/alc.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vessa::core {

// Plays sound files (.wav and what else libsndfile reads, read by the
// reader program: see ReaderProcess) through OpenAL. Without a sound device
// (no card, ALSOFT_DRIVERS=null in CI) it still reads and checks files, and
// plays nothing. A file read once, or refused once, is read again only when
// it changed. A loopback player mixes into memory instead of a device, so
// that tests can hear what was played.
//
// OpenAL's mixer works on while its device is open, even when nothing plays,
// so the device is open only while sounds are heard: a sound opens it, and a
// thread of the player closes it once nothing has played for quietWhile.
// That thread sleeps until then and while the device is closed.
//
// The player owns its device, context, sources, the samples of every file it
// has read and, while the device is open, their buffers. OpenAL has one
// current context per process: the program uses the one shared player.
class SoundPlayer {
public:
    enum class Output { Device, Loopback };
    static constexpr std::chrono::milliseconds kQuietWhile{10000};

    explicit SoundPlayer(Output output, ReaderProcess& reader = ReaderProcess::shared(),
                         std::chrono::milliseconds quietWhile = kQuietWhile);
    ~SoundPlayer();
    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    // The process's player on the default device.
    static SoundPlayer& shared();

    bool deviceOpen() const;
    // "" when the file can be played, else what is wrong with it.
    std::string check(const std::string& path);
    double seconds(const std::string& path);
    // volume 1 is the file as it is; "" or what is wrong with the file.
    std::string play(const std::string& path, double volume);

    // Loopback only: mixes the next frames of 16-bit stereo at kLoopbackRate
    // (silence while the device is closed).
    std::vector<short> render(int frames);
    static constexpr int kLoopbackRate = 22050;

private:
    using Clock = std::chrono::steady_clock;
    struct Clip {
        std::vector<std::int16_t> samples;
        int channels = 1;
        int rate = 0;
        unsigned int buffer = 0; // while the device is open and the clip has played
        double seconds = 0.0;
        std::string failure;
        std::optional<FileStamp> stamp;
    };
    Clip& clip(const std::string& path);
    Clip read(const std::string& path);
    std::string refusal(const std::string& path, const ReaderProcess::Reply& reply) const;
    bool open();
    void close();
    bool anyPlaying() const;
    unsigned int freeSource();
    void closeWhenQuiet();

    const Output output_;
    ReaderProcess& reader_;
    const Clock::duration quietWhile_;
    ALCdevice* device_ = nullptr;
    ALCcontext* context_ = nullptr;
    bool noDevice_ = false; // one could not be opened: the player is silent
    std::vector<unsigned int> sources_;
    size_t nextSource_ = 0;
    std::map<std::string, Clip> clips_;
    std::optional<Clock::time_point> closeAt_; // set while the device is open
    bool ending_ = false;
    std::condition_variable wake_;
    std::thread closer_; // last: it uses the rest
};

} // namespace vessa::core
