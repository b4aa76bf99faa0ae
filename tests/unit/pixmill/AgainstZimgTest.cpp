// zimg, an independent converter, gives the same numbers for colours in range.
#include <kestrel/pixmill/ColorConversion.h>

#include <gtest/gtest.h>
#include <zimg.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

using namespace pixmill;

namespace {

constexpr std::uint32_t kCount = 64 * 1024;
constexpr std::uint32_t kWidth = 1024;
constexpr std::uint32_t kHeight = kCount / kWidth;

/// Planes of R, G, B going in; of R, G, B or Y, Cb, Cr coming out.
template <class Sample>
using Planes = std::array<std::vector<Sample>, 3>;

Planes<float> RandomColors(unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> component(0, 1);
    Planes<float> planes;
    for (auto& plane : planes) {
        plane.resize(kCount);
        for (float& sample : plane) {
            sample = component(random);
        }
    }
    return planes;
}

zimg_image_format Format(zimg_color_family_e family, zimg_pixel_type_e type, unsigned depth,
                         zimg_matrix_coefficients_e matrix, zimg_transfer_characteristics_e transfer)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = kWidth;
    format.height = kHeight;
    format.pixel_type = type;
    format.color_family = family;
    format.matrix_coefficients = matrix;
    format.transfer_characteristics = transfer;
    format.color_primaries = ZIMG_PRIMARIES_709;
    format.depth = depth;
    format.pixel_range = family == ZIMG_COLOR_YUV ? ZIMG_RANGE_LIMITED : ZIMG_RANGE_FULL;
    return format;
}

template <class Sample>
Planes<Sample> ByZimg(const Planes<float>& rgb, const zimg_image_format& target)
{
    const zimg_image_format source =
        Format(ZIMG_COLOR_RGB, ZIMG_PIXEL_FLOAT, 32, ZIMG_MATRIX_RGB, ZIMG_TRANSFER_709);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.cpu_type = ZIMG_CPU_NONE; // plain C: no approximations
    params.allow_approximate_gamma = 0;
    const std::unique_ptr<zimg_filter_graph, decltype(&zimg_filter_graph_free)> graph(
        zimg_filter_graph_build(&source, &target, &params), zimg_filter_graph_free);
    if (graph == nullptr) {
        std::array<char, 256> text{};
        zimg_get_last_error(text.data(), text.size());
        ADD_FAILURE() << text.data();
        return {};
    }
    std::size_t scratchBytes = 0;
    EXPECT_EQ(zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes), 0);

    constexpr std::size_t kAlignment = 64;
    const auto aligned = [](std::vector<std::byte>& storage, std::size_t bytes) {
        storage.resize(bytes + kAlignment);
        void* start = storage.data();
        std::size_t space = storage.size();
        return std::align(kAlignment, bytes, start, space);
    };
    std::vector<std::byte> scratchStorage;
    std::array<std::vector<std::byte>, 3> inStorage;
    std::array<std::vector<std::byte>, 3> outStorage;
    zimg_image_buffer_const in{};
    zimg_image_buffer out{};
    in.version = ZIMG_API_VERSION;
    out.version = ZIMG_API_VERSION;
    for (std::size_t i = 0; i < 3; ++i) {
        void* const from = aligned(inStorage[i], kCount * sizeof(float));
        std::memcpy(from, rgb[i].data(), kCount * sizeof(float));
        in.plane[i].data = from;
        in.plane[i].stride = kWidth * sizeof(float);
        in.plane[i].mask = ZIMG_BUFFER_MAX;
        out.plane[i].data = aligned(outStorage[i], kCount * sizeof(Sample));
        out.plane[i].stride = kWidth * sizeof(Sample);
        out.plane[i].mask = ZIMG_BUFFER_MAX;
    }
    EXPECT_EQ(zimg_filter_graph_process(graph.get(), &in, &out, aligned(scratchStorage, scratchBytes), nullptr,
                                        nullptr, nullptr, nullptr),
              0);
    Planes<Sample> planes;
    for (std::size_t i = 0; i < 3; ++i) {
        planes[i].resize(kCount);
        std::memcpy(planes[i].data(), out.plane[i].data, kCount * sizeof(Sample));
    }
    return planes;
}

ColorBGRA ColorAt(const Planes<float>& rgb, std::size_t i)
{
    return {rgb[2][i], rgb[1][i], rgb[0][i], 1};
}

/// What our conversion stores, as samples of the pattern's bytes.
template <class Sample>
std::array<Sample, 4> Ours(std::uint32_t code, const ColorBGRA& color)
{
    std::array<Sample, 4> samples{};
    std::memcpy(samples.data(), ConvertColor(code, color).pattern.data(), sizeof(samples));
    return samples;
}

struct MatrixCase {
    std::uint32_t bit;
    zimg_matrix_coefficients_e matrix;
    double kr, kb;
};
constexpr MatrixCase kMatrices[] = {{0, ZIMG_MATRIX_470BG, 0.299, 0.114},
                                    {0x800, ZIMG_MATRIX_709, 0.2126, 0.0722}};

