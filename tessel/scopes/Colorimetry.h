/// Colours under each matrix of Y'CbCr: where bars lie, and how R'G'B' becomes Y'CbCr.
#pragma once

#include <tessel/export/convert/LumaWeights.h>

#include <array>
#include <string_view>

namespace tessel::scopes {

/// "BT.709"; "R'G'B'" for the matrix of R'G'B' itself.
[[nodiscard]] std::string_view NameOf(exporting::Matrix matrix) noexcept;

/// Y' from 0 to 1, Cb and Cr from -0.5 to 0.5.
struct YCbCr {
    double luma = 0;
    double cb = 0;
    double cr = 0;
};

/// From R'G'B' of 0 to 1; nothing is clipped.
[[nodiscard]] constexpr YCbCr ToYCbCr(exporting::LumaWeights weights, double red, double green,
                                      double blue) noexcept
{
    const double luma = weights.red * red + weights.Green() * green + weights.blue * blue;
    return {luma, (blue - luma) / (2 * (1 - weights.blue)), (red - luma) / (2 * (1 - weights.red))};
}

/// A colour bar's place on the vectorscope.
struct BarTarget {
    std::string_view name; ///< "R", "Yl", "G", "Cy", "B", "Mg"
    double cb = 0;
    double cr = 0;
};

/// The six colours of bars whose R'G'B' parts are 0 and `amplitude`: 0.75 or 1.
[[nodiscard]] std::array<BarTarget, 6> BarTargets(exporting::Matrix matrix, double amplitude) noexcept;

} // namespace tessel::scopes
