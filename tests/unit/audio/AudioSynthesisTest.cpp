#include "AudioTestSupport.h"

#include <ImporterTessel/audio/AudioSynthesis.h>
#include <ImporterTessel/audio/MultichannelIdentification.h>
#include <ImporterTessel/audio/SteadyTone.h>
#include <ImporterTessel/audio/StereoIdentification.h>
#include <ImporterTessel/settings/TesselInfo.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace {

using audiotest::Buffers;
using audiotest::RateOf;
using audiotest::RequestAt;
using audiotest::SameBits;
using ImporterTessel::SynthesizeAudio;
using ImporterTessel::TesselInfo;

constexpr std::int64_t kMinimum = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMaximum = std::numeric_limits<std::int64_t>::max();

TesselInfo Identification(std::int32_t format)
{
    TesselInfo info;
    info.mToneFormat = ImporterTessel::kToneIdentifyChannels;
    info.mIdentifierFormat = format;
    info.mNumChannels = 6;
    return info;
}

Buffers Rendered(const TesselInfo& info, std::int64_t position, std::uint32_t count)
{
    Buffers buffers(6, count);
    SynthesizeAudio(info, position, count, buffers.Channels());
    return buffers;
}

void ExpectSame(const Buffers& actual, const Buffers& expected)
{
    for (std::int32_t channel = 0; channel < 6; ++channel) {
        EXPECT_TRUE(SameBits(actual[channel], expected[channel])) << "channel " << channel;
    }
}

TEST(AudioSynthesis, OfADefaultClipIsAStereoToneOf1000Hertz)
{
    const Buffers buffers = Rendered(TesselInfo(), 480, 1000);
    const std::vector<float> tone = audiotest::SineFrom(480, 1000, {1000.0F, 0.25F}, RateOf(48000.0F));
    EXPECT_TRUE(SameBits(buffers[0], tone));
    EXPECT_TRUE(SameBits(buffers[1], tone));
    EXPECT_TRUE(buffers.IsUntouched(2));
}

// At 48048.05 samples a second the ticks of a sample are not whole. They are truncated, and the phase's step
// follows from 254016000000 / ticks, not from the sample rate in the settings.
TEST(AudioSynthesis, CutsASamplesDurationToWholeTicksAndTakesThePhaseFromThat)
{
    constexpr double kTicksPerSecond = 254'016'000'000.0;
    constexpr double kTwoPiAsFloat = 6.2831854820251465;
    for (const float sampleRate : {48048.05F, 44100.5F, 11025.0F, 32000.1F}) {
        TesselInfo info;
        info.mSampleRate = sampleRate;
        const auto ticks = static_cast<std::int64_t>(kTicksPerSecond / static_cast<double>(sampleRate));
        // Far from zero, where a duration of one tick more is many cycles away.
        for (const std::int64_t position :
             {std::int64_t{1}, std::int64_t{123'456'789}, std::int64_t{-123'456'789}}) {
            const double step = 1000.0 / (kTicksPerSecond / static_cast<double>(ticks));
            const double cycles = static_cast<double>(position) * step;
            double phase = (cycles - std::trunc(cycles)) * kTwoPiAsFloat;
            const Buffers buffers = Rendered(info, position, 64);
            for (std::size_t k = 0; k < 64; ++k, phase += step * kTwoPiAsFloat) {
                ASSERT_NEAR(buffers[0][k], std::sin(phase) * 0.25, 1e-7) << sampleRate << ", sample " << k;
            }
        }
    }
}

TEST(AudioSynthesis, TakesEveryToneFormatButOneForTheSteadyTone)
{
    for (const std::int32_t format : {0, 2, -1, 77}) {
        TesselInfo info = Identification(ImporterTessel::kIdentifierBLITS);
        info.mToneFormat = format;
        info.mSteadyToneFrequency = 440.0F;
        info.mSteadyToneAmplitude = 0.5F;
        info.mSampleRate = 44100.0F;
        Buffers expected(6, 700);
        SynthesizeSteadyTone(RequestAt(9, RateOf(44100.0F), expected), {440.0F, 0.5F}, 6);
        ExpectSame(Rendered(info, 9, 700), expected);
    }
}

