#include "reading/description.h"
#include "reading/file_describers.h"

#include <sndfile.h>

#include <memory>
#include <vector>

namespace vessa::core {

std::string describeSoundFile(const std::string& path) {
    SF_INFO info{};
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path.c_str(), SFM_READ, &info),
                                                     &sf_close);
    if (!file || info.channels < 1 || info.samplerate < 1 || info.samplerate > 1'000'000)
        return refusalAnswer(Answer::NotRead);
    if (info.channels > 2)
        return refusalAnswer(Answer::TooManyChannels);
    SoundDescription sound;
    sound.channels = static_cast<std::uint32_t>(info.channels);
    sound.rate = static_cast<std::uint32_t>(info.samplerate);
    // The header's count of frames is not trusted: the samples are read
    // until there are no more.
    constexpr sf_count_t kFramesAtOnce = 8192;
    std::vector<std::int16_t> chunk(static_cast<size_t>(kFramesAtOnce * info.channels));
    for (;;) {
        const sf_count_t frames = sf_readf_short(file.get(), chunk.data(), kFramesAtOnce);
        if (frames <= 0)
            break;
        sound.samples.insert(sound.samples.end(), chunk.begin(),
                             chunk.begin() + static_cast<std::ptrdiff_t>(frames * info.channels));
        if (sound.samples.size() * sizeof(std::int16_t) > kMaxAnswerBytes)
            return refusalAnswer(Answer::TooBig);
    }
    return soundAnswer(sound);
}

} // namespace vessa::core
