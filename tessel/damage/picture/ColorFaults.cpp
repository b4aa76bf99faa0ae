#include "ColorFaults.h"

#include "Resampling.h"

#include <tessel/export/convert/LumaWeights.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

namespace tessel::damage {
namespace {

using exporting::Matrix;

using Triple = std::array<double, 3>;

Triple ToRgb(const Triple& ycc, Matrix matrix) noexcept
{
    const auto [red, blue] = WeightsOf(matrix);
    const double r = ycc[0] + 2 * (1 - red) * ycc[2];
    const double b = ycc[0] + 2 * (1 - blue) * ycc[1];
    return {r, (ycc[0] - red * r - blue * b) / (1 - red - blue), b};
}

Triple ToYcc(const Triple& rgb, Matrix matrix) noexcept
{
    const auto [red, blue] = WeightsOf(matrix);
    const double y = red * rgb[0] + (1 - red - blue) * rgb[1] + blue * rgb[2];
    return {y, (rgb[2] - y) / (2 * (1 - blue)), (rgb[0] - y) / (2 * (1 - red))};
}

/// Changes the three colour components of every pixel together. Subsampled chroma is interpolated for it and
/// thinned again; what `change` leaves alone comes back as it was.
template <class Change>
void ForEachPixel(WorkPicture& picture, const Change& change)
{
    const bool isThinned = picture.chromaShiftX > 0 || picture.chromaShiftY > 0;
    std::array<Plane, 3> full;
    for (std::size_t i = 0; i < 3; ++i) {
        full[i] = i > 0 && isThinned ? WithoutSubsampling(picture.planes[i], picture.chromaShiftX,
                                                          picture.chromaShiftY, picture.width, picture.height)
                                     : std::move(picture.planes[i]);
    }
    for (std::size_t i = 0; i < full[0].samples.size(); ++i) {
        const Triple changed =
            change(Triple{static_cast<double>(full[0].samples[i]), static_cast<double>(full[1].samples[i]),
                          static_cast<double>(full[2].samples[i])});
        for (std::size_t component = 0; component < 3; ++component) {
            full[component].samples[i] = static_cast<float>(changed[component]);
        }
    }
    for (std::size_t i = 0; i < 3; ++i) {
        picture.planes[i] = i > 0 && isThinned
                                ? WithSubsampling(full[i], picture.chromaShiftX, picture.chromaShiftY)
                                : std::move(full[i]);
    }
}

template <class Change>
void ForEachRgb(WorkPicture& picture, const Change& change)
{
    if (!picture.IsYCbCr()) {
        ForEachPixel(picture, change);
        return;
    }
    const Matrix matrix = picture.coding.matrix;
    ForEachPixel(picture, [&](const Triple& ycc) { return ToYcc(change(ToRgb(ycc, matrix)), matrix); });
}

/// Chroma and luma of R'G'B' pictures by BT.709.
template <class Change>
void ForEachYcc(WorkPicture& picture, const Change& change)
{
    if (picture.IsYCbCr()) {
        ForEachPixel(picture, change);
        return;
    }
    ForEachPixel(picture,
                 [&](const Triple& rgb) { return ToRgb(change(ToYcc(rgb, Matrix::Bt709)), Matrix::Bt709); });
}

template <class Change>
void ForEachSample(Plane& plane, const Change& change)
{
    for (float& sample : plane.samples) {
        sample = static_cast<float>(change(static_cast<double>(sample)));
    }
}

/// A curve for 0..1, mirrored for negative values.
template <class Curve>
double Mirrored(double value, const Curve& curve)
{
    return value < 0 ? -curve(-value) : curve(value);
}

constexpr double kAlpha = 1.09929682680944; // BT.709's curve at the precision of BT.2020
constexpr double kBeta = 0.018053968510807;

double Bt709Curve(double light)
{
    return light < kBeta ? 4.5 * light : kAlpha * std::pow(light, 0.45) - (kAlpha - 1);
}

double Bt709Light(double value)
{
    return value < 4.5 * kBeta ? value / 4.5 : std::pow((value + (kAlpha - 1)) / kAlpha, 1 / 0.45);
}

double SrgbCurve(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

} // namespace

void UseMatrix(WorkPicture& picture, Matrix wrong)
{
    const Matrix right = picture.IsYCbCr() ? picture.coding.matrix : Matrix::Bt709;
    if (picture.IsYCbCr()) {
        ForEachPixel(picture, [&](const Triple& ycc) { return ToYcc(ToRgb(ycc, right), wrong); });
    } else {
        ForEachPixel(picture, [&](const Triple& rgb) { return ToRgb(ToYcc(rgb, wrong), right); });
    }
}

void ChangeRange(WorkPicture& picture, RangeFault fault)
{
    // In 8-bit codes: full range y becomes 16 + 219 y / 255, chroma 128 + 224 c / 255; or the other way round.
    const auto luma = [&](double value) {
        return fault == RangeFault::Squeezed ? (16 + 219 * value) / 255 : (255 * value - 16) / 219;
    };
    const auto chroma = [&](double value) {
        return fault == RangeFault::Squeezed ? value * 224 / 255 : value * 255 / 224;
    };
    ForEachSample(picture.planes[0], luma);
    for (std::size_t i = 1; i < 3; ++i) {
        if (picture.IsYCbCr()) {
            ForEachSample(picture.planes[i], chroma);
        } else {
            ForEachSample(picture.planes[i], luma);
        }
    }
}

void Clip(WorkPicture& picture, double lowest, double highest)
{
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isChroma = picture.IsYCbCr() && i > 0;
        ForEachSample(picture.planes[i], [&](double value) {
            return isChroma ? std::clamp(value, -0.5, 0.5) : std::clamp(value, lowest, highest);
        });
    }
}

void SwapRedAndBlue(WorkPicture& picture)
{
    ForEachRgb(picture, [](const Triple& rgb) { return Triple{rgb[2], rgb[1], rgb[0]}; });
}

void SwapChroma(WorkPicture& picture)
{
    if (picture.IsYCbCr()) {
        std::swap(picture.planes[1], picture.planes[2]);
        return;
    }
    ForEachYcc(picture, [](const Triple& ycc) { return Triple{ycc[0], ycc[2], ycc[1]}; });
}

void ChangeTransfer(WorkPicture& picture, TransferFault fault)
{
    const auto curve = [fault](double value) {
        switch (fault) {
        case TransferFault::Twice:
            return Bt709Curve(value);
        case TransferFault::Linear:
            return Bt709Light(value);
        case TransferFault::Gamma22:
            return std::pow(value, 1 / 2.2);
        case TransferFault::Gamma24:
            return std::pow(value, 1 / 2.4);
        case TransferFault::Srgb:
            break;
        }
        return SrgbCurve(Bt709Light(value));
    };
    ForEachRgb(picture, [&](const Triple& rgb) {
        return Triple{Mirrored(rgb[0], curve), Mirrored(rgb[1], curve), Mirrored(rgb[2], curve)};
    });
}

void MultiplyBy(WorkPicture& picture, double factor)
{
    for (std::size_t i = 0; i < 3; ++i) {
        ForEachSample(picture.planes[i], [&](double value) { return value * factor; });
    }
}

void Add(WorkPicture& picture, double amount)
{
    for (std::size_t i = 0; i < (picture.IsYCbCr() ? 1U : 3U); ++i) {
        ForEachSample(picture.planes[i], [&](double value) { return value + amount; });
    }
}

void ChangeSaturation(WorkPicture& picture, double factor)
{
    ForEachYcc(picture, [&](const Triple& ycc) { return Triple{ycc[0], ycc[1] * factor, ycc[2] * factor}; });
}

void TurnHue(WorkPicture& picture, double degrees)
{
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    ForEachYcc(picture, [&](const Triple& ycc) {
        return Triple{ycc[0], ycc[1] * c - ycc[2] * s, ycc[1] * s + ycc[2] * c};
    });
}

void KeepBits(WorkPicture& picture, int bits)
{
    for (int component = 0; component < 3; ++component) {
        Plane& plane = picture.planes[static_cast<std::size_t>(component)];
        if (picture.codeBits == 0) {
            const double steps = std::exp2(bits) - 1;
            ForEachSample(plane, [&](double value) { return std::floor(value * steps) / steps; });
        } else if (bits < picture.codeBits) {
            const CodeScale scale = CodeScaleOf(picture, component);
            const double step = std::exp2(picture.codeBits - bits);
            ForEachSample(plane, [&](double value) {
                const double code = std::floor(value * scale.span + scale.zero + 0.5);
                return (std::floor(code / step) * step - scale.zero) / scale.span;
            });
        }
    }
}

void ThinChroma(WorkPicture& picture, Thinning thinning)
{
    const int shiftX = thinning == Thinning::To411 ? 2 : thinning == Thinning::To400 ? 0 : 1;
    const int shiftY = thinning == Thinning::To420 ? 1 : 0;
    if (!picture.IsYCbCr()) {
        ForEachPixel(picture, [](const Triple& rgb) { return ToYcc(rgb, Matrix::Bt709); });
    }
    for (std::size_t i = 1; i < 3; ++i) {
        Plane& plane = picture.planes[i];
        if (thinning == Thinning::To400) {
            plane.samples.assign(plane.samples.size(), 0.0F);
            continue;
        }
        const int lessX = shiftX - picture.chromaShiftX;
        const int lessY = shiftY - picture.chromaShiftY;
        if (lessX <= 0 && lessY <= 0) {
            continue;
        }
        const int stepX = std::max(lessX, 0);
        const int stepY = std::max(lessY, 0);
        plane =
            WithoutSubsampling(WithSubsampling(plane, stepX, stepY), stepX, stepY, plane.width, plane.height);
    }
    if (!picture.IsYCbCr()) {
        ForEachPixel(picture, [](const Triple& ycc) { return ToRgb(ycc, Matrix::Bt709); });
    }
}

void ShiftChroma(WorkPicture& picture, double right, double down)
{
    const auto shift = [&] {
        for (std::size_t i = 1; i < 3; ++i) {
            picture.planes[i] = Moved(picture.planes[i], right / (1 << picture.chromaShiftX),
                                      down / (1 << picture.chromaShiftY));
        }
    };
    if (picture.IsYCbCr()) {
        shift();
        return;
    }
    ForEachPixel(picture, [](const Triple& rgb) { return ToYcc(rgb, Matrix::Bt709); });
    shift();
    ForEachPixel(picture, [](const Triple& ycc) { return ToRgb(ycc, Matrix::Bt709); });
}

void ChangeAlpha(WorkPicture& picture, AlphaFault fault)
{
    Plane& alpha = picture.planes[3];
    switch (fault) {
    case AlphaFault::Opaque:
        alpha.samples.assign(alpha.samples.size(), 1.0F);
        break;
    case AlphaFault::Transparent:
        alpha.samples.assign(alpha.samples.size(), 0.0F);
        break;
    case AlphaFault::Premultiplied:
        for (std::size_t component = 0; component < 3 && !alpha.IsEmpty(); ++component) {
            for (std::size_t i = 0; i < alpha.samples.size(); ++i) {
                picture.planes[component].samples[i] *= alpha.samples[i];
            }
        }
        break;
    }
}

} // namespace tessel::damage
