/// Frames as pictures that one can look at.
#pragma once

#include <kestrel/importhost/Frame.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace golden {

/// 8-bit R'G'B', three bytes a pixel, top row first.
struct Picture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> rgb;
    bool operator==(const Picture&) const = default;
};

/// A frame of any paintable format, clamped to 0..255; alpha is left out, linear light is shown as it is.
[[nodiscard]] Picture PictureOf(const importhost::Frame& frame);

/// Absolute differences, eight times as strong; sizes must agree.
[[nodiscard]] Picture Difference(const Picture& a, const Picture& b);

/// Through ffmpeg; false or nothing where it is not installed or fails. @{
[[nodiscard]] bool WritePng(const std::filesystem::path& file, const Picture& picture);
[[nodiscard]] std::optional<Picture> ReadPng(const std::filesystem::path& file, std::int32_t width,
                                             std::int32_t height);
/// @}

} // namespace golden
