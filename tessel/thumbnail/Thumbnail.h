/// A clip as a picture of a few hundred pixels, for file managers.
#pragma once

#include "Image.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Picture.h>

#include <cstdint>
#include <filesystem>

namespace tessel::thumbnail {

/// How large a picture is shown.
struct Extent {
    int width;
    int height;
    bool operator==(const Extent&) const = default;
};

/// The largest extent inside a square of `size` pixels that shows pictures of that size with their own shape.
/// Never larger than the picture is shown at full size, never smaller than a pixel.
[[nodiscard]] Extent ExtentFor(std::int32_t width, std::int32_t height, qelmediatypes::PixelAspectRatio aspect,
                               int size);

/// A picture in the layout `Rgb24`, scaled: each pixel is the mean of what it covers, or, where it covers less
/// than a pixel, the nearest one.
[[nodiscard]] Image Scaled(const exporting::Picture& picture, Extent extent);

/// The clip's middle frame inside a square of `size` pixels.
/// @throws importhost::HostError, exporting::ExportError  where it cannot be painted
[[nodiscard]] Image ThumbnailOf(const document::OpenedClip& clip, int size);

/// Writes a PNG file. @throws exporting::ExportError
void WritePng(const Image& image, const std::filesystem::path& file);

} // namespace tessel::thumbnail
