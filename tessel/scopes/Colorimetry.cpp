#include "Colorimetry.h"

#include <cstddef>

namespace tessel::scopes {

using exporting::Matrix;

std::string_view NameOf(Matrix matrix) noexcept
{
    switch (matrix) {
    case Matrix::Rgb:
        return "R'G'B'";
    case Matrix::Bt470Bg:
    case Matrix::Smpte170M:
        return "BT.601";
    case Matrix::Smpte240M:
        return "SMPTE 240M";
    case Matrix::Bt2020:
        return "BT.2020";
    case Matrix::Bt709:
    case Matrix::Unspecified:
        break;
    }
    return "BT.709";
}

std::array<BarTarget, 6> BarTargets(Matrix matrix, double amplitude) noexcept
{
    struct Bar {
        std::string_view name;
        int red, green, blue;
    };
    constexpr std::array<Bar, 6> kBars{
        {{"R", 1, 0, 0}, {"Yl", 1, 1, 0}, {"G", 0, 1, 0}, {"Cy", 0, 1, 1}, {"B", 0, 0, 1}, {"Mg", 1, 0, 1}}};
    std::array<BarTarget, 6> targets;
    for (std::size_t i = 0; i < kBars.size(); ++i) {
        const Bar& bar = kBars[i];
        const YCbCr color =
            ToYCbCr(WeightsOf(matrix), amplitude * bar.red, amplitude * bar.green, amplitude * bar.blue);
        targets[i] = {bar.name, color.cb, color.cr};
    }
    return targets;
}

} // namespace tessel::scopes
