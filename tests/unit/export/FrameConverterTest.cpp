/// Every paintable format into every layout, against plain arithmetic in doubles.

#include "PictureModel.h"

#include <tessel/export/convert/FrameConverter.h>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace tessel::exporting {
namespace {

struct Weights {
    double red;
    double blue;
};

Weights WeightsOf(int matrix)
{
    return matrix == 709    ? Weights{0.2126, 0.0722}
           : matrix == 2020 ? Weights{0.2627, 0.0593}
                            : Weights{0.299, 0.114};
}

using Triple = std::array<double, 3>;

Triple ToYCbCr(const Triple& rgb, int matrix)
{
    const auto [kr, kb] = WeightsOf(matrix);
    const double luma = kr * rgb[0] + (1 - kr - kb) * rgb[1] + kb * rgb[2];
    return {luma, (rgb[2] - luma) / (2 * (1 - kb)), (rgb[0] - luma) / (2 * (1 - kr))};
}

Triple ToRgb(const Triple& yuv, int matrix)
{
    const auto [kr, kb] = WeightsOf(matrix);
    const double red = yuv[0] + 2 * (1 - kr) * yuv[2];
    const double blue = yuv[0] + 2 * (1 - kb) * yuv[1];
    return {red, (yuv[0] - kr * red - kb * blue) / (1 - kr - kb), blue};
}

double Bt709(double linear)
{
    const double magnitude = std::abs(linear);
    const double coded = magnitude < 0.018053968510807
                             ? 4.5 * magnitude
                             : 1.09929682680944 * std::pow(magnitude, 0.45) - 0.09929682680944;
    return std::copysign(coded, linear);
}

/// A sample as a normalised value: 0..1, chroma -0.5..0.5.
double Normal(double sample, char letter, const FormatModel& source)
{
    if (source.IsFloat()) {
        return sample;
    }
    const double unit = source.IsV210() ? 4 : 1;
    switch (letter) {
    case 'Y':
        return (sample / unit - 16) / 219;
    case 'U':
    case 'V':
        return (sample / unit - 128) / 224;
    default:
        return sample / 255;
    }
}

Grid HalveColumns(const Grid& grid)
{
    Grid halved{(grid.width + 1) / 2, grid.height, {}};
    for (int y = 0; y < grid.height; ++y) {
        for (int x = 0; x < halved.width; ++x) {
            halved.values.push_back((grid.At(std::max(2 * x - 1, 0), y) + 2 * grid.At(2 * x, y) +
                                     grid.At(std::min(2 * x + 1, grid.width - 1), y)) /
                                    4);
        }
    }
    return halved;
}

Grid HalveRows(const Grid& grid, ChromaRows rows)
{
    Grid halved{grid.width, (grid.height + 1) / 2, {}};
    const auto inPicture = [&](int row) { // the last row of the same field
        while (row >= grid.height) {
            row -= 2;
        }
        return std::max(row, 0);
    };
    for (int y = 0; y < halved.height; ++y) {
        for (int x = 0; x < grid.width; ++x) {
            if (rows == ChromaRows::Frame) {
                halved.values.push_back((grid.At(x, 2 * y) + grid.At(x, std::min(2 * y + 1, grid.height - 1))) /
                                        2);
            } else {
                const bool isTop = y % 2 == 0;
                const int first = 4 * (y / 2) + y % 2;
                const double a = grid.At(x, inPicture(first));
                const double b = grid.At(x, inPicture(first + 2));
                halved.values.push_back(isTop ? (3 * a + b) / 4 : (a + 3 * b) / 4);
            }
        }
    }
    return halved;
}

/// The exact values, normalised, that a target's planes should have.
class Expectation {
public:
    Expectation(const FormatModel& source, const RandomFrame& frame, const LayoutModel& target,
                const Conversion& conversion, int targetMatrix)
        : mWidth(frame.view.width), mHeight(frame.view.height)
    {
        const std::string_view letters = source.IsRgb() ? "RGB" : "YUV";
        for (std::size_t i = 0; i < 3; ++i) {
            mPlanes[i] = Load(source, frame, letters[i], target.bits != 32);
        }
        const bool changesMatrix = source.IsRgb() != target.IsRgb() || source.Matrix() != targetMatrix;
        const bool upsamples = source.Is422() && target.chromaShiftX == 0;
        if (changesMatrix || upsamples) {
            Upsample();
        }
        if (changesMatrix) {
            ChangeMatrix(source, target, targetMatrix);
        }
        for (std::size_t i = 1; i < 3 && !target.IsRgb(); ++i) {
            while (mPlanes[i].width > (mWidth + (1 << target.chromaShiftX) - 1) >> target.chromaShiftX) {
                mPlanes[i] = HalveColumns(mPlanes[i]);
            }
            if (target.chromaShiftY == 1) {
                mPlanes[i] = HalveRows(mPlanes[i], conversion.chromaRows);
            }
        }
    }