/// zimg counts in single precision, so within 1/1000 of a tie it may round the other way.
bool IsNearTie(double code)
{
    return std::abs(code - std::floor(code) - 0.5) < 1e-3;
}

struct Counts {
    std::size_t compared = 0;
    std::size_t nearTies = 0;
};

void Compare(std::uint32_t ours, std::uint32_t theirs, double exact, Counts& counts)
{
    if (IsNearTie(exact)) {
        ++counts.nearTies;
        return;
    }
    ++counts.compared;
    ASSERT_EQ(ours, theirs) << "the exact value is " << exact;
}

} // namespace

TEST(AgainstZimg, EightBitCodesAreEqual)
{
    const Planes<float> rgb = RandomColors(8);
    for (const MatrixCase& m : kMatrices) {
        const auto theirs =
            ByZimg<std::uint8_t>(rgb, Format(ZIMG_COLOR_YUV, ZIMG_PIXEL_BYTE, 8, m.matrix, ZIMG_TRANSFER_709));
        Counts counts;
        for (std::size_t i = 0; i < kCount && !::testing::Test::HasFailure(); ++i) {
            const auto ours = Ours<std::uint8_t>(0x00D | m.bit, ColorAt(rgb, i));
            const double y = m.kr * rgb[0][i] + (1 - m.kr - m.kb) * rgb[1][i] + m.kb * rgb[2][i];
            Compare(ours[2], theirs[0][i], 219 * y + 16, counts);
            Compare(ours[1], theirs[1][i], 224 * (rgb[2][i] - y) / (2 * (1 - m.kb)) + 128, counts);
            Compare(ours[0], theirs[2][i], 224 * (rgb[0][i] - y) / (2 * (1 - m.kr)) + 128, counts);
        }
        EXPECT_GT(counts.compared, counts.nearTies * 100);
    }
}

TEST(AgainstZimg, TenBitCodesAreEqual)
{
    const Planes<float> rgb = RandomColors(10);
    for (const MatrixCase& m : kMatrices) {
        const auto theirs = ByZimg<std::uint16_t>(
            rgb, Format(ZIMG_COLOR_YUV, ZIMG_PIXEL_WORD, 10, m.matrix, ZIMG_TRANSFER_709));
        Counts counts;
        for (std::size_t i = 0; i < kCount && !::testing::Test::HasFailure(); ++i) {
            const std::uint32_t word = Ours<std::uint32_t>(0x211 | m.bit, ColorAt(rgb, i))[0];
            const double y = m.kr * rgb[0][i] + (1 - m.kr - m.kb) * rgb[1][i] + m.kb * rgb[2][i];
            Compare(word >> 10 & 1023U, theirs[0][i], 876 * y + 64, counts);
            Compare(word & 1023U, theirs[1][i], 896 * (rgb[2][i] - y) / (2 * (1 - m.kb)) + 512, counts);
            Compare(word >> 20 & 1023U, theirs[2][i], 896 * (rgb[0][i] - y) / (2 * (1 - m.kr)) + 512, counts);
        }
        EXPECT_GT(counts.compared, counts.nearTies * 100);
    }
}

TEST(AgainstZimg, FloatYCbCrIsEqualToItsPrecision)
{
    const Planes<float> rgb = RandomColors(32);
    for (const MatrixCase& m : kMatrices) {
        const auto theirs =
            ByZimg<float>(rgb, Format(ZIMG_COLOR_YUV, ZIMG_PIXEL_FLOAT, 32, m.matrix, ZIMG_TRANSFER_709));
        for (std::size_t i = 0; i < kCount; ++i) {
            const auto ours = Ours<float>(0x105 | m.bit, ColorAt(rgb, i));
            ASSERT_NEAR(ours[2], theirs[0][i], 5e-7);
            ASSERT_NEAR(ours[1], theirs[1][i], 5e-7);
            ASSERT_NEAR(ours[0], theirs[2][i], 5e-7);
        }
    }
}

TEST(AgainstZimg, EightBitRgbIsEqual)
{
    const Planes<float> rgb = RandomColors(255);
    const auto theirs = ByZimg<std::uint8_t>(
        rgb, Format(ZIMG_COLOR_RGB, ZIMG_PIXEL_BYTE, 8, ZIMG_MATRIX_RGB, ZIMG_TRANSFER_709));
    Counts counts;
    for (std::size_t i = 0; i < kCount && !::testing::Test::HasFailure(); ++i) {
        const auto ours = Ours<std::uint8_t>(0x00C, ColorAt(rgb, i));
        for (std::size_t c = 0; c < 3; ++c) {
            Compare(ours[2 - c], theirs[c][i], 255.0 * rgb[c][i], counts);
        }
    }
    EXPECT_GT(counts.compared, counts.nearTies * 100);
}
