/// Pixel formats by the names that people use for their layouts: "v210" whatever its matrix is.
#pragma once

#include <kestrel/brindle/PixelFormat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::document {

/// The matrix in which a format's Y'CbCr is painted.
enum class PixelMatrix : std::uint8_t { None, Bt601, Bt709 };

[[nodiscard]] PixelMatrix MatrixOf(BR::PixelFormat format) noexcept;

/// Formats that differ by their matrix alone.
struct PixelLayout {
    std::string name;                      ///< "v210", "bgra-float"
    BR::PixelFormat with601;               ///< also of a layout without a choice
    BR::PixelFormat with709;               ///< the same where there is no choice
    std::vector<std::string_view> formats; ///< the host's names
};

/// Made from the host's list, in its order.
[[nodiscard]] std::vector<PixelLayout> AllPixelLayouts();

/// The matrix of a Y'CbCr colour space as far as pixel formats know it.
/// @param code  the space's matrix by ITU-T H.273
[[nodiscard]] PixelMatrix MatrixOfSpace(std::int32_t code) noexcept;

} // namespace tessel::document
