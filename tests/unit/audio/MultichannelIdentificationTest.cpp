#include "AudioTestSupport.h"

#include <ImporterTessel/audio/MultichannelIdentification.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

using audiotest::Buffers;
using audiotest::IsSilent;
using audiotest::RateOf;
using audiotest::RequestAt;
using audiotest::SameBits;
using audiotest::SineFrom;
using ImporterTessel::AudioRequest;
using ImporterTessel::Tone;

using Pattern = void (*)(const AudioRequest&) noexcept;

Buffers Rendered(Pattern pattern, std::int64_t position, std::uint32_t count, float sampleRate = 48000.0F,
                 std::int32_t channelCount = 6)
{
    Buffers buffers(channelCount, count);
    pattern(RequestAt(position, RateOf(sampleRate), buffers));
    EXPECT_TRUE(buffers.GuardsStand());
    return buffers;
}

Buffers EBU(std::int64_t position, std::uint32_t count, float sampleRate = 48000.0F)
{
    return Rendered(ImporterTessel::SynthesizeEBUMultichannel, position, count, sampleRate);
}

Buffers BLITS(std::int64_t position, std::uint32_t count, float sampleRate = 48000.0F)
{
    return Rendered(ImporterTessel::SynthesizeBLITS, position, count, sampleRate);
}

constexpr Tone kEBUTone{1000.0F, 0.125F};

// 48000 Hz: 24000 samples to a unit of 0.5 s.
constexpr std::int64_t kEBUUnit = 24'000;
constexpr std::uint32_t kEBUCycle = 24 * kEBUUnit;

/// A unit of a channel of a rendered cycle.
std::span<const float> UnitOf(const Buffers& cycle, std::int32_t channel, std::int64_t unit,
                              std::int64_t unitSize)
{
    return cycle[channel].subspan(static_cast<std::size_t>(unit * unitSize),
                                  static_cast<std::size_t>(unitSize));
}

TEST(EBUMultichannel, SoundsOnItsFirstFiveChannelsTogetherAtBothEndsOfTheCycle)
{
    const Buffers cycle = EBU(0, kEBUCycle);
    for (const std::int64_t unit : {0, 1, 2, 3, 4, 5, 18, 19, 20, 21, 22, 23}) {
        const std::vector<float> tone = SineFrom(unit * kEBUUnit, kEBUUnit, kEBUTone, RateOf(48000.0F));
        for (std::int32_t channel = 0; channel < 5; ++channel) {
            EXPECT_TRUE(SameBits(UnitOf(cycle, channel, unit, kEBUUnit), tone)) << channel << " in " << unit;
        }
    }
}

TEST(EBUMultichannel, IsSilentOnItsFirstFiveChannelsBetweenTones)
{
    const Buffers cycle = EBU(0, kEBUCycle);
    for (const std::int64_t unit : {6, 8, 10, 12, 14, 16, 17}) {
        for (std::int32_t channel = 0; channel < 5; ++channel) {
            EXPECT_TRUE(IsSilent(UnitOf(cycle, channel, unit, kEBUUnit))) << channel << " in " << unit;
        }
    }
}

// Left, centre, right, right surround, left surround, with the phase that the request began with.
TEST(EBUMultichannel, VisitsOneChannelAfterTheOther)
{
    constexpr std::int64_t kStart = 17; // so that the phase is not 0
    const Buffers cycle = EBU(kStart, kEBUCycle);
    struct Visit {
        std::int64_t unit;
        std::int32_t channel;
    };
    for (const Visit visit : {Visit{7, 0}, Visit{9, 4}, Visit{11, 1}, Visit{13, 3}, Visit{15, 2}}) {
        for (std::int32_t channel = 0; channel < 5; ++channel) {
            const std::span samples =
                cycle[channel].subspan(static_cast<std::size_t>(visit.unit * kEBUUnit - kStart), kEBUUnit);
            if (channel == visit.channel) {
                EXPECT_TRUE(SameBits(samples, SineFrom(kStart, kEBUUnit, kEBUTone, RateOf(48000.0F))))
                    << visit.unit;
            } else {
                EXPECT_TRUE(IsSilent(samples)) << channel << " in " << visit.unit;
            }
        }
    }
}

TEST(EBUMultichannel, SoundsOnChannelFiveThroughout)
{
    const Buffers cycle = EBU(1234, kEBUCycle);
    EXPECT_TRUE(SameBits(cycle[5], SineFrom(1234, kEBUCycle, {80.0F, 0.125F}, RateOf(48000.0F))));
}

