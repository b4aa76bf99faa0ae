/// Loops over samples give the same bits in every kind of vector registers.

#include <tessel/export/convert/ChromaFilter.h>
#include <tessel/export/convert/Components.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace tessel::exporting {
namespace {

using qelaccelerate::HasVectorWidth;

/// Not a multiple of any vector's length.
constexpr std::int32_t kWidth = 77;
constexpr std::int32_t kHeight = 4;
constexpr std::size_t kCount = std::size_t{kWidth} * kHeight;
constexpr FiniteRange kRange{.limit = 100.0F, .scale = 0.5F};

/// Values inside and outside 0..1, beside the halves where rounding turns, and no numbers.
std::vector<float> Values()
{
    std::mt19937 random(20'26);
    std::uniform_real_distribution<float> anywhere(-0.5F, 1.5F);
    std::vector<float> values(4 * kCount);
    for (std::size_t k = 0; k < values.size(); ++k) {
        const auto half = (static_cast<float>(k % 256) + 0.5F) / 255.0F;
        values[k] = k % 3 == 0 ? anywhere(random)
                               : std::bit_cast<float>(std::bit_cast<std::uint32_t>(half) +
                                                      static_cast<std::uint32_t>(k % 3) - 1U);
    }
    values[5] = std::numeric_limits<float>::quiet_NaN();
    values[70] = std::numeric_limits<float>::infinity();
    values[75] = -std::numeric_limits<float>::infinity();
    values[76] = std::numeric_limits<float>::max();
    return values;
}

/// What `make(width)` returns is the same for each width that this machine has.
template <class Make>
void ExpectSameInEveryWidth(const Make& make)
{
    const auto baseline = make(VectorWidth::Baseline);
    for (const VectorWidth width : {VectorWidth::Avx2, VectorWidth::Avx512}) {
        if (HasVectorWidth(width)) {
            EXPECT_EQ(make(width), baseline) << "width " << static_cast<int>(width);
        }
    }
}

std::vector<std::uint32_t> Bits(const std::vector<float>& values)
{
    std::vector<std::uint32_t> bits;
    for (const float value : values) {
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    }
    return bits;
}

TEST(Components, CodesAreTheSameInEveryVectorWidth)
{
    const std::vector<float> values = Values();
    const struct {
        SampleType type;
        int size;
        Rounding rounding;
    } kinds[] = {{SampleType::U8, 1, {255.0, 0.0, 0.0, 255.0}},
                 {SampleType::U16, 2, {876.0, 64.0, 4.0, 1019.0}},
                 {SampleType::U16be, 2, {65535.0, 0.0, 0.0, 65535.0}},
                 {SampleType::F32, 4, {8.0, 0.0, 0.0, 1.0}}};
    for (const auto& kind : kinds) {
        for (const int samplesApart : {1, 2, 3, 4}) {
            const int step = samplesApart * kind.size;
            ExpectSameInEveryWidth([&](VectorWidth width) {
                std::vector<std::byte> codes(kCount * static_cast<std::size_t>(step), std::byte{0xAB});
                StoreFloats(values.data(), kWidth,
                            {codes.data(), kWidth * step, step, kWidth, kHeight, kind.type}, kind.rounding,
                            width);
                return codes;
            });
        }
    }
}

TEST(Components, FloatsAreTheSameInEveryVectorWidth)
{
    const std::vector<float> values = Values();
    const auto* bytes = reinterpret_cast<const std::byte*>(values.data());
    const struct {
        SampleType type;
        int size;
    } kinds[] = {{SampleType::U8, 1}, {SampleType::U16, 2}, {SampleType::F32, 4}};
    for (const auto& kind : kinds) {
        for (const int samplesApart : {1, 2, 3, 4}) {
            const int step = samplesApart * kind.size;
            const ComponentSource source{bytes, kWidth * step, step, kWidth, kHeight, kind.type};
            ExpectSameInEveryWidth([&](VectorWidth width) {
                std::vector<float> loaded(kCount, -1.0F);
                LoadFloats(source, loaded.data(), kWidth, width);
                return Bits(loaded);
            });
            ExpectSameInEveryWidth([&](VectorWidth width) {
                std::vector<float> loaded(kCount, -1.0F);
                LoadFiniteFloats(source, loaded.data(), kWidth, kRange, width);
                return Bits(loaded);
            });
        }
    }
}

TEST(Components, FiniteFloatsAreLimitedThenScaled)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> values{
        0.5F, -2.0F, 250.0F, infinity, -infinity, std::numeric_limits<float>::quiet_NaN(), -1000.0F, 100.0F};
    std::vector<float> loaded(values.size());
    LoadFiniteFloats({reinterpret_cast<const std::byte*>(values.data()), 0, 4, 8, 1, SampleType::F32},
                     loaded.data(), 8, kRange);
    EXPECT_EQ(loaded, (std::vector<float>{0.25F, -1.0F, 50.0F, 50.0F, -50.0F, 0.0F, -50.0F, 50.0F}));
}

TEST(Components, ChromaIsFilteredToTheSameBitsInEveryVectorWidth)
{
    for (const ChromaRows rows : {ChromaRows::Frame, ChromaRows::Field}) {
        ExpectSameInEveryWidth([&](VectorWidth width) {
            std::vector<float> values = Values();
            const FloatPlane narrow = HalveWidth({values.data(), kWidth, kHeight}, 1, width);
            const FloatPlane halved = HalveHeight(narrow, rows, width);
            values.resize(static_cast<std::size_t>(halved.width) * static_cast<std::size_t>(halved.height));
            return Bits(values);
        });
    }
}

} // namespace
} // namespace tessel::exporting
