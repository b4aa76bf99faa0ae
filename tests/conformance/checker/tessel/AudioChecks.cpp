/// Selector 25: which channels each generator writes, and samples that tell the signals apart.

#include "Documents.h"
#include "TesselChecks.h"

#include <cmath>
#include <string>

namespace conformance {

namespace {

constexpr float kUntouched = 7.0F;

/// Six planar buffers, guarded on both sides.
struct Buffers {
    static constexpr std::size_t kGuard = 64;

    explicit Buffers(std::uint32_t sampleCount)
    {
        for (int channel = 0; channel < 6; ++channel) {
            samples.emplace_back(sampleCount + 2 * kGuard, kUntouched);
        }
        for (auto& channel : samples) {
            pointers.push_back(channel.data() + kGuard);
        }
    }

    [[nodiscard]] float At(int channel, std::size_t sample) const
    {
        return pointers[static_cast<std::size_t>(channel)][sample];
    }
    [[nodiscard]] bool Untouched(int channel) const
    {
        for (const float sample : samples[static_cast<std::size_t>(channel)]) {
            if (sample != kUntouched) {
                return false;
            }
        }
        return true;
    }
    void ExpectGuards() const
    {
        for (const auto& channel : samples) {
            for (std::size_t at = 0; at < kGuard; ++at) {
                Expect(channel[at] == kUntouched && channel[channel.size() - 1 - at] == kUntouched,
                       "samples outside the request were written");
            }
        }
    }

