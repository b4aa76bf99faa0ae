/// From R'G'B' to codes and back.
#pragma once

#include <array>

namespace tessel::verify::judge {

/// Three components: R', G', B' in 0..1, or codes in 8-bit units (a 10-bit code divided by 4).
using Triple = std::array<double, 3>;

/// How codes are made from R'G'B'.
struct Coding {
    bool isRgb = false;
    int matrix = 1; ///< H.273; without meaning for R'G'B' codes
    bool isFull = false;
    bool isFloat = false; ///< values outside black to white are kept
};

/// Codes in 8-bit units, not rounded and not clipped (BT.601-7, BT.709-6, BT.2020-2, SMPTE 240M). @{
[[nodiscard]] Triple Encode(const Coding& coding, const Triple& rgb) noexcept;
[[nodiscard]] Triple Decode(const Coding& coding, const Triple& codes) noexcept;
/// @}

/// The sum of the squared differences of the components.
[[nodiscard]] double SquaredDistance(const Triple& a, const Triple& b) noexcept;

} // namespace tessel::verify::judge
