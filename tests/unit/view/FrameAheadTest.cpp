#include "SampleClip.h"

#include <tessel/view/model/FrameAhead.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <numeric>

namespace tessel::view {
namespace {

/// Waits for frames, for at most ten seconds.
class Waiter {
public:
    void Notify()
    {
        const std::lock_guard lock(mMutex);
        mChanged.notify_all();
    }
    std::shared_ptr<const ShownFrame> Wait(const FrameAhead& ahead, std::int64_t frame)
    {
        std::unique_lock lock(mMutex);
        std::shared_ptr<const ShownFrame> shown;
        for (int i = 0; i < 1000 && !shown; ++i) {
            shown = ahead.Ready(frame);
            if (!shown) {
                mChanged.wait_for(lock, std::chrono::milliseconds(10));
            }
        }
        return shown;
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
};

TEST(FrameAhead, MakesWhatIsWantedAndForgetsTheRest)
{
    Waiter waiter;
    FrameAhead ahead(Sample("sd-pal-interlaced.tessel"), 2, [&waiter] { waiter.Notify(); });
    ahead.Want({3, 4, 5}, {});
    for (const std::int64_t frame : {3, 4, 5}) {
        const auto shown = waiter.Wait(ahead, frame);
        ASSERT_NE(shown, nullptr);
        EXPECT_EQ(shown->frame, frame);
        EXPECT_EQ(shown->screen.width, shown->pixels.width);
    }
    ahead.Want({5}, {});
    EXPECT_NE(ahead.Ready(5), nullptr);
    EXPECT_EQ(ahead.Ready(3), nullptr);
}

TEST(FrameAhead, CountsScopesNoMoreOftenThanWished)
{
    Waiter waiter;
    FrameAhead ahead(Sample("sd-pal-interlaced.tessel"), 2, [&waiter] { waiter.Notify(); });
    const auto withScopes = [&](const FrameWish& wish) {
        ahead.Want({0, 1, 2, 3}, wish);
        int count = 0;
        for (const std::int64_t frame : {0, 1, 2, 3}) {
            const auto shown = waiter.Wait(ahead, frame);
            count += shown && shown->scopes ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(withScopes({.scopes = true, .secondsBetweenScopes = 3600}), 1);
    EXPECT_EQ(withScopes({.scopes = true, .secondsBetweenScopes = 0}), 4);
    EXPECT_EQ(withScopes({.scopes = true, .secondsBetweenScopes = 1e-9}), 4);
    EXPECT_EQ(withScopes({.scopes = false, .secondsBetweenScopes = 0}), 0);
}

TEST(FrameAhead, MarksLieOverThePixelsThatHaveFaults)
{
    scopes::CodeFaults faults;
    faults.width = 4;
    faults.height = 2;
    faults.flags = {0,
                    scopes::kReservedCode | scopes::kOutsideRange,
                    scopes::kOutsideRange | scopes::kOutsideGamut,
                    scopes::kOutsideGamut,
                    scopes::kReservedCode,
                    0,
                    0,
                    0};
    const exporting::Picture marks = MarksOf(faults);
    const auto at = [&marks](int x, int y) { // blue, green, red, alpha
        std::array<int, 4> pixel{};
        for (std::size_t i = 0; i < 4; ++i) {
            pixel[i] = std::to_integer<int>(
                marks.planes[0][y * marks.rowBytes[0] + 4 * x + static_cast<std::ptrdiff_t>(i)]);
        }
        return pixel;
    };
    EXPECT_EQ(at(0, 0), (std::array<int, 4>{0, 0, 0, 0}));
    EXPECT_EQ(at(1, 0), (std::array<int, 4>{255, 0, 255, 255})); // the gravest fault decides
    EXPECT_EQ(at(2, 0), (std::array<int, 4>{0, 64, 255, 255}));
    EXPECT_EQ(at(3, 0), (std::array<int, 4>{0, 220, 255, 255}));
    EXPECT_EQ(at(0, 1), (std::array<int, 4>{255, 0, 255, 255}));
    EXPECT_EQ(at(3, 1), (std::array<int, 4>{0, 0, 0, 0}));
}

TEST(FrameAhead, AnotherWishIsMadeAnew)
{
    Waiter waiter;
    FrameAhead ahead(Sample("sd-pal-interlaced.tessel"), 2, [&waiter] { waiter.Notify(); });
    ahead.Want({0}, {});
    ASSERT_NE(waiter.Wait(ahead, 0), nullptr);
    ahead.Want({0}, {.scopes = true, .codeCheck = true});
    const auto shown = waiter.Wait(ahead, 0);
    ASSERT_NE(shown, nullptr);
    ASSERT_NE(shown->scopes, nullptr);
    ASSERT_NE(shown->faults, nullptr);
    const std::uint64_t samples = std::accumulate(shown->scopes->histograms[0].begin(),
                                                  shown->scopes->histograms[0].end(), std::uint64_t{0});
    EXPECT_EQ(samples, static_cast<std::uint64_t>(shown->pixels.width) *
                           static_cast<std::uint64_t>(shown->pixels.height));
}

TEST(FrameMaker, MetersReadTheTonesLevelAndTheSegmentsName)
{
    // BLITS: the first tone is on the left channel alone.
    const std::shared_ptr<const ViewedClip> clip = Sample("surround-blits.tessel");
    FrameMaker maker(clip);
    const ShownFrame shown = maker.Make(2, {});
    EXPECT_EQ(shown.identSegment, "L");
    EXPECT_EQ(clip->ChannelNames(), (std::vector<std::string>{"L", "R", "C", "LFE", "Ls", "Rs"}));
    ASSERT_EQ(shown.peaksDb.size(), 6U);
    // The identification's tones have the amplitude 1/8: -18.06 dBFS.
    EXPECT_NEAR(shown.peaksDb[0], 20 * std::log10(0.125), 0.005);
    EXPECT_LT(shown.peaksDb[1], -200.0);
}

TEST(FrameMaker, ScopesAndCodesAreThoseOfTheWholeFrame)
{
    for (const char* const name : {"hd-v210.tessel", "sd-pal-interlaced.tessel", "surround-blits.tessel"}) {
        const std::shared_ptr<const ViewedClip> clip = Sample(name);
        FrameMaker maker(clip);
        for (const int rowStep : {1, 4}) {
            const ShownFrame shown =
                maker.Make(7, {.scopes = true, .codeCheck = true, .scopeRowStep = rowStep});
            const exporting::FrameView& pixels = shown.pixels;
            scopes::SignalReader reader(pixels.format, pixels.width, pixels.height, clip->Matrix(), rowStep);
            const scopes::Signal& signal = reader.Read(pixels);
            ScopeCounts expected;
            scopes::AddWaveform(signal.red, expected.red);
            scopes::AddVectors(signal, expected.vectors);
            scopes::AddWaveform(signal.luma, expected.waveform);
            scopes::AddUp(expected.waveform, expected.histograms[0]);
            EXPECT_EQ(shown.scopes->histograms[0], expected.histograms[0]) << name;
            for (int row = 0; row < ScopeCounts::kLevels; ++row) {
                for (int column = 0; column < expected.red.Columns(); ++column) {
                    ASSERT_EQ(shown.scopes->red.At(column, row), expected.red.At(column, row)) << name;
                }
                for (int column = 0; column < ScopeCounts::kVectors; ++column) {
                    ASSERT_EQ(shown.scopes->vectors.At(column, row), expected.vectors.At(column, row)) << name;
                }
            }
            scopes::SignalReader whole(pixels.format, pixels.width, pixels.height, clip->Matrix());
            scopes::CodeFaults faults;
            scopes::CheckCodes(whole.Read(pixels), pixels.format, faults);
            EXPECT_EQ(shown.faults->flags, faults.flags) << name;
            EXPECT_EQ(shown.faults->outsideGamut, faults.outsideGamut) << name;
        }
    }
}

TEST(ViewedClip, SaysWhatIsShown)
{
    EXPECT_EQ(Sample("hd-v210.tessel")->Description(),
              "1920x1080 V210_422_10u_709, BT.709 matrix, limited range, no display profile");
}

} // namespace
} // namespace tessel::view