    [[nodiscard]] const Grid& Plane(std::size_t index) const { return mPlanes[index]; }

private:
    [[nodiscard]] Grid Load(const FormatModel& source, const RandomFrame& frame, char letter,
                            bool codesLight) const
    {
        const bool isHalf = source.Is422() && letter != 'Y';
        Grid grid{isHalf ? (mWidth + 1) / 2 : mWidth, mHeight, {}};
        for (int y = 0; y < grid.height; ++y) {
            for (int x = 0; x < grid.width; ++x) {
                const double value = Normal(source.Sample(frame.Row(y), letter, x), letter, source);
                grid.values.push_back(source.IsLinear() && codesLight ? Bt709(value) : value);
            }
        }
        return grid;
    }

    void Upsample()
    {
        for (std::size_t i = 1; i < 3; ++i) {
            if (mPlanes[i].width == mWidth) {
                continue;
            }
            Grid full{mWidth, mHeight, {}};
            for (int y = 0; y < mHeight; ++y) {
                for (int x = 0; x < mWidth; ++x) {
                    const double left = mPlanes[i].At(x / 2, y);
                    const double right = mPlanes[i].At(std::min((x + 1) / 2, mPlanes[i].width - 1), y);
                    full.values.push_back((left + right) / 2);
                }
            }
            mPlanes[i] = full;
        }
    }

    void ChangeMatrix(const FormatModel& source, const LayoutModel& target, int targetMatrix)
    {
        for (std::size_t at = 0; at < mPlanes[0].values.size(); ++at) {
            Triple values{mPlanes[0].values[at], mPlanes[1].values[at], mPlanes[2].values[at]};
            values = source.IsRgb() ? values : ToRgb(values, source.Matrix());
            values = target.IsRgb() ? values : ToYCbCr(values, targetMatrix);
            for (std::size_t i = 0; i < 3; ++i) {
                mPlanes[i].values[at] = values[i];
            }
        }
    }

    int mWidth;
    int mHeight;
    std::array<Grid, 3> mPlanes;
};

/// The exact code, not rounded but kept in range.
/// @param keepsClear  of the codes that serial links use for timing
double ExactCode(double normal, char letter, const LayoutModel& target, bool fullRange, bool keepsClear)
{
    if (target.bits == 32) {
        return normal;
    }
    const double unit = std::pow(2, target.bits - 8);
    const double highest = 256 * unit - 1;
    const bool isChroma = letter == 'U' || letter == 'V';
    if (letter != 'Y' && !isChroma) {
        return std::clamp(normal * highest, 0.0, highest);
    }
    if (fullRange) {
        return std::clamp(normal * highest + (isChroma ? 128 * unit : 0), 0.0, highest);
    }
    const double code = isChroma ? (224 * normal + 128) * unit : (219 * normal + 16) * unit;
    return keepsClear ? std::clamp(code, unit, 255 * unit - 1) : std::clamp(code, 0.0, highest);
}

std::string NameOf(const BR::PixelFormatInfo& info)
{
    return std::string(info.constant.substr(info.constant.find('_') + 1));
}

std::vector<BR::PixelFormatInfo> PaintableFormats()
{
    std::vector<BR::PixelFormatInfo> formats;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const Storage storage = KindOf(info.format).storage;
        if (storage != Storage::Planar420 && storage != Storage::Dv) {
            formats.push_back(info);
        }
    }
    return formats;
}

struct Coding {
    YCbCrCoding coding;
    int matrix;
};

