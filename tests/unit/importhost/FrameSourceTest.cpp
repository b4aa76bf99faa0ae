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

TEST(FrameSource, WhatThePlugInLeavesAloneIsZeroFrameAfterFrame)
{
    FrameSource source(FrameFilling::Zero);
    for (const std::size_t left : {0U, 1U, 0U, 1U, 400U}) {
        EXPECT_EQ(LastByte(*source.Render(Painter(left)).frame), left == 0 ? kPaint : std::byte{0}) << left;
    }
}

TEST(FrameSource, FramesThatArePaintedWholeAreNotZeroed)
{
    FrameSource source(FrameFilling::Zero);
    source.SetPaintedWhole(true);
    EXPECT_EQ(LastByte(*source.Render(Painter()).frame), kPaint);
    // The pool gives the same memory again, as the last frame left it.
    EXPECT_EQ(LastByte(*source.Render(Painter(1)).frame), kPaint);
}

TEST(FrameSource, EveryFrameIsPaintedOnceIntoOneBuffer)
{
    for (const bool isPaintedWhole : {false, true}) {
        FrameSource source(FrameFilling::Zero);
        source.SetPaintedWhole(isPaintedWhole);
        int requests = 0;
        const std::byte* memory = nullptr;
        for (int i = 0; i < 3; ++i) {
            const auto rendered = source.Render([&requests](FrameRequest& request, ksFrameHandle& handle) {
                ++requests;
                return Painter()(request, handle);
            });
            const std::byte* pixels = rendered.frame->Pixels();
            EXPECT_TRUE(memory == nullptr || memory == pixels);
            memory = pixels;
        }
        EXPECT_EQ(requests, 3);
    }
}

TEST(FrameSource, PoisonShowsWhereNothingIsPainted)
{
    FrameSource source(FrameFilling::Poison);
    const auto rendered = source.Render(Painter(1));
    EXPECT_NE(LastByte(*rendered.frame), std::byte{0});
    EXPECT_NE(LastByte(*rendered.frame), kPaint);
}

TEST(FrameSource, AFailureIsHandedOn)
{
    FrameSource source(FrameFilling::Zero);
    const auto rendered = source.Render([](FrameRequest& request, ksFrameHandle& handle) {
        handle = request.Create(0, 1, 1);
        return 5;
    });
    EXPECT_EQ(rendered.result, 5);
    EXPECT_EQ(rendered.refusal, importhost::FrameRefusal::FormatCannotBePainted);
    EXPECT_EQ(rendered.frame, nullptr);
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
    EXPECT_TRUE(rendered.isForeign);
}

TEST(FrameSource, ManyThreadsNeverSeeWhatAnEarlierFrameLeft)
{
    for (const std::size_t left : {std::size_t{0}, std::size_t{1}}) {
        FrameSource source(FrameFilling::Zero);
        source.SetPaintedWhole(left == 0);
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
    }
}

} // namespace
