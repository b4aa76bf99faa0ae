/// A small picture in memory: what a thumbnail is made of.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessel::thumbnail {

/// Red, green, blue.
using Pixel = std::array<std::uint8_t, 3>;

/// Rows of pixels, top row first, nothing between them.
struct Image {
    Image(int columns, int rows, Pixel filling = {})
        : width(columns), height(rows),
          pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), filling)
    {
    }

    [[nodiscard]] Pixel& At(int x, int y)
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }

    int width;
    int height;
    std::vector<Pixel> pixels;
};

} // namespace tessel::thumbnail
