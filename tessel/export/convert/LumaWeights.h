/// How much of each colour is in luma, by the matrix of Y'CbCr.
#pragma once

#include "PixelKind.h"

namespace tessel::exporting {

/// Shares of red and blue in Y'; green has the rest.
struct LumaWeights {
    double red;
    double blue;

    [[nodiscard]] constexpr double Green() const noexcept { return 1.0 - red - blue; }
};

/// By ITU-R BT.601-7, BT.709-6, BT.2020-2 and SMPTE ST 240; BT.709's for matrices that are not of Y'CbCr.
[[nodiscard]] LumaWeights WeightsOf(Matrix matrix) noexcept;

} // namespace tessel::exporting
