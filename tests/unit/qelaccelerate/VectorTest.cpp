#include <kestrel/qelaccelerate/Vector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace {

using namespace qelaccelerate::utility;

/// Bit patterns that comparing as floats would not tell apart: NaNs with a payload, both zeros, denormals.
std::vector<float> Pattern(std::size_t count)
{
    std::vector<float> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = std::bit_cast<float>(static_cast<std::uint32_t>((i + 1) * 2'654'435'761U));
    }
    return values;
}

std::vector<std::uint32_t> Bits(const std::vector<float>& values)
{
    std::vector<std::uint32_t> bits;
    for (const float value : values) {
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    }
    return bits;
}

TEST(Vector, ZeroWritesPositiveZerosToExactlyTheSpan)
{
    for (const std::size_t count : {0U, 1U, 3U, 4U, 7U, 64U, 1001U}) {
        for (const std::size_t start : {0U, 1U, 2U, 3U}) {
            const std::vector<float> before = Pattern(start + count + 9);
            std::vector<float> values = before;
            Zero(count, values.data() + start);
            std::vector<std::uint32_t> expected = Bits(before);
            for (std::size_t i = start; i < start + count; ++i) {
                expected[i] = 0;
            }
            EXPECT_EQ(Bits(values), expected) << count << " from " << start;
        }
    }
}

TEST(Vector, CopyKeepsEveryBitAndWritesExactlyTheSpan)
{
    for (const std::size_t count : {0U, 1U, 3U, 4U, 7U, 64U, 1001U}) {
        const std::vector<float> source = Pattern(count);
        std::vector<float> destination(count + 8, 1.0F);
        Copy(count, source.data(), destination.data() + 4);
        std::vector<float> expected(count + 8, 1.0F);
        std::copy(source.begin(), source.end(), expected.begin() + 4);
        EXPECT_EQ(Bits(destination), Bits(expected)) << count;
    }
}

TEST(Vector, CopyOntoItselfChangesNothing)
{
    std::vector<float> values = Pattern(100);
    Copy(values.size(), values.data(), values.data());
    EXPECT_EQ(Bits(values), Bits(Pattern(100)));
}

TEST(Vector, NothingNeedsNoBuffer)
{
    Zero(0, nullptr);
    Copy(0, nullptr, nullptr);
}

} // namespace
