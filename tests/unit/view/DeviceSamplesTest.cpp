#include "SampleClip.h"

#include <tessel/view/model/DeviceSamples.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace tessel::view {
namespace {

template <class Value>
std::vector<Value> Read(DeviceSamples& samples, const DeviceFormat& format, std::size_t frames)
{
    std::vector<std::byte> bytes(frames * format.BytesPerFrame());
    EXPECT_EQ(samples.Read(bytes), bytes.size());
    std::vector<Value> values(bytes.size() / sizeof(Value));
    std::memcpy(values.data(), bytes.data(), bytes.size());
    return values;
}

/// The plug-in's own samples.
std::vector<std::vector<float>> Rendered(const ViewedClip& clip, std::int64_t position, std::uint32_t count)
{
    std::vector<std::vector<float>> channels(clip.ChannelNames().size(), std::vector<float>(count));
    std::vector<float*> starts;
    for (std::vector<float>& channel : channels) {
        starts.push_back(channel.data());
    }
    clip.Source().RenderAudio(position, count, starts);
    return channels;
}

TEST(DeviceSamples, AreThePluginsSamplesWhereTheDeviceHasTheClipsChannels)
{
    const auto clip = Sample("hd-2997.tessel"); // 1 kHz, 0.25 of full scale, 48 kHz
    const DeviceFormat format{2, DeviceSampleType::Float32};
    DeviceSamples samples(clip, format, 0, SoundEnd::Silence);
    const auto heard = Read<float>(samples, format, 2048);
    const auto rendered = Rendered(*clip, 0, 2048);
    for (std::size_t i = 0; i < 2048; ++i) {
        ASSERT_EQ(heard[2 * i], rendered[0][i]) << i;
        ASSERT_EQ(heard[2 * i + 1], rendered[1][i]) << i;
    }
    // A quarter of a millisecond after a zero a sine of 1 kHz is at its peak.
    EXPECT_NEAR(std::abs(heard[2 * 12]), 0.25, 1e-5);
}

TEST(DeviceSamples, AnyCutOfTheRequestsGivesTheSameSound)
{
    const auto clip = Sample("surround-ebu.tessel");
    const DeviceFormat format{6, DeviceSampleType::Float32};
    DeviceSamples whole(clip, format, 1000, SoundEnd::Silence);
    DeviceSamples cut(clip, format, 1000, SoundEnd::Silence);
    const auto expected = Read<float>(whole, format, 3000);
    std::vector<float> heard;
    for (const std::size_t frames : {1U, 999U, 1500U, 500U}) {
        const auto part = Read<float>(cut, format, frames);
        heard.insert(heard.end(), part.begin(), part.end());
    }
    EXPECT_EQ(heard, expected);
}

TEST(DeviceSamples, SurroundIsMixedToStereoByBs775)
{
    const auto clip = Sample("surround-ebu.tessel");
    const DeviceFormat six{6, DeviceSampleType::Float32};
    const DeviceFormat two{2, DeviceSampleType::Float32};
    DeviceSamples all(clip, six, 4800, SoundEnd::Silence); // all channels sound at the beginning
    DeviceSamples mixed(clip, two, 4800, SoundEnd::Silence);
    const auto channels = Read<float>(all, six, 4800); // L R C LFE Ls Rs
    const auto heard = Read<float>(mixed, two, 4800);
    for (std::size_t channel = 0; channel < 6; ++channel) {
        ASSERT_NE(channels[6 * 100 + channel], 0.0F) << channel;
    }
    for (std::size_t i = 0; i < 4800; ++i) {
        const float* const from = &channels[6 * i];
        ASSERT_NEAR(heard[2 * i], from[0] + std::sqrt(0.5) * (from[2] + from[4]), 1e-4) << i;
        ASSERT_NEAR(heard[2 * i + 1], from[1] + std::sqrt(0.5) * (from[2] + from[5]), 1e-4) << i;
    }
}

TEST(DeviceSamples, CodesOf16BitsAreTheNearestOnes)
{
    const auto clip = Sample("hd-2997.tessel");
    const DeviceFormat format{2, DeviceSampleType::Int16};
    DeviceSamples samples(clip, format, 0, SoundEnd::Silence);
    const auto heard = Read<std::int16_t>(samples, format, 1000);
    const auto rendered = Rendered(*clip, 0, 1000);
    for (std::size_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(heard[2 * i], std::lround(rendered[0][i] * 32767.0F)) << i;
    }
}

TEST(DeviceSamples, BehindTheLastFrameTheClipBeginsAgainInALoopAndElseIsSilent)
{
    const auto clip = Sample("hd-2997.tessel");
    const std::int64_t length = SamplesOf(*clip);
    EXPECT_EQ(length, 96'096); // 60 frames of 1001/30000 s at 48 kHz
    const DeviceFormat format{2, DeviceSampleType::Float32};
    DeviceSamples once(clip, format, length, SoundEnd::Silence);
    DeviceSamples loop(clip, format, length - 10, SoundEnd::Loop);
    const auto silence = Read<float>(once, format, 1000);
    EXPECT_EQ(silence, std::vector<float>(2000, 0.0F));
    const auto heard = Read<float>(loop, format, 1010);
    const auto begin = Rendered(*clip, 0, 1000);
    for (std::size_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(heard[2 * (i + 10)], begin[0][i]) << i;
    }
}

TEST(DeviceSamples, ALoopHasNoGap)
{
    const auto clip = Sample("hd-2997.tessel");
    const DeviceFormat format{2, DeviceSampleType::Float32};
    for (const std::size_t frames : {480U, 4096U, 50'000U}) {
        DeviceSamples loop(clip, format, 0, SoundEnd::Loop);
        std::size_t silent = 0;
        for (std::size_t done = 0; done < 300'000; done += frames) { // about three times the clip
            for (const float sample : Read<float>(loop, format, frames)) {
                silent = std::abs(sample) < 1e-4F ? silent + 1 : 0;
                ASSERT_LT(silent, 96U) << frames << ' ' << done; // a millisecond
            }
        }
    }
}

TEST(DeviceSamples, PartsOfAFrameAreLeftOut)
{
    const DeviceFormat format{2, DeviceSampleType::Float32};
    DeviceSamples samples(Sample("hd-2997.tessel"), format, 0, SoundEnd::Silence);
    std::vector<std::byte> bytes(8 * 3 + 7);
    EXPECT_EQ(samples.Read(bytes), 24U);
}

} // namespace
} // namespace tessel::view
