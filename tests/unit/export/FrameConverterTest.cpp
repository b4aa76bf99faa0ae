/// Every paintable format into every layout, against plain arithmetic in doubles.

#include "PictureModel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/FrameConverter.h>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

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
    // Codes that are kept or widened are not even clipped to the serial interface's range; reduced ones are
    // made.
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
    constexpr std::array<std::array<int, 2>, 6> kSizes{{{1, 1}, {2, 2}, {7, 5}, {48, 4}, {50, 9}, {67, 3}}};
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

TEST(FrameConverter, FrameThatAlreadyIsThePictureIsNotCopied)
{
    const struct {
        BR::PixelFormat format;
        PictureLayout layout;
        const char* name;
    } kSame[] = {{BR::PixelFormat::BGRA_4444_8u, PictureLayout::Bgra, "BGRA_4444_8u"},
                 {BR::PixelFormat::PRGB_4444_8u, PictureLayout::Argb, "PRGB_4444_8u"},
                 {BR::PixelFormat::BGRX_4444_8u, PictureLayout::Bgr0, "BGRX_4444_8u"},
                 {BR::PixelFormat::XRGB_4444_8u, PictureLayout::Zrgb, "XRGB_4444_8u"},
                 {BR::PixelFormat::UYVY_422_8u_709, PictureLayout::Uyvy, "UYVY_422_8u_709"},
                 {BR::PixelFormat::YUYV_422_8u_709, PictureLayout::Yuyv, "YUYV_422_8u_709"},
                 {BR::PixelFormat::V210_422_10u_709, PictureLayout::V210, "V210_422_10u_709"}};
    for (const auto& same : kSame) {
        const RandomFrame frame(same.format, FormatModel(same.name), 12, 4, 1);
        const Picture picture = FrameConverter({same.format, same.layout, 12, 4, {}, {}}).Convert(frame.view);
        EXPECT_EQ(picture.planes[0], frame.view.top) << same.name;
        EXPECT_EQ(picture.rowBytes[0], frame.view.rowBytes) << same.name;
    }
}

TEST(FrameConverter, PictureKeepsTheFrameItSharesAlive)
{
    const RandomFrame frame(BR::PixelFormat::BGRA_4444_8u, FormatModel("BGRA_4444_8u"), 2, 2, 0);
    auto owner = std::make_shared<int>(0);
    FrameView view = frame.view;
    view.owner = owner;
    Picture picture = FrameConverter({view.format, PictureLayout::Bgra, 2, 2, {}, {}}).Convert(view);
    view.owner.reset();
    EXPECT_EQ(owner.use_count(), 2);
    picture = {};
    EXPECT_EQ(owner.use_count(), 1);
}

/// A one-pixel float BGRA frame.
struct FloatPixel {
    std::array<float, 4> bgra;

    [[nodiscard]] Picture To(PictureLayout layout,
                             BR::PixelFormat format = BR::PixelFormat::BGRA_4444_32f) const
    {
        const FrameView view{format, 1, 1, reinterpret_cast<const std::byte*>(bgra.data()), 16, nullptr};
        return FrameConverter({format, layout, 1, 1, {}, {}}).Convert(view);
    }
};

TEST(FrameConverter, FloatTargetsKeepTheBitsOfEverySampleNotANumberIncluded)
{
    const std::array<std::uint32_t, 4> bits{0x7FA12345, 0xFF800000, 0x00000001,
                                            0x80000000}; // NaN, -inf, tiny, -0
    FloatPixel pixel{};
    std::memcpy(pixel.bgra.data(), bits.data(), sizeof bits);
    const Picture picture = pixel.To(PictureLayout::Gbrapf32);
    const std::array<std::size_t, 4> planeOf{1, 0, 2, 3}; // B, G, R, A
    for (std::size_t i = 0; i < 4; ++i) {
        std::uint32_t got = 0;
        std::memcpy(&got, picture.planes[planeOf[i]], 4);
        EXPECT_EQ(got, bits[i]) << i;
    }
}

TEST(FrameConverter, LinearLightStaysLinearInFloatTargets)
{
    const FloatPixel pixel{{0.25F, 0.5F, -0.125F, 1.0F}};
    const Picture picture = pixel.To(PictureLayout::Gbrpf32, BR::PixelFormat::BGRX_4444_32f_Linear);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[0]), 0.5F);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[1]), 0.25F);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[2]), -0.125F);
}

TEST(FrameConverter, SixteenBitsAreTheNearestCodes)
{
    // 65535 times the float 0.9 is 58981.4984: a sum in floats, with a half added for rounding, is 58982
    // already.
    const Picture picture = FloatPixel{{0.9F, 0.9F, 0.9F, 0.9F}}.To(PictureLayout::Rgba64);
    for (std::size_t component = 0; component < 4; ++component) {
        std::uint16_t code = 0;
        std::memcpy(&code, picture.planes[0] + 2 * component, 2);
        EXPECT_EQ(code, 58981) << component;
    }
}

TEST(FrameConverter, NumbersThatAreNoneAndInfinitiesGiveCodesInRange)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    const Picture picture = FloatPixel{{none, infinity, -infinity, none}}.To(PictureLayout::Rgba);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][0]), 0);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][1]), 255);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][2]), 0);
    for (const LayoutModel& target : kLayoutModels) {
        static_cast<void>(FloatPixel{{none, infinity, -infinity, none}}.To(target.layout));
    }
}

TEST(FrameConverter, FillerBytesAreSet)
{
    const Picture picture = FloatPixel{{0.0F, 0.0F, 0.0F, 0.0F}}.To(PictureLayout::Bgr0);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][3]), 255);
}

TEST(FrameConverter, V210RowsArePaddedWithZerosToWholeGroupsOf48)
{
    const RandomFrame frame(BR::PixelFormat::UYVY_422_8u_709, FormatModel("UYVY_422_8u_709"), 50, 2, 0);
    const Picture picture =
        FrameConverter({frame.view.format, PictureLayout::V210, 50, 2, {}, {}}).Convert(frame.view);
    ASSERT_EQ(V210RowBytes(50), 256);
    for (int y = 0; y < 2; ++y) {
        // 50 pixels are 8 groups of 6 and 2 pixels: samples U Y V Y of a ninth group, 1 1/3 words.
        for (std::ptrdiff_t at = 8 * 16 + 8; at < 256; ++at) {
            EXPECT_EQ(std::to_integer<int>(picture.planes[0][y * picture.rowBytes[0] + at]), 0) << at;
        }
    }
}

TEST(FrameConverter, FormatsThatFramesNeverHaveAreRefused)
{
    EXPECT_THROW(FrameConverter({BR::PixelFormat::PALDV25, PictureLayout::Bgra, 720, 576, {}, {}}),
                 ExportError);
    EXPECT_THROW(FrameConverter({BR::PixelFormat::Unknown, PictureLayout::Bgra, 720, 576, {}, {}}),
                 ExportError);
}

} // namespace
} // namespace tessel::exporting
