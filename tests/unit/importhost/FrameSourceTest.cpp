#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/FrameSource.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using importhost::FrameBuffer;
using importhost::FrameFilling;
using importhost::FrameRequest;
using importhost::FrameSource;

const std::uint32_t kFormat = BR::BEToSDKPixelFormat(BR::PixelFormat::UYVY_422_8u_709);
constexpr std::int32_t kWidth = 200; // 400 bytes of picture in rows of 448
constexpr std::int32_t kHeight = 150;
constexpr std::byte kPaint{0x77};

/// Makes a frame and paints all of its picture but the last `left` bytes of its last row.
FrameSource::Painter Painter(std::size_t left = 0, std::int32_t width = kWidth, std::int32_t height = kHeight)
{
    return [=](FrameRequest& request, ksFrameHandle& handle) {
        handle = request.Create(kFormat, width, height);
        auto* frame = static_cast<FrameBuffer*>(handle);
        const auto& layout = frame->Layout();
        for (std::int32_t row = 0; row < height; ++row) {
            const std::size_t bytes = layout.pictureRowBytes - (row == height - 1 ? left : 0);
            std::memset(frame->Pixels() + row * layout.rowBytes, static_cast<int>(kPaint), bytes);
        }
        return 0;
    };
}

/// The byte of the last row's picture that `left` = 1 leaves alone.
std::byte LastByte(const FrameBuffer& frame)
{
    const auto& layout = frame.Layout();
    return frame
        .Pixels()[static_cast<std::size_t>(layout.rowBytes) * static_cast<std::size_t>(layout.height - 1) +
                  layout.pictureRowBytes - 1];
}

TEST(FrameSource, APictureThatIsPaintedWholeSparesZeroing)
{
    FrameSource source(FrameFilling::Zero);
    EXPECT_FALSE(source.SparesZeroing());
    EXPECT_EQ(LastByte(*source.Render(Painter()).frame), kPaint);
    EXPECT_TRUE(source.SparesZeroing()) << "padding behind the picture does not count";
}

TEST(FrameSource, OneByteLeftAloneKeepsZeroing)
{
    FrameSource source(FrameFilling::Zero);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(LastByte(*source.Render(Painter(1)).frame), std::byte{0}) << "frame " << i;
    }
    EXPECT_FALSE(source.SparesZeroing());
}

TEST(FrameSource, BitsThatKeepTheirOldValueAreNotTakenForPainted)
{
    // Sets every bit but one of the last byte's and keeps that one as it was.
    const FrameSource::Painter paint = [](FrameRequest& request, ksFrameHandle& handle) {
        const std::int32_t result = Painter(1)(request, handle);
        auto* frame = static_cast<FrameBuffer*>(handle);
        const auto& layout = frame->Layout();
        std::byte& last = frame->Pixels()[layout.rowBytes * (layout.height - 1) +
                                          static_cast<std::int32_t>(layout.pictureRowBytes) - 1];
        last = last | std::byte{0xFE};
        return result;
    };
    FrameSource source(FrameFilling::Zero);
    EXPECT_EQ(LastByte(*source.Render(paint).frame), std::byte{0xFE});
    EXPECT_FALSE(source.SparesZeroing());
}

TEST(FrameSource, SmallFramesAreAlwaysZeroed)
{
    FrameSource source(FrameFilling::Zero);
    (void)source.Render(Painter(0, 127, 500));
    EXPECT_FALSE(source.SparesZeroing());
}

TEST(FrameSource, PoisonShowsWhereNothingIsPainted)
{
    FrameSource source(FrameFilling::Poison);
    const auto rendered = source.Render(Painter(1));
    EXPECT_NE(LastByte(*rendered.frame), std::byte{0});
    EXPECT_NE(LastByte(*rendered.frame), kPaint);
}

TEST(FrameSource, AFailureIsHandedOnAndSparesNothing)
{
    FrameSource source(FrameFilling::Zero);
    const auto rendered = source.Render([](FrameRequest& request, ksFrameHandle& handle) {
        handle = request.Create(0, 1, 1);
        return 5;
    });
    EXPECT_EQ(rendered.result, 5);
    EXPECT_TRUE(rendered.wasAsked);
    EXPECT_EQ(rendered.refusal, importhost::FrameRefusal::FormatCannotBePainted);
    EXPECT_EQ(rendered.frame, nullptr);
    EXPECT_FALSE(source.SparesZeroing());
}

TEST(FrameSource, AForeignHandleIsNoFrame)
{
    FrameSource source(FrameFilling::Zero);
    int something = 0;
    const auto rendered = source.Render([&something](FrameRequest& /*request*/, ksFrameHandle& handle) {
        handle = &something;
        return 0;
    });
    EXPECT_EQ(rendered.frame, nullptr);
    EXPECT_FALSE(rendered.wasAsked);
}

TEST(FrameSource, ManyThreadsNeverSeeWhatAnEarlierFrameLeft)
{
    for (const std::size_t left : {std::size_t{0}, std::size_t{1}}) {
        FrameSource source(FrameFilling::Zero);
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&source, &wrong, left] {
                for (int i = 0; i < 200; ++i) {
                    const auto rendered = source.Render(Painter(left));
                    wrong += LastByte(*rendered.frame) == (left == 0 ? kPaint : std::byte{0}) ? 0 : 1;
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(wrong, 0) << "bytes left alone: " << left;
        EXPECT_EQ(source.SparesZeroing(), left == 0);
    }
}

} // namespace