    std::vector<std::vector<float>> samples;
    std::vector<float*> pointers;
};

std::string Audio(const std::string& members)
{
    return Document(members);
}

Buffers Render(const Plugin& plugin, const std::string& members, std::int64_t position, std::uint32_t count)
{
    const ksInstance instance = OpenDocument(plugin, Audio(members));
    Buffers buffers(count);
    GuardedRecord request;
    request.Put(0, position);
    request.Put(8, count);
    request.Put(12, buffers.pointers.data());
    request.Put(20, instance);
    ExpectEqual(plugin.Request(25, ForeignStdParms(), nullptr, request.Data()), 0, "selector 25");
    request.ExpectUnchanged("selector 25");
    buffers.ExpectGuards();
    ExpectEqual(plugin.Request(9, ForeignStdParms(), nullptr, instance), 0, "selector 9");
    return buffers;
}

/// `cycles` whole cycles into a span the generator's float-rounded two pi has moved the phase by up to 1.75e-7
/// radians each.
void ExpectNear(float actual, double expected, const std::string& what, double cycles = 0.0)
{
    Expect(std::fabs(static_cast<double>(actual) - expected) < 1e-6 + 0.125 * 1.75e-7 * cycles,
           what + " is " + std::to_string(actual) + ", not " + std::to_string(expected));
}

void ToneHasItsFrequencyAndAmplitude(Plugin& plugin)
{
    const Buffers tone = Render(plugin, "", 0, 480);
    for (std::size_t at = 0; at < 480; ++at) {
        // 1000 Hz at 48000 samples a second: 48 samples a cycle.
        const double expected = 0.25 * std::sin(2 * 3.14159265358979323846 * static_cast<double>(at) / 48);
        ExpectNear(tone.At(0, at), expected, "sample " + std::to_string(at));
        Expect(tone.At(0, at) == tone.At(1, at), "the channels differ");
    }
    Expect(tone.At(0, 0) == 0.0F, "the tone does not start at phase 0");
    Expect(tone.Untouched(2), "a channel beyond the clip's was written");
}

void ToneWritesTheClipsChannels(Plugin& plugin)
{
    for (int channels = -1; channels <= 6; ++channels) {
        const Buffers tone = Render(plugin, "\"mNumChannels\": " + std::to_string(channels) + ",", 5, 100);
        for (int channel = 0; channel < 6; ++channel) {
            Expect(tone.Untouched(channel) == (channel >= channels),
                   "channel " + std::to_string(channel) + " of a clip with " + std::to_string(channels));
        }
    }
}

void OtherToneFormatsAreSteady(Plugin& plugin)
{
    const Buffers steady = Render(plugin, "", 1000, 500);
    for (const char* format : {"2", "-1", "1000"}) {
        const Buffers other = Render(plugin, std::string("\"mToneFormat\": ") + format + ",", 1000, 500);
        Expect(other.samples == steady.samples, std::string("tone format ") + format);
    }
}

void UnknownIdentifierWritesNothing(Plugin& plugin)
{
    for (const char* format : {"4", "7", "-1"}) {
        const Buffers none =
            Render(plugin, std::string("\"mToneFormat\": 1, \"mIdentifierFormat\": ") + format + ",", 0, 500);
        for (int channel = 0; channel < 6; ++channel) {
            Expect(none.Untouched(channel), std::string("identifier format ") + format + " writes");
        }
    }
}

void StereoLeftFallsSilent(Plugin& plugin)
{
    for (const char* format : {"0", "1"}) {
        const std::string members = std::string("\"mToneFormat\": 1, \"mIdentifierFormat\": ") + format + ",";
        // 2.75 s = 132000 samples of tone on the left, then silence up to 3 s = 144000.
        const Buffers cycle = Render(plugin, members, 0, 144'001);
        for (std::size_t at = 132'000; at < 144'000; ++at) {
            Expect(cycle.At(0, at) == 0.0F, "the left channel sounds at " + std::to_string(at));
        }
        const double step = (format[0] == '0' ? 1000.0 : 400.0) / 48'000.0 * 2 * 3.14159265358979323846;
        for (const std::size_t at : {1U, 7U, 131'999U, 144'000U}) {
            ExpectNear(cycle.At(0, at), 0.125 * std::sin(step * static_cast<double>(at)), "the left channel",
                       step * static_cast<double>(at) / 6.28);
        }
        for (const std::size_t at : {1U, 131'999U, 132'001U, 143'999U}) {
            ExpectNear(cycle.At(1, at), 0.125 * std::sin(step * static_cast<double>(at)), "the right channel",
                       step * static_cast<double>(at) / 6.28);
        }
        Expect(cycle.Untouched(2), "channel 2 was written");
        const Buffers inside = Render(plugin, members, 133'000, 11'001);
        Expect(inside.At(0, 0) == 0.0F && inside.At(0, 10'999) == 0.0F, "a request inside the silence sounds");
    }
}

/// Loudest sample of a stretch.
float Peak(const Buffers& buffers, int channel, std::size_t from, std::size_t to)
{
    float peak = 0.0F;
    for (std::size_t at = from; at < to; ++at) {
        peak = std::fmax(peak, std::fabs(buffers.At(channel, at)));
    }
    return peak;
}

/// Which of the six channels sound in a stretch, as six digits.
std::string Sounding(const Buffers& buffers, std::size_t from, std::size_t to)
{
    std::string sounding;
    for (int channel = 0; channel < 6; ++channel) {
        sounding += Peak(buffers, channel, from, to) > 0.01F ? '1' : '0';
    }
    return sounding;
}

void MultichannelVisitsItsChannels(Plugin& plugin)
{
    const Buffers cycle = Render(plugin, "\"mToneFormat\": 1, \"mIdentifierFormat\": 2,", 0, 576'000);
    const char* units[24] = {"111111", "111111", "111111", "111111", "111111", "111111", "000001", "100001",
                             "000001", "000011", "000001", "010001", "000001", "000101", "000001", "001001",
                             "000001", "000001", "111111", "111111", "111111", "111111", "111111", "111111"};
    for (std::size_t unit = 0; unit < 24; ++unit) {
        const std::string sounding = Sounding(cycle, unit * 24'000, (unit + 1) * 24'000);
        Expect(sounding == units[unit], "unit " + std::to_string(unit) + " sounds on " + sounding);
    }
}

void BlitsVisitsItsChannels(Plugin& plugin)
{
    const Buffers cycle = Render(plugin, "\"mToneFormat\": 1, \"mIdentifierFormat\": 3,", 0, 643'200);
    struct Run {
        std::size_t first;
        std::size_t last;
        const char* sounding;
    };
    for (const Run& run :
         {Run{0, 5, "100000"}, {6, 7, "000000"},    {8, 13, "010000"},    {14, 15, "000000"},
          {16, 21, "000010"},  {22, 23, "000000"},  {24, 29, "000001"},   {30, 31, "000000"},
          {32, 37, "001000"},  {38, 39, "000000"},  {40, 45, "000100"},   {46, 47, "000000"},
          {48, 57, "110000"},  {58, 60, "010000"},  {61, 63, "110000"},   {64, 66, "010000"},
          {67, 69, "110000"},  {70, 72, "010000"},  {73, 75, "110000"},   {76, 78, "010000"},
          {79, 98, "110000"},  {99, 101, "000000"}, {102, 131, "111111"}, {132, 133, "000000"}}) {
        for (std::size_t unit = run.first; unit <= run.last; ++unit) {
            const std::string sounding = Sounding(cycle, unit * 4'800, (unit + 1) * 4'800);
            Expect(sounding == run.sounding, "unit " + std::to_string(unit) + " sounds on " + sounding);
        }
    }
    Expect(std::fabs(Peak(cycle, 5, 102 * 4'800, 132 * 4'800) - 0.0625F) < 1e-4F, "the last tone's level");
    Expect(std::fabs(Peak(cycle, 0, 0, 6 * 4'800) - 0.125F) < 1e-4F, "the first tone's level");
}

void AnyRateAndPosition(Plugin& plugin)
{
    for (const char* rate : {"0", "1e-30", "1e12", "3e38", "-48000", "1e39", "0.5"}) {
        for (const char* format : {"0", "1", "2", "3", "4"}) {
            const std::string members = std::string("\"mSampleRate\": ") + rate +
                                        ", \"mToneFormat\": " + (format[0] == '4' ? "0" : "1") +
                                        ", \"mIdentifierFormat\": " + format + ",";
            for (const std::int64_t position :
                 {std::int64_t{0}, std::int64_t{-1}, std::int64_t{0x7FFFFFFFFFFFFFFF},
                  static_cast<std::int64_t>(0x8000000000000000ULL), std::int64_t{1} << 40}) {
                Render(plugin, members, position, 1000);
            }
        }
    }
}

void NothingForNoSamples(Plugin& plugin)
{
    for (const char* format : {"0", "1", "2", "3"}) {
        const Buffers none =
            Render(plugin, std::string("\"mToneFormat\": 1, \"mIdentifierFormat\": ") + format + ",", 100, 0);
        Expect(none.Untouched(0), "a request of no samples writes");
    }
}

/// The tone at `sample`, by the generator's own rate: what the whole number of ticks a sample gives.
double Tone(double ticksPerSample, double frequency, double amplitude, std::int64_t sample)
{
    const double cycles = static_cast<double>(sample) * (frequency * ticksPerSample / 254'016'000'000.0);
    return amplitude * std::sin((cycles - std::floor(cycles)) * 2 * 3.14159265358979323846);
}

void RateHasWholeTicks(Plugin& plugin)
{
    // 254016000000 / 48048.05078125 (the nearest 32-bit float) = 5286707.4..., of which 5286707 count. 1000 s
    // into the clip the fraction would have moved the phase by half a cycle.
    const std::int64_t position = 48'048'050;
    const Buffers tone = Render(plugin, "\"mSampleRate\": 48048.05,", position, 48);
    const double ticks = std::floor(254'016'000'000.0 / static_cast<double>(48048.05F));
    for (std::size_t at = 0; at < 48; ++at) {
        // The sample number times the step is exact to about 1e-10 cycles there.
        ExpectNear(tone.At(0, at), Tone(ticks, 1000.0, 0.25, position + static_cast<std::int64_t>(at)),
                   "sample " + std::to_string(at), 1.0);
    }
}

void BordersBetweenSamples(Plugin& plugin)
{
    const Buffers cycle =
        Render(plugin, "\"mSampleRate\": 11025, \"mToneFormat\": 1, \"mIdentifierFormat\": 0,", 0, 33'076);
    // 2.75 s = 30318.75 samples: sample 30318 begins before the border and sounds, 30319 begins the silence.
    // 3 s = 33075 samples.
    for (const std::size_t at : {1U, 30'317U, 30'318U, 33'075U}) {
        ExpectNear(cycle.At(0, at), Tone(23'040'000.0, 1000.0, 0.125, static_cast<std::int64_t>(at)),
                   "sample " + std::to_string(at), static_cast<double>(at) / 11);
    }
    for (const std::size_t at : {30'319U, 30'320U, 33'074U}) {
        Expect(cycle.At(0, at) == 0.0F, "the left channel sounds at " + std::to_string(at));
    }
}

void NullBuffersWhereNothingIsWritten(Plugin& plugin)
{
    const auto answer = [&plugin](const std::string& members, std::uint32_t count) {
        const ksInstance instance = OpenDocument(plugin, Audio(members));
        GuardedRecord request;
        request.Put<std::int64_t>(0, 0);
        request.Put(8, count);
        request.Put<float**>(12, nullptr);
        request.Put(20, instance);
        return plugin.Request(25, ForeignStdParms(), nullptr, request.Data());
    };
    for (const char* nothing :
         {"\"mNumChannels\": 0,", "\"mNumChannels\": -3,", "\"mToneFormat\": 1, \"mIdentifierFormat\": 4,",
          "\"mToneFormat\": 1, \"mIdentifierFormat\": -1,"}) {
        ExpectEqual(answer(nothing, 100), 0, std::string("selector 25 with ") + nothing);
    }
    for (const char* something :
         {"", "\"mNumChannels\": 1,", "\"mToneFormat\": 1, \"mIdentifierFormat\": 0,",
          "\"mToneFormat\": 1, \"mIdentifierFormat\": 2,", "\"mToneFormat\": 1, \"mIdentifierFormat\": 3,"}) {
        ExpectEqual(answer(something, 100), 5, std::string("selector 25 with ") + something);
    }
}

} // namespace

std::vector<Check> TesselAudioChecks()
{
    return {
        {"tessel.audio.tone", "The steady tone has its frequency, amplitude and phase on both channels",
         ToneHasItsFrequencyAndAmplitude},
        {"tessel.audio.tone-channels", "The steady tone writes the clip's channels and no other",
         ToneWritesTheClipsChannels},
        {"tessel.audio.tone-formats", "Every tone format but 1 gives the steady tone",
         OtherToneFormatsAreSteady},
        {"tessel.audio.unknown-identifier", "An unknown identification format writes nothing",
         UnknownIdentifierWritesNothing},
        {"tessel.audio.stereo", "The stereo identification silences the left channel from 2.75 s to 3 s",
         StereoLeftFallsSilent},
        {"tessel.audio.multichannel", "EBU 5.1 sounds on the stated channels in each of its 24 units",
         MultichannelVisitsItsChannels},
        {"tessel.audio.blits", "BLITS sounds on the stated channels in each of its 134 units",
         BlitsVisitsItsChannels},
        {"tessel.audio.whole-ticks", "A sample lasts a whole number of ticks, the fraction cut off",
         RateHasWholeTicks},
        {"tessel.audio.borders", "A sample belongs to the unit in which it begins", BordersBetweenSamples},
        {"tessel.audio.null-buffers", "A null array of buffers answers 5 only where a sample would be written",
         NullBuffersWhereNothingIsWritten},
        {"tessel.audio.any-rate",
         "Any sample rate and position is answered, and nothing outside the request is written",
         AnyRateAndPosition},
        {"tessel.audio.no-samples", "A request for no samples writes nothing", NothingForNoSamples},
    };
}

} // namespace conformance
