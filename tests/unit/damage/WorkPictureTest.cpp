#include "WorkPictures.h"

#include <tessel/export/convert/Components.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace tessel::damage {
namespace {

using exporting::Picture;
using exporting::PictureLayout;

constexpr int kLayoutCount = static_cast<int>(PictureLayout::V210) + 1;

/// Random codes in every sample of a picture, padding zero.
Picture RandomPicture(PictureLayout layout, std::int32_t width, std::int32_t height, unsigned seed)
{
    std::mt19937 random(seed);
    if (layout == PictureLayout::V210) {
        Picture picture = exporting::AllocatePicture(layout, width, height);
        for (std::int32_t y = 0; y < height; ++y) {
            auto* words = reinterpret_cast<std::uint32_t*>(picture.planes[0] + y * picture.rowBytes[0]);
            std::memset(words, 0, static_cast<std::size_t>(picture.rowBytes[0]));
            for (std::int32_t i = 0; i < width / 6 * 4; ++i) {
                words[i] = random() & 0x3FFFFFFFU;
            }
        }
        return picture;
    }
    const exporting::LayoutInfo& info = exporting::InfoOf(layout);
    Picture picture = exporting::AllocatePicture(layout, width, height);
    for (int component = 0; component < 4; ++component) {
        const exporting::ComponentTarget samples = exporting::ComponentOf(picture, component);
        if (samples.first == nullptr) {
            continue;
        }
        std::vector<float> values(static_cast<std::size_t>(samples.width) *
                                  static_cast<std::size_t>(samples.height));
        for (float& value : values) {
            value = info.type == exporting::SampleType::F32
                        ? static_cast<float>(random()) / 1e9F - 2.0F
                        : static_cast<float>(random() & ((1U << info.bits) - 1U));
        }
        exporting::StoreFloats(values.data(), samples.width, samples, {1, 0, 0, 65535});
    }
    return picture;
}

/// All samples of a picture, component by component, as floats.
std::vector<float> SamplesOf(const Picture& picture)
{
    std::vector<float> all;
    const WorkPicture work = Load(picture, {});
    for (const Plane& plane : work.planes) {
        all.insert(all.end(), plane.samples.begin(), plane.samples.end());
    }
    return all;
}

TEST(WorkPictures, LoadingAndStoringKeepsEveryCodeOfEveryLayoutInBothRanges)
{
    for (int i = 0; i < kLayoutCount; ++i) {
        const auto layout = static_cast<PictureLayout>(i);
        for (const bool fullRange : {false, true}) {
            const Picture picture = RandomPicture(layout, 12, 6, static_cast<unsigned>(i));
            const Picture stored = Store(Load(picture, {exporting::Matrix::Bt709, fullRange}));
            ASSERT_EQ(stored.layout, layout);
            EXPECT_EQ(SamplesOf(stored), SamplesOf(picture)) << "layout " << i << ", full range " << fullRange;
        }
    }
}

TEST(WorkPictures, BlackIsLimitedRangesSixteenAndMiddleChroma)
{
    const WorkPicture like = Load(exporting::AllocatePicture(PictureLayout::Yuv422p10, 8, 4), {});
    const WorkPicture black = BlackLike(like, 4, 2);
    EXPECT_EQ(testing::CodeAt(black, 0, 0, 0), 64);
    EXPECT_EQ(testing::CodeAt(black, 1, 0, 0), 512);
    EXPECT_EQ(black.planes[1].width, 2);
    EXPECT_EQ(black.planes[1].height, 2);
}

} // namespace
} // namespace tessel::damage
