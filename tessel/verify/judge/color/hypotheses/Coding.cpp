#include "Coding.h"

namespace tessel::verify::judge {
namespace {

struct Weights {
    double red = 0.2126;
    double blue = 0.0722;
};

Weights WeightsOf(int matrix) noexcept
{
    switch (matrix) {
    case 5:
    case 6:
        return {0.299, 0.114};
    case 7:
        return {0.212, 0.087};
    case 9:
    case 10:
        return {0.2627, 0.0593};
    default:
        return {};
    }
}

/// Luma and colour differences of R'G'B': 0..1 and -0.5..0.5.
Triple ToDifferences(const Weights& weights, const Triple& rgb) noexcept
{
    const double luma =
        weights.red * rgb[0] + (1 - weights.red - weights.blue) * rgb[1] + weights.blue * rgb[2];
    return {luma, (rgb[2] - luma) / (2 * (1 - weights.blue)), (rgb[0] - luma) / (2 * (1 - weights.red))};
}

Triple FromDifferences(const Weights& weights, const Triple& ycc) noexcept
{
    const double red = ycc[0] + 2 * (1 - weights.red) * ycc[2];
    const double blue = ycc[0] + 2 * (1 - weights.blue) * ycc[1];
    return {red, (ycc[0] - weights.red * red - weights.blue * blue) / (1 - weights.red - weights.blue), blue};
}

} // namespace

Triple Encode(const Coding& coding, const Triple& rgb) noexcept
{
    if (coding.isRgb) {
        return {rgb[0] * 255, rgb[1] * 255, rgb[2] * 255};
    }
    const Triple ycc = ToDifferences(WeightsOf(coding.matrix), rgb);
    return coding.isFull ? Triple{255 * ycc[0], 128 + 255 * ycc[1], 128 + 255 * ycc[2]}
                         : Triple{16 + 219 * ycc[0], 128 + 224 * ycc[1], 128 + 224 * ycc[2]};
}

Triple Decode(const Coding& coding, const Triple& codes) noexcept
{
    if (coding.isRgb) {
        return {codes[0] / 255, codes[1] / 255, codes[2] / 255};
    }
    const Triple ycc = coding.isFull
                           ? Triple{codes[0] / 255, (codes[1] - 128) / 255, (codes[2] - 128) / 255}
                           : Triple{(codes[0] - 16) / 219, (codes[1] - 128) / 224, (codes[2] - 128) / 224};
    return FromDifferences(WeightsOf(coding.matrix), ycc);
}

double SquaredDistance(const Triple& a, const Triple& b) noexcept
{
    return (a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]);
}

} // namespace tessel::verify::judge
