#include "reading/formats.h"

#include <cctype>
#include <filesystem>

namespace vessa::core {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string lowerExtension(const std::string& path) {
    std::string ext = std::filesystem::path(path).extension().string();
    if (!ext.empty())
        ext.erase(0, 1);
    return lowerCase(ext);
}

std::string modelFormatsInWords() {
    std::string words;
    for (std::size_t i = 0; i < kModelFormats.size(); ++i) {
        words += i == 0 ? "" : i + 1 == kModelFormats.size() ? " or " : ", ";
        words += "." + std::string(kModelFormats[i]);
    }
    return words;
}

} // namespace vessa::core
