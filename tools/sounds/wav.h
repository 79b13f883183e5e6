#pragma once

#include <filesystem>
#include <vector>

namespace sounds {

// Writes samples in [-1, 1] as a mono, 16-bit PCM WAVE file.
bool writeWav(const std::filesystem::path& file, const std::vector<float>& samples, int rate);

} // namespace sounds
