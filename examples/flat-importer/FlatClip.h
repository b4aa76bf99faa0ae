/// The clips of the flat importer, and the text that describes one:
///
///     # One hundred frames of a quiet blue.
///     size 1920 1080
///     rate 25 1
///     frames 100
///     color 0.2 0.4 0.6 1
#pragma once

#include <kestrel/qelcore/logging/Log.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>

/// One open clip: what its file says. The host carries it from request to request.
struct FlatClip {
    std::int32_t width = 1920;
    std::int32_t height = 1080;
    std::int32_t timeScale = 25; // timeScale / sampleSize frames a second
    std::int32_t sampleSize = 1;
    std::int32_t frameCount = 250;
    std::array<float, 4> color{0.5F, 0.5F, 0.5F, 1.0F}; // blue, green, red, alpha

    [[nodiscard]] bool IsValid() const
    {
        return std::clamp(width, 1, 100'000) == width && std::clamp(height, 1, 100'000) == height &&
               timeScale > 0 && sampleSize > 0 && frameCount >= 0 &&
               frameCount <= std::numeric_limits<std::int32_t>::max() / sampleSize;
    }
};

/// A clip from lines such as "size 1920 1080". A wrong line is logged, and the clip keeps its defaults.
inline FlatClip ParseClip(const std::string& text)
{
    FlatClip clip;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::istringstream words(line);
        words.imbue(std::locale::classic()); // 0.5 whatever the user's language
        std::string key;
        if (!(words >> key) || key.front() == '#') {
            continue;
        }
        if (key == "size") {
            words >> clip.width >> clip.height;
        } else if (key == "rate") {
            words >> clip.timeScale >> clip.sampleSize;
        } else if (key == "frames") {
            words >> clip.frameCount;
        } else if (key == "color") {
            words >> clip.color[2] >> clip.color[1] >> clip.color[0] >> clip.color[3];
        } else {
            words.setstate(std::ios::failbit);
        }
        if (words.fail() || !(words >> std::ws).eof() || !clip.IsValid()) {
            qelcore::logging::Log("FlatImporter", "line " + std::to_string(number) + " is \"" + line +
                                                      "\", expected size WIDTH HEIGHT, rate UNITS_PER_SECOND "
                                                      "UNITS_PER_FRAME, frames COUNT or color R G B A");
            return {};
        }
    }
    return clip;
}

/// The text of a clip's file; nothing where the file cannot be read.
inline std::optional<std::string> ReadText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open() || std::filesystem::is_directory(path)) { // a folder can be opened, but not read
        return std::nullopt;
    }
    // The stream's own functions would call a failed allocation an unreadable file.
    return std::string(std::istreambuf_iterator<char>(file), {});
}
