/// What is compared: clips as documents, and which of their frames or sounds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace golden {

/// How much of a case is kept.
enum class Keep { Hash, HashAndPicture };

struct FrameCase {
    std::string name;     ///< also the picture's file name
    std::string document; ///< the text of a data file
    std::int64_t frame = 0;
    Keep keep = Keep::Hash;
};

struct SoundCase {
    std::string name;
    std::string document;
    std::int32_t channels = 0;
    std::int32_t blocks = 0; ///< of 0.1 s, from the clip's start
};

/// All of the host's formats in all render formats, in an even and an odd size; a dozen pictures to look at.
/// @param samples  The folder of the sample documents, for the chart.
[[nodiscard]] std::vector<FrameCase> FrameCases(const std::filesystem::path& samples);

/// Each tone and identification.
[[nodiscard]] std::vector<SoundCase> SoundCases();

} // namespace golden
