#include "ClipModel.h"

#include <tessel/export/AudioBlocks.h>
#include <tessel/export/convert/SampleQuantizer.h>

#include <gtest/gtest.h>

#include <limits>

namespace tessel::exporting {
namespace {

TEST(AudioBlocks, BlockIsTheSmallestWholeMultipleOfATenthOfASecond)
{
    const struct {
        int rate;
        std::int64_t block;
    } kBlocks[] = {{48000, 4800}, {44100, 4410}, {22050, 2205}, {11025, 2205}, {8000, 800},    {192000, 19200},
                   {12345, 2469}, {1, 1},        {3, 3},        {7, 7},        {44101, 44101}, {96000, 9600}};
    for (const auto& [rate, block] : kBlocks) {
        EXPECT_EQ(AudioBlockSize(rate), block) << rate;
    }
}

TEST(AudioBlocks, FramesStartAtTheNearestSample)
{
    // 7 frames at 30000/1001 are 7 × 1601.6 = 11211.2 samples at 48 kHz, 8 are 12812.8.
    EXPECT_EQ(FrameStartSample(7, 30000, 1001, 48000), 11211);
    EXPECT_EQ(FrameStartSample(8, 30000, 1001, 48000), 12813);
    EXPECT_EQ(FrameStartSample(0, 30000, 1001, 48000), 0);
    EXPECT_EQ(FrameStartSample(1, 2, 1, 3), 2); // 1.5: halves upwards
    // 10^9 frames at a frame a second.
    EXPECT_EQ(FrameStartSample(1'000'000'000, 1, 1, 192000), 192'000'000'000'000);
    EXPECT_EQ(FrameStartSample(2'000'000'000, 2147483647, 2147483646, 16777216), 33'554'431'984'375'000);
}

TEST(AudioBlocks, RequestsAreWholeBlocksAlignedToZeroWhateverIsRead)
{
    const CountingSource source(DescriptionOf(BR::PixelFormat::BGRX_4444_8u));
    AudioBlockReader reader(source, 48000, 2);
    for (std::int64_t position = 4000; position < 30000;) {
        const std::int64_t count = reader.Read(position, 1601);
        ASSERT_GE(count, 1);
        for (std::int64_t i = 0; i < count; ++i) {
            ASSERT_EQ(reader.Channel(1)[i], CountingSource::Sample(position + i, 1));
        }
        position += count;
    }
    for (const auto& [position, count] : source.AudioRequests()) {
        EXPECT_EQ(position % 4800, 0);
        EXPECT_EQ(count, 4800U);
    }
    EXPECT_EQ(source.AudioRequests().size(), 7U); // blocks 0 to 6, each once
}

/// Fails for the block from sample 4800 on, after it has written some of it.
class FailingSound final : public SignalSource {
public:
    [[nodiscard]] const document::ClipFacts& Description() const override { return mFacts; }
    [[nodiscard]] FrameView RenderFrame(std::int64_t /*frame*/) const override { return {}; }
    void RenderAudio(std::int64_t position, std::uint32_t /*count*/,
                     std::span<float* const> channels) const override
    {
        channels[0][0] = static_cast<float>(position);
        if (position == 4800) {
            throw std::bad_alloc();
        }
    }

private:
    document::ClipFacts mFacts;
};

TEST(AudioBlocks, ABlockIsAskedForAgainWhereTheNextOneFailedHalfWay)
{
    const FailingSound source;
    AudioBlockReader reader(source, 48000, 1);
    static_cast<void>(reader.Read(0, 1));
    EXPECT_THROW(static_cast<void>(reader.Read(4800, 1)), std::bad_alloc);
    static_cast<void>(reader.Read(0, 1));
    EXPECT_EQ(reader.Channel(0)[0], 0.0F);
}

TEST(SampleQuantizer, RoundsToTheNearestAndClips)
{
    const SampleQuantizer to16(16, Dither::None);
    EXPECT_EQ(to16(0.5F / 32768, 0, 0), 1);
    EXPECT_EQ(to16(-0.5F / 32768, 0, 0), 0);
    EXPECT_EQ(to16(0.49F / 32768, 0, 0), 0);
    EXPECT_EQ(to16(1.0F, 0, 0), 32767);
    EXPECT_EQ(to16(-1.0F, 0, 0), -32768);
    EXPECT_EQ(to16(1e30F, 0, 0), 32767);
    EXPECT_EQ(to16(-std::numeric_limits<float>::infinity(), 0, 0), -32768);
    EXPECT_EQ(to16(std::numeric_limits<float>::quiet_NaN(), 0, 0), 0);
    EXPECT_EQ(SampleQuantizer(24, Dither::None)(-1.0F, 0, 0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(SampleQuantizer(24, Dither::None)(1.0F, 0, 0), 0x7FFFFF00);
    EXPECT_EQ(SampleQuantizer(32, Dither::None)(1.0F, 0, 0), 0x7FFFFFFF);
}

TEST(SampleQuantizer, DitherMakesTheMeanOfACodeWhatTheSampleIs)
{
    const SampleQuantizer dithered(16, Dither::Triangular);
    for (const double rest : {0.0, 0.1, 0.25, 0.5, 0.9}) {
        double sum = 0;
        constexpr int kCount = 200000;
        for (int i = 0; i < kCount; ++i) {
            sum += dithered(static_cast<float>((100 + rest) / 32768), i, 3);
        }
        // The noise's variance is 1/6, rounding's up to 1/4: ten standard errors are below 0.02.
        EXPECT_NEAR(sum / kCount, 100 + rest, 0.02) << rest;
    }
}

} // namespace
} // namespace tessel::exporting