TEST(AudioSynthesis, ChoosesTheIdentificationByItsNumber)
{
    constexpr std::int64_t kPosition = 3 * 48000;
    constexpr std::uint32_t kCount = 100'000;
    Buffers expected(6, kCount);
    SynthesizeStereoIdentification(RequestAt(kPosition, RateOf(48000.0F), expected), 1000.0F);
    ExpectSame(Rendered(Identification(0), kPosition, kCount), expected);
    SynthesizeStereoIdentification(RequestAt(kPosition, RateOf(48000.0F), expected), 400.0F);
    ExpectSame(Rendered(Identification(1), kPosition, kCount), expected);
    SynthesizeEBUMultichannel(RequestAt(kPosition, RateOf(48000.0F), expected));
    ExpectSame(Rendered(Identification(2), kPosition, kCount), expected);
    SynthesizeBLITS(RequestAt(kPosition, RateOf(48000.0F), expected));
    ExpectSame(Rendered(Identification(3), kPosition, kCount), expected);
}

TEST(AudioSynthesis, WritesNothingForAnUnknownIdentification)
{
    for (const std::int32_t format : {-1, 4, 7, std::numeric_limits<std::int32_t>::max()}) {
        const Buffers buffers = Rendered(Identification(format), 0, 100);
        for (std::int32_t channel = 0; channel < 6; ++channel) {
            EXPECT_TRUE(buffers.IsUntouched(channel));
        }
    }
}

TEST(AudioSynthesis, OfNoSamplesOrWithoutBuffersDoesNothing)
{
    for (std::int32_t format = -1; format < 4; ++format) {
        TesselInfo info = Identification(format);
        info.mToneFormat = format < 0 ? 0 : 1;
        SynthesizeAudio(info, 0, 0, nullptr);
        SynthesizeAudio(info, 0, 1000, nullptr);
        const Buffers buffers = Rendered(info, 0, 0);
        EXPECT_TRUE(buffers.GuardsStand());
    }
}

class OddSampleRate : public ::testing::TestWithParam<float> {};

// For any numbers the request returns; it writes every sample of the pattern's channels, and nothing else.
TEST_P(OddSampleRate, FillsTheBuffersAndNothingElseFromAnyPosition)
{
    for (const std::int64_t position :
         {kMinimum, kMinimum + 1, kMinimum + 2'000, kMinimum / 5'292'000, std::int64_t{-1}, std::int64_t{0},
          std::int64_t{1}, std::int64_t{1'728'000'000}, kMaximum / 5'292'000 - 700, kMaximum - 2'000,
          kMaximum - 1, kMaximum}) {
        for (const std::uint32_t count : {1U, 2U, 511U, 512U, 513U, 5000U}) {
            for (std::int32_t format = -1; format < 4; ++format) {
                TesselInfo info = Identification(format);
                info.mToneFormat = format < 0 ? 0 : 1;
                info.mSampleRate = GetParam();
                const Buffers buffers = Rendered(info, position, count);
                EXPECT_TRUE(buffers.GuardsStand());
                const bool isStereo = format == 0 || format == 1;
                for (std::int32_t channel = 0; channel < 6; ++channel) {
                    EXPECT_TRUE(isStereo && channel > 1 ? buffers.IsUntouched(channel)
                                                        : buffers.IsWritten(channel))
                        << "channel " << channel << " of format " << format << ", " << count << " samples from "
                        << position;
                }
            }
        }
    }
}

using audiotest::kInfinity;
using audiotest::kNaN;

/// A rate in the name of a test, which takes letters and digits alone: 1e-45 is "1eminus45".
std::string NameOf(float rate)
{
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), rate).ptr;
    std::string name;
    for (const char* digit = digits.data(); digit != end; ++digit) {
        if (*digit == '-') {
            name += "minus";
        } else if (*digit == '.') {
            name += "point";
        } else if (*digit != '+') {
            name += *digit;
        }
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Rates, OddSampleRate,
                         ::testing::Values(0.0F, -0.0F, 1e-45F, 1e-30F, 0.5F, 3.0F, 47999.7F, 48000.0F, 1e11F,
                                           2e11F, 2.6e11F, 1e12F, 3e38F, -1e-30F, -48000.0F, -3e38F, kNaN,
                                           kInfinity, -kInfinity),
                         [](const auto& info) { return NameOf(info.param); });

} // namespace