/// Converts one random frame and checks every sample; false after the first miss, which is reported.
bool Check(const BR::PixelFormatInfo& format, const LayoutModel& target, int width, int height,
           const Coding& coding, ChromaRows rows, unsigned seed)
{
    const FormatModel source(NameOf(format));
    const RandomFrame frame(format.format, source, width, height, seed);
    const Conversion conversion{format.format, target.layout, width, height, coding.coding, rows};
    const Picture picture = FrameConverter(conversion).Convert(frame.view);
    const Expectation expectation(source, frame, target, conversion,
                                  target.IsRgb() ? source.Matrix() : coding.matrix);

    // Rounded to nearest, exactly, where nothing but the rounding happens. The floats in which matrices and
    // powers are computed hold 24 bits: at 16 bits they are good to a hundredth of a code, at 10 to a
    // thousandth.
    const double roundedOnce = target.bits == 32 ? 6e-8 : 0.5; // half a unit of floats from 1 to 2
    const bool onlyRounds = source.IsRgb() && target.IsRgb() && !source.IsLinear();
    const double computed = target.bits == 32 ? 2e-6 : target.bits == 16 ? 0.55 : 0.501;
    const double slack = onlyRounds ? roundedOnce : computed;
    // Codes that are copied or widened are not clipped to the serial interface's range; reduced ones are.
    const bool keeps = source.IsRgb() == target.IsRgb() && (source.IsRgb() || source.Matrix() == coding.matrix);
    const bool upsamples = source.Is422() && target.chromaShiftX == 0;
    const bool keepsCodes = keeps && !source.IsFloat() && !upsamples && source.Bits() <= target.bits;
    const bool moves = keeps && !source.IsFloat() && source.Bits() <= target.bits &&
                       target.chromaShiftX == (source.Is422() ? 1 : 0) && target.chromaShiftY == 0 &&
                       !target.IsRgb();
    const std::string_view letters = target.IsRgb() ? "RGB" : "YUV";
    for (std::size_t i = 0; i < 3; ++i) {
        const Grid& plane = expectation.Plane(i);
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) {
                const double got = SampleOf(picture, target, letters[i], x, y);
                double exact =
                    ExactCode(plane.At(x, y), letters[i], target, coding.coding.fullRange, !keepsCodes);
                if (moves) {
                    exact =
                        source.Sample(frame.Row(y), letters[i], x) * std::pow(2, target.bits - source.Bits());
                }
                if (!(std::abs(got - exact) <= (moves ? 0.0 : slack))) {
                    ADD_FAILURE() << fmt::format("{} to {}, {}x{}, seed {}, {} at {},{}: {} instead of {}",
                                                 NameOf(format), target.name, width, height, seed, letters[i],
                                                 x, y, got, exact);
                    return false;
                }
            }
        }
    }
    if (!target.HasAlpha()) {
        return true;
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double got = SampleOf(picture, target, 'A', x, y);
            const double alpha =
                source.HasAlpha() ? Normal(source.Sample(frame.Row(y), 'A', x), 'A', source) : 1.0;
            const double exact = ExactCode(alpha, 'A', target, false, true);
            if (!(std::abs(got - exact) <= roundedOnce)) {
                ADD_FAILURE() << fmt::format("{} to {}: alpha at {},{}: {} instead of {}", NameOf(format),
                                             target.name, x, y, got, exact);
                return false;
            }
        }
    }
    return true;
}

TEST(FrameConverter, EveryFormatReachesEveryLayoutAsPlainArithmeticSays)
{
    // The high ones end on each row of a field's four, behind one and two stripes of sixteen rows.
    constexpr std::array<std::array<int, 2>, 10> kSizes{
        {{1, 1}, {2, 2}, {7, 5}, {48, 4}, {50, 9}, {67, 3}, {6, 17}, {9, 34}, {8, 35}, {3, 32}}};
    const std::array<Coding, 4> codings{{{{Matrix::Bt709, false}, 709},
                                         {{Matrix::Smpte170M, false}, 601},
                                         {{Matrix::Bt2020, false}, 2020},
                                         {{Matrix::Bt709, true}, 709}}};
    unsigned seed = 1;
    for (const BR::PixelFormatInfo& format : PaintableFormats()) {
        for (const LayoutModel& target : kLayoutModels) {
            for (const auto& size : kSizes) {
                const bool isRgb = FormatModel(NameOf(format)).IsRgb();
                // The full-range coding is for R'G'B' sources: Y'CbCr frames are limited and stay so.
                const Coding& coding = codings[seed % (isRgb ? 4 : 3)];
                const ChromaRows rows = seed / 4 % 2 == 0 ? ChromaRows::Frame : ChromaRows::Field;
                if (!Check(format, target, size[0], size[1], coding, rows, seed++)) {
                    break;
                }
            }
        }
    }
}

} // namespace
} // namespace tessel::exporting
