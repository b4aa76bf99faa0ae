/// What one pixel of a frame holds: codes, values, and where it lies in the plug-in's memory.
#pragma once

#include <tessel/export/convert/FrameView.h>
#include <tessel/export/convert/PixelKind.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tessel::view {

/// One component of a pixel.
struct ComponentReading {
    std::string name;      ///< "Y'", "Cb", "R'", "A"; "R" in linear light
    std::int64_t code = 0; ///< as it is stored; without meaning for floats
    bool isFloat = false;
    /// R'G'B', Y' and alpha from 0 to 1, chroma from -0.5 to 0.5; floats as they are stored.
    double value = 0;
    std::size_t offset = 0; ///< first byte of it, or of the 32-bit word that holds it, in the frame's memory
    int bitOffset = 0;      ///< in that word, from the lowest bit; for v210 alone
};

struct PixelReading {
    int x = 0;
    int y = 0;
    std::vector<ComponentReading> components; ///< Y', Cb, Cr or R', G', B', and alpha where the format has it
    std::size_t offset = 0;          ///< first byte of the pixel's group, from the frame's lowest address
    std::vector<std::uint8_t> bytes; ///< of the group: one pixel, a pair in 4:2:2, six pixels in v210
    int groupPixels = 1;
    bool isBottomUp = false; ///< memory begins with the bottom row
};

/// @param frame  as painted
/// @param x, y   inside the frame, from its top left corner
/// @throws exporting::ExportError  for a format that frames never have
[[nodiscard]] PixelReading ReadPixel(const exporting::FrameView& frame, int x, int y);

/// One line: "960, 540   Y' 502 (0.500)  Cb 512 (0.000)  Cr 512 (0.000)   byte 2764800: 00 08 e0 ..."
[[nodiscard]] std::string TextOf(const PixelReading& pixel);

} // namespace tessel::view
