#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace gallery_test {

inline std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::stringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);) {
        pieces.push_back(trimmed(piece));
    }
    return pieces;
}

// The body rows of the Markdown tables in a file, as lists of cells; header
// rows are told apart by their first cell, which names the column.
inline std::vector<std::vector<std::string>> tableRows(const std::filesystem::path& file,
                                                       const std::string& firstHeader) {
    std::ifstream in(file);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.size() < 2 || line.front() != '|' || line.back() != '|') {
            continue;
        }
        auto cells = split(line.substr(1, line.size() - 2), '|');
        if (cells.empty() || cells[0] == firstHeader || cells[0].starts_with("---")) {
            continue;
        }
        rows.push_back(std::move(cells));
    }
    return rows;
}

} // namespace gallery_test
