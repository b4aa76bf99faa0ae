/// Looking at pixels of any paintable format, written apart from the code that paints them.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace testsupport {

/// A paintable format as the host names it.
struct PaintableFormat {
    std::string name; ///< the host constant without its prefix
    std::uint32_t sdkCode = 0;
    std::uint32_t code = 0; ///< image library
};

/// All of them, in the host's order.
[[nodiscard]] inline std::vector<PaintableFormat> PaintableFormats()
{
    std::vector<PaintableFormat> formats;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        if (code >> 24U == 0) {
            std::string name(info.constant);
            formats.push_back({.name = name.substr(name.find('_') + 1), .sdkCode = info.sdkCode, .code = code});
        }
    }
    return formats;
}

/// Bytes of a row without padding, from the layouts themselves.
[[nodiscard]] inline std::size_t RowLength(std::uint32_t code, std::uint32_t width)
{
    if ((code & pixmill::kBitV210) != 0) {
        return (std::size_t{width} + 5) / 6 * 16;
    }
    if ((code & pixmill::kBit422) != 0) {
        return (std::size_t{width} + 1) / 2 * 4;
    }
    return std::size_t{width} * ((code & pixmill::kBitFloat) != 0 ? 16 : 4);
}

/// The sample that shows how bright pixel x of a row is: luma, or green.
[[nodiscard]] inline double Brightness(const std::byte* row, std::uint32_t code, std::uint32_t x)
{
    const bool isYCbCr = (code & pixmill::kBitYCbCr) != 0;
    const bool isSwapped = (code & pixmill::kBitSwapped) != 0;
    if ((code & pixmill::kBitV210) != 0) {
        // Luma of a group are the samples 1, 3, 5 ... of twelve, three to a word from its lowest bit.
        const std::uint32_t sample = x % 6 * 2 + 1;
        std::uint32_t word = 0;
        std::memcpy(&word, row + x / 6 * 16 + sample / 3 * 4, 4);
        return word >> (10 * (sample % 3)) & 1023U;
    }
    if ((code & pixmill::kBit422) != 0) {
        return std::to_integer<int>(row[x * 2 + (isSwapped ? 0 : 1)]);
    }
    // BGRA: green is 1; ARGB: 2; VUYA: luma is 2.
    const std::size_t component = isYCbCr || isSwapped ? 2 : 1;
    if ((code & pixmill::kBitFloat) != 0) {
        float value = 0;
        std::memcpy(&value, row + (std::size_t{x} * 4 + component) * 4, 4);
        return value;
    }
    return std::to_integer<int>(row[std::size_t{x} * 4 + component]);
}

} // namespace testsupport
