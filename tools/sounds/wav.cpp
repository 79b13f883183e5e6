#include "wav.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace sounds {

namespace {

// WAVE files are little-endian whatever the machine.
class LittleEndianWriter {
public:
    explicit LittleEndianWriter(std::ofstream& out) : out_(out) {}

    void text(std::string_view fourCharacters) { out_.write(fourCharacters.data(), 4); }
    void u16(std::uint16_t value) { bytes(value, 2); }
    void u32(std::uint32_t value) { bytes(value, 4); }

private:
    void bytes(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) {
            out_.put(char((value >> (8 * i)) & 0xffu));
        }
    }

    std::ofstream& out_;
};

} // namespace

bool writeWav(const std::filesystem::path& file, const std::vector<float>& samples, int rate) {
    constexpr std::uint16_t bytesPerSample = 2;
    const auto dataBytes = std::uint32_t(samples.size() * bytesPerSample);
    std::ofstream out(file, std::ios::binary);
    LittleEndianWriter write(out);
    write.text("RIFF");
    write.u32(36 + dataBytes);
    write.text("WAVE");
    write.text("fmt ");
    write.u32(16); // size of the format chunk
    write.u16(1);  // PCM
    write.u16(1);  // mono
    write.u32(std::uint32_t(rate));
    write.u32(std::uint32_t(rate) * bytesPerSample);
    write.u16(bytesPerSample); // bytes per frame
    write.u16(16);             // bits per sample
    write.text("data");
    write.u32(dataBytes);
    for (float sample : samples) {
        const long value = std::lround(std::clamp(sample, -1.0f, 1.0f) * 32767.0f);
        write.u16(std::uint16_t(std::int16_t(value)));
    }
    return bool(out);
}

} // namespace sounds