TEST(EBUMultichannel, RestartsASingleChannelsPhaseWithEachRequest)
{
    constexpr std::int64_t kUnitStart = 7 * kEBUUnit;
    constexpr std::uint32_t kCut = 101; // no whole number of cycles of 48 samples
    const Buffers whole = EBU(kUnitStart + 5, 2000);
    const Buffers second = EBU(kUnitStart + 5 + kCut, 2000 - kCut);
    EXPECT_TRUE(SameBits(second[0], SineFrom(kUnitStart + 5 + kCut, 2000 - kCut, kEBUTone, RateOf(48000.0F))));
    // A request that began before the unit carries the phase of its own first sample into it.
    const Buffers early = EBU(kUnitStart - 13, 1000);
    EXPECT_TRUE(SameBits(early[0].subspan(13), SineFrom(kUnitStart - 13, 987, kEBUTone, RateOf(48000.0F))));
    EXPECT_FALSE(audiotest::IsNear(early[0].subspan(18, 900), whole[0].first(900), 0.01));
}

// At 48048.05 samples a second a sample lasts 5286707 ticks, and unit 7 ends at 4 s = sample 192192.23. Sample
// 192192 is a segment of its own, and on a single channel segments take the request's phase: a click of one
// sample.
TEST(EBUMultichannel, ClicksInTheLastSampleOfASingleChannelBeforeABorderBetweenSamples)
{
    constexpr float kRate = 48048.05F;
    constexpr std::int64_t kStart = 168'180; // in unit 7, which begins at 168168.2
    constexpr std::size_t kLast = 192'192 - kStart;
    const Buffers buffers = EBU(kStart, kLast + 100, kRate);
    const std::vector<float> tone = SineFrom(kStart, kLast + 1, kEBUTone, RateOf(kRate));
    EXPECT_TRUE(SameBits(buffers[0].first(kLast), std::span(tone).first(kLast)));
    EXPECT_EQ(buffers[0][kLast], tone[0]) << "the request's first phase again";
    EXPECT_GT(std::abs(tone[kLast] - tone[0]), 0.01F) << "without the click it would be the tone's next sample";
    EXPECT_TRUE(IsSilent(buffers[0].subspan(kLast + 1)));
}

TEST(EBUMultichannel, JoinsRequestsWhereAllChannelsSound)
{
    const Buffers whole = EBU(5, 2000);
    const Buffers second = EBU(106, 1899);
    for (std::int32_t channel = 0; channel < 6; ++channel) {
        // 101 samples of 1000 Hz: three cycles at most, and the float's rounding.
        EXPECT_TRUE(
            audiotest::IsNear(second[channel], whole[channel].subspan(101), 0.125 * 1.75e-7 * 3 + 1.5e-8))
            << channel;
    }
}

/// The BLITS cycle as a listener hears it: seconds, channels, hertz, level.
struct Passage {
    double from;
    double to;
    std::vector<std::int32_t> channels;
    float frequency;
    float level;
};

std::vector<Passage> BLITSPassages()
{
    std::vector<Passage> passages{
        {0.0, 0.6, {0}, 880.0F, 0.125F},     {0.8, 1.4, {1}, 880.0F, 0.125F}, {1.6, 2.2, {4}, 1320.0F, 0.125F},
        {2.4, 3.0, {5}, 88.5F, 0.125F},      {3.2, 3.8, {2}, 660.0F, 0.125F}, {4.0, 4.6, {3}, 660.0F, 0.125F},
        {4.8, 5.8, {0, 1}, 1000.0F, 0.125F},
    };
    // Four interruptions of the left channel by 0.3 s, 0.3 s apart, then two seconds of both.
    for (const double interruption : {5.8, 6.4, 7.0, 7.6}) {
        const double end = interruption == 7.6 ? 9.9 : interruption + 0.6;
        passages.push_back({interruption, interruption + 0.3, {1}, 1000.0F, 0.125F});
        passages.push_back({interruption + 0.3, end, {0, 1}, 1000.0F, 0.125F});
    }
    passages.push_back({10.2, 13.2, {0, 1, 2, 3, 4, 5}, 2000.0F, 0.0625F});
    return passages;
}

/// What unit 0 to 133 of 0.1 s has: the passage around its middle.
const Passage* PassageOf(const std::vector<Passage>& passages, std::int64_t unit)
{
    const double middle = 0.1 * static_cast<double>(unit) + 0.05;
    for (const Passage& passage : passages) {
        if (passage.from < middle && middle < passage.to) {
            return &passage;
        }
    }
    return nullptr;
}

