#pragma once

#include "reading/reader_process.h"

#include <AL/alc.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vessa::core {

// Plays sound files (.wav and what else libsndfile reads, read by the
// reader program: see ReaderProcess) through OpenAL. Without a sound device
// (no card, ALSOFT_DRIVERS=null in CI) it still reads and checks files, and
// plays nothing. A file read once, or refused once, is read again only when
// it changed. A loopback player mixes into
// memory instead of a device, so that tests can hear what was played.
//
// The player owns its device, context, sources and the buffers of every
// file it has read. OpenAL has one current context per process: the
// program uses the one shared player.
class SoundPlayer {
public:
    enum class Output { Device, Loopback };

    explicit SoundPlayer(Output output, ReaderProcess& reader = ReaderProcess::shared());
    ~SoundPlayer();
    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    // The process's player on the default device, opened on first use.
    static SoundPlayer& shared();

    bool audible() const { return context_ != nullptr; }
    // "" when the file can be played, else what is wrong with it.
    std::string check(const std::string& path);
    double seconds(const std::string& path);
    // volume 1 is the file as it is; "" or what is wrong with the file.
    std::string play(const std::string& path, double volume);

    // Loopback only: mixes the next frames of 16-bit stereo at kLoopbackRate.
    std::vector<short> render(int frames);
    static constexpr int kLoopbackRate = 22050;

private:
    struct Clip {
        unsigned int buffer = 0; // 0 when nothing can be heard
        double seconds = 0.0;
        std::string failure;
        std::optional<FileStamp> stamp;
    };
    const Clip& clip(const std::string& path);
    Clip read(const std::string& path);
    std::string refusal(const std::string& path, const ReaderProcess::Reply& reply) const;
    unsigned int freeSource();

    ReaderProcess& reader_;
    ALCdevice* device_ = nullptr;
    ALCcontext* context_ = nullptr;
    std::vector<unsigned int> sources_;
    size_t nextSource_ = 0;
    std::map<std::string, Clip> clips_;
};

} // namespace vessa::core
