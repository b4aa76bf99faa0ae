#include <tessel/export/convert/V210Packing.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace tessel::exporting {
namespace {

constexpr std::uint16_t kUntouched = 0xFFFF; ///< no 10-bit sample

struct UnpackedRow {
    std::vector<std::uint16_t> luma;
    std::vector<std::uint16_t> cb;
    std::vector<std::uint16_t> cr;
};

/// Sample by sample, in the order of the format: Cb Y Cr Y for each pair of pixels.
UnpackedRow Expected(const std::vector<std::uint32_t>& words, std::size_t width)
{
    const auto sample = [&words](std::size_t index) {
        return static_cast<std::uint16_t>(words[index / 3] >> (index % 3 * 10) & 0x3FF);
    };
    UnpackedRow row;
    for (std::size_t x = 0; x < width; ++x) {
        row.luma.push_back(sample(2 * x + 1));
    }
    for (std::size_t pair = 0; pair < (width + 1) / 2; ++pair) {
        row.cb.push_back(sample(4 * pair));
        row.cr.push_back(sample(4 * pair + 2));
    }
    return row;
}

TEST(V210Packing, RowsOfAnyWidthAreUnpackedAndNothingBehindThemIsWritten)
{
    std::mt19937 random(210);
    for (std::size_t width = 1; width <= 40; ++width) {
        std::vector<std::uint32_t> words((width + 5) / 6 * 4);
        std::generate(words.begin(), words.end(), [&random] { return static_cast<std::uint32_t>(random()); });
        UnpackedRow expected = Expected(words, width);
        UnpackedRow row{std::vector(width + 8, kUntouched), std::vector((width + 1) / 2 + 8, kUntouched),
                        std::vector((width + 1) / 2 + 8, kUntouched)};

        UnpackV210Row(reinterpret_cast<const std::byte*>(words.data()), static_cast<std::int32_t>(width),
                      row.luma.data(), row.cb.data(), row.cr.data());

        for (std::vector<std::uint16_t>* plane : {&expected.luma, &expected.cb, &expected.cr}) {
            plane->resize(plane->size() + 8, kUntouched);
        }
        EXPECT_EQ(row.luma, expected.luma) << "width " << width;
        EXPECT_EQ(row.cb, expected.cb) << "width " << width;
        EXPECT_EQ(row.cr, expected.cr) << "width " << width;
    }
}

TEST(V210Packing, WhatWasUnpackedIsPackedToTheSameWords)
{
    std::mt19937 random(10);
    std::vector<std::uint32_t> words(32); // 48 pixels, a whole row of a file
    std::generate(words.begin(), words.end(),
                  [&random] { return static_cast<std::uint32_t>(random()) & 0x3FFFFFFF; });
    std::array<std::uint16_t, 48> luma;
    std::array<std::uint16_t, 24> cb;
    std::array<std::uint16_t, 24> cr;
    UnpackV210Row(reinterpret_cast<const std::byte*>(words.data()), 48, luma.data(), cb.data(), cr.data());

    std::vector<std::uint32_t> packed(words.size());
    PackV210Row(luma.data(), cb.data(), cr.data(), 48, reinterpret_cast<std::byte*>(packed.data()));

    EXPECT_EQ(packed, words);
}

} // namespace
} // namespace tessel::exporting