TEST(BLITS, HasEachUnitOfItsCycleOnce)
{
    const std::vector<Passage> passages = BLITSPassages();
    for (const float sampleRate : {8000.0F, 44100.0F, 48000.0F}) {
        const auto unitSize = static_cast<std::int64_t>(sampleRate) / 10;
        for (const std::int64_t cycle : {0, 1, -1, 2687}) { // 2687 × 13.4 s are ten hours
            const std::int64_t start = cycle * 134 * unitSize;
            const Buffers buffers = BLITS(start, static_cast<std::uint32_t>(134 * unitSize), sampleRate);
            for (std::int64_t unit = 0; unit < 134; ++unit) {
                const Passage* const passage = PassageOf(passages, unit);
                for (std::int32_t channel = 0; channel < 6; ++channel) {
                    const std::span samples = UnitOf(buffers, channel, unit, unitSize);
                    if (passage != nullptr && std::ranges::count(passage->channels, channel) != 0) {
                        EXPECT_TRUE(SameBits(
                            samples, SineFrom(start + unit * unitSize, static_cast<std::size_t>(unitSize),
                                              {passage->frequency, passage->level}, RateOf(sampleRate))))
                            << "channel " << channel << ", unit " << unit << ", " << sampleRate << " Hz";
                    } else {
                        EXPECT_TRUE(IsSilent(samples)) << "channel " << channel << ", unit " << unit;
                    }
                }
            }
        }
    }
}

TEST(BLITS, ThatStartsInsideAUnitEndsItsFirstSegmentWithIt)
{
    const Buffers buffers = BLITS(5 * 4800 + 4700, 200);
    EXPECT_TRUE(
        SameBits(buffers[0].first(100), SineFrom(5 * 4800 + 4700, 100, {880.0F, 0.125F}, RateOf(48000.0F))));
    EXPECT_TRUE(IsSilent(buffers[0].subspan(100)));
}

// 11025 Hz: 0.1 s is 1102.5 samples, so every other border falls between two.
TEST(BLITS, HasTheSameBordersHoweverItIsCut)
{
    std::mt19937_64 random(audiotest::Seed());
    for (const float sampleRate : {11025.0F, 48000.0F, 22222.2F}) {
        const auto count = static_cast<std::uint32_t>(sampleRate * 13.4F) + 1000;
        const Buffers whole = BLITS(-300, count, sampleRate);
        for (std::uint32_t offset = 0; offset < count;) {
            const auto length = std::min(count - offset, static_cast<std::uint32_t>(1 + random() % 5000));
            const Buffers part = BLITS(std::int64_t{offset} - 300, length, sampleRate);
            for (std::int32_t channel = 0; channel < 6; ++channel) {
                // A unit has 200 cycles at most.
                EXPECT_TRUE(audiotest::IsNear(part[channel], whole[channel].subspan(offset, length),
                                              0.125 * 1.75e-7 * 200 + 1.5e-8))
                    << "channel " << channel << " from " << offset << "; " << audiotest::SeedText();
                // Silence is exactly 0 in both; a tone is exactly 0 only where its phase is.
                for (std::uint32_t k = 1; k + 1 < length; ++k) {
                    if (part[channel][k - 1] == 0.0F && part[channel][k] == 0.0F &&
                        part[channel][k + 1] == 0.0F) {
                        ASSERT_EQ(audiotest::Bits(whole[channel][offset + k]), 0U) << audiotest::SeedText();
                    }
                }
            }
            offset += length;
        }
    }
}

TEST(MultichannelIdentification, WritesSixChannelsAndNoMore)
{
    for (const Pattern pattern : {ImporterTessel::SynthesizeEBUMultichannel, ImporterTessel::SynthesizeBLITS}) {
        const Buffers buffers = Rendered(pattern, 0, 60'000, 48000.0F, 8);
        for (std::int32_t channel = 0; channel < 6; ++channel) {
            EXPECT_TRUE(buffers.IsWritten(channel)) << channel;
        }
        EXPECT_TRUE(buffers.IsUntouched(6));
        EXPECT_TRUE(buffers.IsUntouched(7));
    }
}

TEST(MultichannelIdentification, PassesOverChannelsWithoutABuffer)
{
    for (const Pattern pattern : {ImporterTessel::SynthesizeEBUMultichannel, ImporterTessel::SynthesizeBLITS}) {
        const Buffers whole = Rendered(pattern, 0, 650'000);
        for (std::int32_t withheld = 0; withheld < 6; ++withheld) {
            Buffers buffers(6, 650'000);
            buffers.Withhold(withheld);
            pattern(RequestAt(0, RateOf(48000.0F), buffers));
            for (std::int32_t channel = 0; channel < 6; ++channel) {
                if (channel == withheld) {
                    EXPECT_TRUE(buffers.IsUntouched(channel));
                } else {
                    EXPECT_TRUE(SameBits(buffers[channel], whole[channel])) << channel;
                }
            }
        }
    }
}

} // namespace
