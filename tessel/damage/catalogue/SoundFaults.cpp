#include "Fault.h"

#include <tessel/verify/catalogue/Names.h>

#include <array>
#include <cmath>

namespace tessel::damage {
namespace {

namespace id = verify::id;

double SampleRate(const DamagePlan& plan) noexcept
{
    return static_cast<double>(plan.described.sampleRate);
}

std::int64_t Samples(const DamagePlan& plan, double seconds) noexcept
{
    return std::llround(seconds * SampleRate(plan));
}

std::size_t ReadChannel(const DamagePlan& plan, FaultValue& value)
{
    if (plan.described.channelCount < 1) {
        value.Refuse("the clip has no sound");
    }
    return static_cast<std::size_t>(value.Whole(0, plan.described.channelCount - 1));
}

void SwapTwo(DamagePlan& plan, FaultValue& value, Truth&)
{
    const std::size_t first = ReadChannel(plan, value);
    const std::size_t second = ReadChannel(plan, value);
    plan.channels.push_back(SwapChannels(first, second));
}

/// "COUNT[:SECONDS]": so many samples at a time; without one, one second after the beginning.
Span ReadStretch(const DamagePlan& plan, FaultValue& value, Truth& truth)
{
    const std::int64_t count = value.Whole(1, Samples(plan, 3600));
    const double seconds = value.IsAtEnd() ? 1 : value.Number(0, 1e6);
    const std::int64_t position = Samples(plan, seconds);
    truth.samples = {position, position + count - 1};
    return *truth.samples;
}

void Drift(DamagePlan& plan, FaultValue& value, Truth&)
{
    plan.soundTime.Speed(1 + value.Number(-1e5, 1e5) * 1e-6);
}

void Exchange(DamagePlan& plan, FaultValue& value, Truth& truth)
{
    const std::int64_t first = Samples(plan, value.Number(0, 1e6));
    const std::int64_t second = Samples(plan, value.Number(0, 1e6));
    const std::int64_t count = Samples(plan, value.Number(0.001, 1e6));
    if (second < first + count) {
        value.Refuse("the second stretch begins before the first one has ended");
    }
    plan.soundTime.Exchange(first, second, count);
    truth.samples = {first, second + count - 1};
}

void ChangeChannelCount(DamagePlan& plan, std::int32_t count)
{
    plan.described.channelCount = count;
    plan.described.channelType = count == 6 ? 3 : 2;
}

void AddDownMix(DamagePlan& plan, FaultValue& value, Truth&)
{
    const std::int32_t channels = plan.described.channelCount;
    if (channels < 2) {
        value.Refuse("a clip with one channel cannot be mixed down");
    }
    plan.channels.push_back(DownMix());
    ChangeChannelCount(plan, channels >= 6 ? 2 : 1);
}

void AddUpMix(DamagePlan& plan, FaultValue& value, Truth&)
{
    const std::int32_t channels = plan.described.channelCount;
    if (channels != 1 && channels != 2) {
        value.Refuse("only one or two channels can be mixed up");
    }
    plan.channels.push_back(UpMix());
    ChangeChannelCount(plan, channels == 1 ? 2 : 6);
}

constexpr std::array kSoundFaults = std::to_array<Fault>({
    {id::kAudioOrder, "CHANNEL:CHANNEL", "0:1",
     "two channels change places; channels are L R Ls Rs C LFE in 5.1, counted from 0", SwapTwo},
    {id::kAudioPolarity, "CHANNEL", "0", "a channel is inverted",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(InvertChannel(ReadChannel(plan, value)));
     }},
    {id::kAudioGain, "DECIBELS", "-6", "all channels are louder or softer",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(MultiplyByDecibels(value.Number(-120, 60)));
     }},
    {id::kAudioSilence, "CHANNEL", "0", "a channel is silent",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(SilenceChannel(ReadChannel(plan, value)));
     }},
    {id::kAudioClipping, "DBFS", "-24", "samples are cut at a level",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(ClipAt(value.Number(-120, 0)));
     }},
    {id::kAudioDc, "LEVEL", "0.01", "a constant is added, 1 being full scale",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(AddConstant(value.Number(-1, 1)));
     }},
    {id::kAudioNoise, "DBFS", "-60", "white noise of an RMS level is added",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(AddNoise(value.Number(-160, 0)));
     }},
    {id::kAudioHarmonics, "PERCENT", "1", "so much third harmonic of a tone of -18 dBFS peak is added",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(BendThirdHarmonic(value.Number(0, 30)));
     }},
    {id::kAudioPitch, "PERCENT", "4", "the sound runs faster, and higher",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.soundTime.Speed(1 + value.Number(-90, 900) / 100);
     }},
    {id::kAudioDrift, "PPM", "100", "the sound's clock runs fast by parts per million", Drift},
    {id::kAudioLost, "COUNT[:SECONDS]", "480", "samples are missing from a moment on",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         const Span lost = ReadStretch(plan, value, truth);
         plan.soundTime.Lose(lost.first, lost.last - lost.first + 1);
     }},
    {id::kAudioInserted, "COUNT[:SECONDS]", "480", "the samples before a moment are heard twice",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         const Span more = ReadStretch(plan, value, truth);
         plan.soundTime.Insert(more.first, more.last - more.first + 1);
     }},
    {id::kAudioDropout, "COUNT[:SECONDS]", "480", "samples are silent from a moment on",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         const Span silent = ReadStretch(plan, value, truth);
         plan.soundTime.Silence(silent.first, silent.last - silent.first + 1);
     }},
    {id::kAudioDepth, "BITS", "8", "samples are cut down to so many bits, without dither",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.channels.push_back(TruncateTo(static_cast<int>(value.Whole(2, 23))));
     }},
    {id::kAudioDownmix, "", "", "5.1 becomes Lo and Ro, stereo becomes mono", AddDownMix},
    {id::kAudioUpmix, "", "", "mono becomes stereo, stereo becomes 5.1", AddUpMix},
    {id::kAudioSegments, "SECONDS:SECONDS:LENGTH", "0.8:1.6:0.6",
     "two stretches of the sound change places, by their beginnings and their length", Exchange},
    {id::kSyncOffset, "MILLISECONDS", "40", "the sound comes later than the picture",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.soundTime.Delay(static_cast<double>(Samples(plan, value.Number(-1e6, 1e6) / 1000)));
     }},
    {id::kSyncDrift, "PPM", "1000", "the sound runs away from the picture by parts per million", Drift},
});

} // namespace

std::span<const Fault> SoundFaults() noexcept
{
    return kSoundFaults;
}

} // namespace tessel::damage
